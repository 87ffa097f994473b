#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/stat.h>
#include <time.h>

#include <string>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_account.h"

namespace {

void uptime(unsigned int seconds) { vdev::put("/proc/uptime", std::to_string(seconds) + ".42 17.00\n"); }

TEST(AdminSession, RecordTimeoutsAndType)
{
    ASSERT_EQ(vesk_account_set_admin_cfg(inet_addr("192.0.2.7"), 1000, 7, 5, "dropped"), 0);
    // The store's line: address bytes in network order, time little-endian, 64 zero bytes.
    EXPECT_NE(vdev::read("/storage/quil.dat").find("admin_cfg=c0000207e80300000705" + std::string(128, '0') + "\n"),
              std::string::npos);

    const struct { unsigned int time; unsigned char type; unsigned int now; int http, cgi; const char *name; } cases[] = {
        {0, 0, 5000, 0, 0, "none"},       // no login time, no expiry
        {1000, 4, 1060, 0, 0, "consloe"}, // 60 seconds old: still alive
        {1000, 5, 1061, 0, 1, "cgi"},
        {1000, 1, 1300, 0, 1, "http"},    // 300 seconds old: still alive
        {1000, 200, 1301, 1, 1, "none"},
        {1000, 3, 999, 1, 1, "ssh"},      // a clock behind the login
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.now);
        vesk_account_set_admin_cfg(inet_addr("192.0.2.7"), c.time, 0, c.type, "");
        uptime(c.now);
        EXPECT_EQ(std::make_tuple(vesk_account_http_timeout(), vesk_account_cgi_command_timeout(),
                                  std::string(vesk_account_get_login_type())), std::make_tuple(c.http, c.cgi, c.name));
    }
    ASSERT_EQ(vesk_account_reset_admin_cfg(), 0);
    EXPECT_NE(vdev::read("/storage/quil.dat").find("admin_cfg=" + std::string(148, '0') + "\n"), std::string::npos);
    EXPECT_STREQ(vesk_account_get_login_type(), "none");
    EXPECT_EQ(vesk_account_http_timeout(), 0);
}

TEST(AdminSession, DuplicateLogins)
{
    enum { none, http, telnet, ssh, console, cgi };
    const struct { const char *recorded; unsigned char type; unsigned int now; const char *client; unsigned char next; int dup; } cases[] = {
        {"192.0.2.1", none, 1000, "192.0.2.2", http, 0}, {"192.0.2.1", http, 9999, "not an address", http, 1},
        {"192.0.2.1", http, 9999, "192.0.2.1", http, 0}, // same address: no duplicate, whatever the age
        {"0.0.0.0", http, 1000, "192.0.2.2", cgi, 0},
        {"192.0.2.1", http, 9999, "192.0.2.1", cgi, 1}, // every cgi login, without timeout
        {"192.0.2.1", http, 1300, "192.0.2.1", ssh, 1}, {"192.0.2.1", http, 1301, "192.0.2.1", ssh, 0},
        {"255.255.255.255", http, 1000, "192.0.2.1", ssh, 0}, {"192.0.2.1", cgi, 1301, "192.0.2.2", telnet, 0},
        {"192.0.2.1", cgi, 9999, "192.0.2.2", cgi, 1},
        {"192.0.2.1", console, 9999, "192.0.2.1", console, 1}, // even from the same address
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.recorded << " " << int(c.type) << " " << c.now << " " << c.client << " " << int(c.next));
        vesk_account_set_admin_cfg(inet_addr(c.recorded), 1000, 0, c.type, "");
        uptime(c.now);
        EXPECT_EQ(vesk_account_duplicate_login(c.client, c.next), c.dup);
    }
}

constexpr char kConf[] = "/tmp/peap-mschapv2.conf";

TEST(Radius, RealServerDecides)
{
    ASSERT_EQ(vdev::sh("/run/vdev/emu/peers/radius_server 'top secret' alice \"it's \\$ecret\""), 0);
    const struct { const char *identity, *password, *port; int timeout, result; } cases[] = {
        {"alice", "it's $ecret", "1812", 5, 1}, {"alice", "wrong", "1812", 5, 0},
        {"alice", "it's $ecret", "1813", 1, 0}, // no server there: the suite's one wait for the tool's time-out
    };
    // The file holds a password: private, also when an older one was not.
    vdev::put(kConf, "old");
    chmod(kConf, 0644);
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.identity) + "/" + c.password + "@" + c.port);
        const time_t start = time(nullptr);
        EXPECT_EQ(vesk_account_auth_radius_user(c.identity, c.password, "top secret", "127.0.0.1", c.port, c.timeout),
                  c.result);
        EXPECT_LE(time(nullptr) - start, c.timeout + 2);
    }
    EXPECT_EQ(vdev::read(kConf), "network={\nssid=\"auth_user\"\nkey_mgmt=WPA-EAP\neap=PEAP\nidentity=\"alice\"\n"
                                 "password=\"it's $ecret\"\nphase2=\"autheap=MSCHAPV2\"\n}");
    struct stat st;
    ASSERT_EQ(stat(kConf, &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600);
}

TEST(Radius, ValuesThatWouldAddLinesAreRefused)
{
    vdev::put(kConf, "written before");
    const struct { const char *identity, *password, *secret; } refused[] = {
        {"bob\"\nphase1=\"x", "pw", "s"}, {"bob", "pw\neap=TTLS", "s"}, {nullptr, "pw", "s"}, {"bob", "pw", "-s"}};
    for (const auto &r : refused) {
        SCOPED_TRACE(r.identity ? r.identity : "(null)");
        auto call = [&] { EXPECT_EQ(vesk_account_auth_radius_user(r.identity, r.password, r.secret, "127.0.0.1", "1812", 1), 0); };
        EXPECT_NE(stderr_of(call), "");
        EXPECT_EQ(vdev::read(kConf), "written before");
    }
}

} // namespace
