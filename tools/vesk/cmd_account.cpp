#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_account.h"
#include "vesk_time.h"

namespace {

const char *const kTypes[] = {"none", "http", "telnet", "ssh", "console", "cgi", nullptr};

bool login_type(const char *text, unsigned char *type)
{
    int index;
    if (!cli::parse_choice(text, kTypes, &index))
        return false;
    *type = static_cast<unsigned char>(index);
    return true;
}

int login(int argc, char **argv)
{
    unsigned char type;
    unsigned int when = vesk_get_x_time();
    if (!cli::parse_ipv4(argv[0]) || !login_type(argv[1], &type) || (argc > 2 && !cli::parse_uint(argv[2], &when)))
        return cli::kUsage;
    return cli::done(vesk_account_set_admin_cfg(inet_addr(argv[0]), when, 0, type, "") == 0, "storing the login");
}

int logout(int, char **) { return cli::done(vesk_account_reset_admin_cfg() == 0, "clearing the login"); }

int status(int, char **)
{
    cli::record()
        .text("type", vesk_account_get_login_type())
        .number("http_expired", vesk_account_http_timeout())
        .number("cgi_expired", vesk_account_cgi_command_timeout());
    return cli::kAnswer;
}

int duplicate(int, char **argv)
{
    unsigned char type;
    if (!cli::parse_ipv4(argv[0]) || !login_type(argv[1], &type))
        return cli::kUsage;
    return cli::number(vesk_account_duplicate_login(argv[0], type));
}

// The library answers 0 for a rejection and for a server it could not ask
// alike: only an acceptance is an answer.
int radius(int argc, char **argv)
{
    int port, timeout = 5;
    for (int i = 0; i < 2; i++)
        if (strpbrk(argv[i], "\"\n"))
            return cli::refuse("a user name or password holds a double quote or a line break");
    if (!cli::parse_ipv4(argv[3]) || !cli::parse_int(argv[4], &port, 1, 65535) ||
        (argc > 5 && !cli::parse_int(argv[5], &timeout, 1, 3600)))
        return cli::kUsage;
    if (!vesk_account_auth_radius_user(argv[0], argv[1], argv[2], argv[3], argv[4], timeout))
        return cli::miss("%s was not accepted", argv[0]);
    return cli::text("accepted");
}

constexpr cli::command kCommands[] = {
    {"login", "IP TYPE [UPTIME]", "records the administrator's login (type none http telnet ssh console cgi)", 2,
     login, cli::changes_device},
    {"logout", "", "clears the login record", 0, logout, cli::changes_device},
    {"status", "", "the recorded login: type http_expired cgi_expired", 0, status},
    {"duplicate", "IP TYPE", "1 when a new login would be refused as a duplicate, else 0", 2, duplicate},
    {"radius", "USER PASSWORD SECRET SERVER PORT [TIMEOUT]",
     "checks a user against a RADIUS server (eapol_test): accepted, or a miss", 5, radius},
};

} // namespace

extern const cli::family family_account = {"account", "the administrator's login and RADIUS users", kCommands};
