#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_account.h"
#include "vesk_time.h"

namespace {

constexpr const char *kTypes[] = {"none", "http", "telnet", "ssh", "console", "cgi"};

bool login_type(const char *text, unsigned char *type)
{
    for (unsigned char i = 0; i < sizeof kTypes / sizeof kTypes[0]; i++)
        if (!strcmp(text, kTypes[i]))
            return *type = i, true;
    fprintf(stderr, "vesk account: %s is no login type (none http telnet ssh console cgi)\n", text);
    return false;
}

int login(int argc, char **argv)
{
    unsigned char type;
    unsigned int when = vesk_get_x_time();
    if (!login_type(argv[1], &type) || (argc > 2 && !cli::parse_uint(argv[2], &when)))
        return 2;
    return vesk_account_set_admin_cfg(inet_addr(argv[0]), when, 0, type, "") == 0 ? 0 : 1;
}

int logout(int, char **) { return vesk_account_reset_admin_cfg() == 0 ? 0 : 1; }

int status(int, char **)
{
    printf("%s, web session %s, cgi time %s\n", vesk_account_get_login_type(),
           vesk_account_http_timeout() ? "expired" : "alive", vesk_account_cgi_command_timeout() ? "over" : "left");
    return 0;
}

int duplicate(int, char **argv)
{
    unsigned char type;
    if (!login_type(argv[1], &type))
        return 2;
    const int dup = vesk_account_duplicate_login(argv[0], type);
    puts(dup ? "refused: duplicate login" : "allowed");
    return 0;
}

int radius(int argc, char **argv)
{
    int timeout = 5;
    if (argc > 5 && !cli::parse_int(argv[5], &timeout)) {
        fprintf(stderr, "vesk account radius: %s is no number of seconds\n", argv[5]);
        return 2;
    }
    const int ok = vesk_account_auth_radius_user(argv[0], argv[1], argv[2], argv[3], argv[4], timeout);
    puts(ok ? "accepted" : "rejected");
    return ok ? 0 : 1;
}

constexpr cli::command kCommands[] = {
    {"login", "IP TYPE [UPTIME]", "records the administrator's login (type none http telnet ssh console cgi)", 2,
     login},
    {"logout", "", "clears the login record", 0, logout},
    {"status", "", "the recorded login's type and timeouts", 0, status},
    {"duplicate", "IP TYPE", "whether a new login would be refused as a duplicate", 2, duplicate},
    {"radius", "USER PASSWORD SECRET SERVER PORT [TIMEOUT]", "checks a user against a RADIUS server (eapol_test)", 5,
     radius},
};

} // namespace

extern const cli::family family_account = {"account", "the administrator's login and RADIUS users", kCommands};
