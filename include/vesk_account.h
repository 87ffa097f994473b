/* The administrator's login: the store's record "admin_cfg" of the one
 * current login, its timeouts (300 seconds for the web session, 60 for a
 * CGI command, in uptime seconds), its type and the duplicate-login rule;
 * and checking a user against a RADIUS server through eapol_test. */
#ifndef VESK_ACCOUNT_H
#define VESK_ACCOUNT_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Login types, the index into the type names. */
enum {
    VESK_LOGIN_NONE = 0,
    VESK_LOGIN_HTTP = 1,
    VESK_LOGIN_TELNET = 2,
    VESK_LOGIN_SSH = 3,
    VESK_LOGIN_CONSOLE = 4,
    VESK_LOGIN_CGI = 5
};

/* Stores the login: login_ip as inet_addr() gives it (network order),
 * login_time in uptime seconds. login_text is not stored. Returns what
 * quil_set_value returned (0 on success). */
VESK_API int vesk_account_set_admin_cfg(unsigned int login_ip, unsigned int login_time, unsigned char stored_byte,
                                        unsigned char login_type, const char *login_text);

/* Clears the login record. Returns what quil_set_value returned. */
VESK_API int vesk_account_reset_admin_cfg(void);

/* 1 when a login time is recorded and more than 300 (60) seconds of uptime
 * have passed since, else 0. */
VESK_API int vesk_account_http_timeout(void);
VESK_API int vesk_account_cgi_command_timeout(void);

/* 1 when a new login of login_type from client_ip (dotted text) is refused
 * because of the recorded one, else 0. */
VESK_API int vesk_account_duplicate_login(const char *client_ip, unsigned char login_type);

/* The recorded login's type: "none", "http", "telnet", "ssh", "consloe" or
 * "cgi"; "none" for an unknown type. A pointer to a constant table. */
VESK_API char *vesk_account_get_login_type(void);

/* Runs "eapol_test -s SECRET -a SERVER -p PORT -t TIMEOUT -c
 * /tmp/peap-mschapv2.conf" after writing that file (mode 0600) for a PEAP
 * login with MSCHAPv2 inside. 1 when the server accepted the user, else 0:
 * also, with a message, for a name or password holding a double quote or a
 * line break, and for a secret, server or port that is missing, starts with
 * '-' or holds a newline. The file stays behind until the next call. */
VESK_API int vesk_account_auth_radius_user(const char *identity, const char *password, const char *radius_secret,
                                           const char *radius_server, const char *radius_port, int timeout);

VESK_END_DECLS

#endif
