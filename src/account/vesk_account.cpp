// The administrator's login as the store's record "admin_cfg": written and
// cleared here, and read to answer timeouts, the login's type and whether a
// new login duplicates the recorded one.
#include "vesk_account.h"

#include <arpa/inet.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "quil.h"
#include "vesk_time.h"

namespace {

constexpr char kKey[] = "admin_cfg";

// The store's record, 74 bytes without gaps; the 32-bit words in the
// device's little-endian order. login_ip holds inet_addr()'s value, so its
// bytes are the address in network order.
struct admin_cfg {
    uint8_t login_ip[4];
    uint8_t login_time[4];
    uint8_t stored_byte;
    uint8_t login_type;
    uint8_t reserved[64];
};
static_assert(sizeof(admin_cfg) == 74 && alignof(admin_cfg) == 1);
static_assert(offsetof(admin_cfg, login_ip) == 0 && offsetof(admin_cfg, login_time) == 4);
static_assert(offsetof(admin_cfg, stored_byte) == 8 && offsetof(admin_cfg, login_type) == 9);
static_assert(offsetof(admin_cfg, reserved) == 10);

uint32_t load_le32(const uint8_t (&b)[4]) { return b[0] | b[1] << 8 | b[2] << 16 | static_cast<uint32_t>(b[3]) << 24; }

void store_le32(uint8_t (&b)[4], uint32_t v)
{
    for (int i = 0; i < 4; i++)
        b[i] = static_cast<uint8_t>(v >> (8 * i));
}

struct login {
    uint32_t ip;
    uint32_t time;
    uint8_t type;
};

// A missing record reads as zeros: no login.
login recorded()
{
    admin_cfg cfg;
    memset(&cfg, 0, sizeof cfg);
    quil_get_value(&cfg, kKey);
    return {load_le32(cfg.login_ip), load_le32(cfg.login_time), cfg.login_type};
}

constexpr unsigned int kHttpTimeout = 300;
constexpr unsigned int kCgiTimeout = 60;

// Unsigned arithmetic: a clock behind the login time counts as expired.
bool expired(const login &l, unsigned int limit) { return l.time != 0 && vesk_get_x_time() - l.time > limit; }

constexpr char kLoginTypeNames[][32] = {"none", "http", "telnet", "ssh", "consloe", "cgi"};
static_assert(sizeof kLoginTypeNames / sizeof kLoginTypeNames[0] == VESK_LOGIN_CGI + 1);

constexpr uint32_t kNoAddress = 0xFFFFFFFFu;

bool usable(uint32_t ip) { return ip != 0 && ip != kNoAddress; }

// A login from another address than the recorded usable one is a duplicate.
bool other_address(const login &l, const char *client_ip)
{
    return usable(l.ip) && (!client_ip || inet_addr(client_ip) != l.ip);
}

// A recorded login blocks other kinds while its web session lives.
bool still_alive(const login &l) { return l.ip != kNoAddress && !expired(l, kHttpTimeout); }

} // namespace

extern "C" {

int vesk_account_set_admin_cfg(unsigned int login_ip, unsigned int login_time, unsigned char stored_byte,
                               unsigned char login_type, const char *)
{
    admin_cfg cfg;
    memset(&cfg, 0, sizeof cfg);
    store_le32(cfg.login_ip, login_ip);
    store_le32(cfg.login_time, login_time);
    cfg.stored_byte = stored_byte;
    cfg.login_type = login_type;
    return quil_set_value(&cfg, kKey);
}

int vesk_account_reset_admin_cfg(void) { return vesk_account_set_admin_cfg(0, 0, 0, VESK_LOGIN_NONE, ""); }

int vesk_account_http_timeout(void) { return expired(recorded(), kHttpTimeout); }

int vesk_account_cgi_command_timeout(void) { return expired(recorded(), kCgiTimeout); }

char *vesk_account_get_login_type(void)
{
    const uint8_t type = recorded().type;
    return const_cast<char *>(kLoginTypeNames[type <= VESK_LOGIN_CGI ? type : 0]);
}

int vesk_account_duplicate_login(const char *client_ip, unsigned char login_type)
{
    const login l = recorded();
    switch (l.type) {
    case VESK_LOGIN_TELNET:
    case VESK_LOGIN_SSH:
    case VESK_LOGIN_CONSOLE:
        return 1; // these hold the device without a time limit
    case VESK_LOGIN_HTTP:
        if (login_type == VESK_LOGIN_HTTP)
            return other_address(l, client_ip);
        if (login_type == VESK_LOGIN_CGI)
            return usable(l.ip);
        return still_alive(l);
    case VESK_LOGIN_CGI:
        return login_type == VESK_LOGIN_CGI ? other_address(l, client_ip) : still_alive(l);
    default:
        return 0;
    }
}

} // extern "C"
