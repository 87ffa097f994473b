// The vesk tool itself, run as a user runs it inside the emulated device:
// each row is a command line, its exit status and what it prints. An answer
// (0) must match stdout whole; a miss (1) or a refusal (2) prints nothing on
// stdout and a line on stderr that matches.
#include <gtest/gtest.h>
#include <pcre.h>
#include <unistd.h>

#include <initializer_list>
#include <string>

#include "vdev.hpp"

namespace {

struct row {
    const char *setup; // shell run in the device first ("" for none)
    const char *args;  // shell words after "vesk", or a whole line after "!"
    int status;
    const char *expect; // regex: stdout on 0, stderr otherwise
};

// JavaScript's regex dialect ([^] is any byte), through the PCRE the library
// links anyway: the C++ library's <regex> is slow under qemu and trips GCC's
// maybe-uninitialized warning in cross builds.
bool matches(const std::string &text, const char *re, bool whole)
{
    const std::string pattern = whole ? "(?:" + std::string(re) + ")\\z" : re;
    const char *err = nullptr;
    int at = 0, ov[3];
    pcre *p = pcre_compile(pattern.c_str(), PCRE_JAVASCRIPT_COMPAT | (whole ? PCRE_ANCHORED : 0), &err, &at, nullptr);
    if (p == nullptr) {
        ADD_FAILURE() << re << ": " << err;
        return false;
    }
    const int rc = pcre_exec(p, nullptr, text.data(), static_cast<int>(text.size()), 0, 0, ov, 3);
    pcre_free(p);
    return rc >= 0;
}

void check(std::initializer_list<row> rows)
{
    // A cross build's tools run under the same user-mode emulator as this
    // program: the host cannot exec them directly.
    for (auto [name, path] : {std::pair{"VESK", VESK_TOOL}, {"QUIL", VESK_QUIL}, {"EXAMPLE", VESK_EXAMPLES}})
        setenv(name, (std::string(VESK_TOOL_RUNNER " ") + path).c_str(), 1);
    for (const row &r : rows) {
        SCOPED_TRACE(r.args);
        ASSERT_EQ(*r.setup ? vdev::sh(r.setup) : 0, 0) << r.setup;
        const std::string line = r.args[0] == '!' ? r.args + 1 : std::string("exec $VESK ") + r.args;
        const vdev::outcome o = vdev::in_child([&] {
            execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char *>(nullptr));
            _exit(127);
        });
        EXPECT_EQ(o.status, r.status) << o.out << o.err;
        EXPECT_TRUE(r.status ? o.out.empty() && matches(o.err, r.expect, false) : matches(o.out, r.expect, true))
            << o.out << o.err;
    }
}

constexpr const char kMac[] = "([0-9A-F]{2}:){5}[0-9A-F]{2}\n";

TEST(VeskTool, Conventions)
{
    check({
        {"", "", 2, "^usage: vesk"},
        {"", "--help", 0, "usage: vesk [^]*exit status: 0 answer[^]*\n  mac +MAC addresses[^]*"},
        {"", "--version", 0, "vesk [0-9]+\\.[0-9]+\\.[0-9]+\n"},
        {"", "nosuch", 2, "^vesk: no family nosuch"},
        {"", "ip", 2, "^ip: IPv4"},
        {"", "ip --help", 0, "ip: IPv4[^]*vesk ip num IP\n[^]*"},
        {"", "ip num --help", 0, "  vesk ip num IP\n[^]*exit status[^]*"},
        {"", "ip nosuch", 2, "^vesk ip: no command nosuch"},
        {"", "ip num", 2, "^usage: vesk ip num IP"},
        {"", "ip num 192.0.2.1 extra", 2, "^usage: vesk ip num IP"},
        {"", "ip num -- 192.0.2.1", 0, "0xC0000201\n"},
        {"", "-j ip str 0xC0000201", 0, "\"192.0.2.1\"\n"},
        {"", "stat mem --json", 0, "\\{\"total\":[0-9]+,\"used\":[0-9]+,\"free\":[0-9]+,\"buffers\":[0-9]+,\"cached\":[0-9]+\\}\n"},
        // Changes of the device's clock, name and store happen inside a device only.
        {"mv /run/vdev/inside /run/vdev/was", "time set-zone 3", 2, "refused outside an emulated device"},
        {"", "if hostname ap1", 2, "give --host or VESK_HOST=1"},
        {"", "store set schedule_en 1", 2, "refused"},
        {"", "--host store set schedule_en 1", 0, ""},
        {"", "!$QUIL set schedule_en 3", 2, "quil: refused outside an emulated device"},
        {"", "!VESK_HOST=1 $VESK store set schedule_en 2", 0, ""},
        {"mv /run/vdev/was /run/vdev/inside", "store get schedule_en", 0, "2\n"},
    });
}

TEST(VeskTool, Addresses)
{
    check({
        {"", "mac text 001a2b3c4d5e", 0, "00:1A:2B:3C:4D:5E\n"},
        {"", "mac text 00:1a:2b:3c:4d", 2, "not a MAC address"},
        {"", "mac valid 00:1a:2b:3c:4d:5e", 0, "1\n"},
        {"", "mac add-colon 001a2b3c4d5e", 0, "00:1a:2b:3c:4d:5e\n"},
        {"", "mac add-colon 00:1a:2b:3c:4d:5e", 2, "not 12 hex digits"},
        {"", "mac equal 001A2B3C4D5E 00:1a:2b:3c:4d:5e", 0, "1\n"},
        {"", "mac in-range 00:00:00:00:00:01 00:00:00:00:00:09 000000000005", 0, "1\n"},
        {"", "mac in-range 00:00:00:00:00:01 00:00:00:00:00:09 zzzzzzzzzzzz", 2, "zzzzzzzzzzzz is not"},
        {"", "mac vendor 00:00:0C:00:00:01", 0, "Cisco Systems, Inc\n"},
        {"", "mac vendor 02:FF:FF:00:00:01", 1, "no answer"},
        {"", "mac oui-vendor 0x00000C", 0, "Cisco Systems, Inc\n"},
        {"", "mac oui-vendor 0x1000000", 2, "greater than 16777215"},
        {"", "ip str 0", 0, "0.0.0.0\n"},
        {"", "ip str 0x100000000", 2, "greater than"},
        {"", "ip same-subnet 192.0.2.1 192.0.2.77 255.255.255.0", 0, "1\n"},
        {"", "ip same-subnet 192.0.2.1 198.51.100.1 0xFFFFFF00", 0, "0\n"},
        {"", "ip resolve localhost", 0, "127.0.0.1\n"},
        {"", "ip resolve nosuch.invalid", 1, "no answer"},
    });
}

TEST(VeskTool, Interfaces)
{
    check({
        {"", "if hwaddr br0", 0, kMac},
        {"", "if hwaddr nosuch0", 1, "no hardware address for nosuch0"},
        {"", "if ip br0", 0, "192.0.2.1\n"},
        {"", "if ip nosuch0", 1, "no answer \\(---\\)"},
        {"ip link add p0 type veth peer name p1 && ip addr add 203.0.113.1 peer 203.0.113.2 dev p0", "if dst p0", 0,
         "203.0.113.2\n"},
        {"", "if mask br0", 0, "255.255.255.0\n"},
        {"", "if subnet br0", 0, "192.0.2.0\n"},
        {"", "if exists br0", 0, "1\n"},
        {"", "if ip-ready br0", 0, "1\n"},
        {"", "if up p0", 0, "0\n"},
        {"", "if index lo", 0, "1\n"},
        {"", "if index nosuch0", 1, "no index"},
        {"", "if mtu eth2", 0, "1500\n"},
        {"", "if lan-state eth2 1", 0, ""},
        {"mkdir -p /run/vdev/fail && echo 'eth2 lanstate EIO' >/run/vdev/fail/ioctl", "if lan-state eth2 1", 1,
         "request failed"},
        {"", "if lan-state eth2 on", 2, "on is not a number"},
        {"", "if hostname ap-1", 0, ""},
        {"", "if hostname 'a;b'", 2, "not a host name"},
        {"", "if host-ip localhost 4", 0, "127.0.0.1\n"},
        {"", "if host-ip localhost 5", 2, "5 is not one of any 4 6"},
        {"", "stats show lo", 0, "rx_bytes [0-9]+\n[^]*tx_compressed [0-9]+\n"},
        // The default device's /proc/stat: total is the sum of the eight counts, busy less idle and iowait.
        {"", "stat cpu", 0, "user 10230\nnice 0\nsystem 8340\nidle 290120\niowait 120\nirq 0\nsoftirq 1610\n"
                            "steal 0\ntotal 310420\nbusy 20180\n"},
        {"echo intr 0 >/proc/stat", "stat cpu", 1, "no processor ticks"},
        {"", "stat irq ra0", 0, "812244\n"},
        {"rm /proc/interrupts", "stat irq ra0", 1, "cannot read /proc/interrupts"},
        {"", "stats show nosuch0", 1, "no counters for nosuch0"},
        {"", "route gateway", 1, "no answer"},
        {"ip route add default via 192.0.2.254 dev br0", "route gateway", 0, "192.0.2.254\n"},
        {"", "route gateway br0", 0, "192.0.2.254\n"},
        {"printf 'nameserver 198.51.100.53\\nnameserver 198.51.100.54\\n' >/etc/resolv.conf", "route dns", 0,
         "198.51.100.53,198.51.100.54\n"},
        {"", "-j route dns", 0, "\\[\"198.51.100.53\",\"198.51.100.54\"\\]\n"},
        {"", "route dns 0 nosuch", 1, "no answer"},
        {"", "route dns 3", 2, "3 is not a number from 0 to 2"},
        {"", "route dns6", 1, "no answer"},
        {"echo 'nameserver 2001:db8::1' >/etc/resolv_ipv6.conf", "route dns6 1", 0, "2001:db8::1\n"},
    });
}

TEST(VeskTool, Neighbours)
{
    check({
        {"ip link add d0 type veth peer name d1 && ip addr add 198.51.100.1/24 dev d0 && ip link set d0 up && "
         "ip neigh replace 198.51.100.9 lladdr 02:00:00:00:00:09 dev d0 nud permanent",
         "arp ifname 198.51.100.9", 0, "d0\n"},
        {"", "arp ifname d0", 2, "not a dotted"},
        {"", "arp mac 198.51.100.9", 0, "020000000009\n"},
        {"", "arp mac 198.51.100.99", 1, "no answer \\(000000000000\\)"},
        {"", "arp mac 198.51.100.9 --pong", 2, "not one of --ping"},
        {"", "arp ip 020000000009", 0, "198.51.100.9\n"},
        {"", "arp ip 0200000000ff", 1, "no answer \\(0.0.0.0\\)"},
        {"", "arp ip 02:00:00:00:00:09", 2, "not 12 hex digits"},
        {"", "arp send 198.51.100.9 198.51.100.1 02:00:00:00:00:01 d0", 0, ""},
        {"", "arp send 198.51.100.9 198.51.100.1 02:00:00:00:00:01 interface-name", 2, "at most 13 characters"},
        {"", "arp grat", 0, ""},
        {"ip addr flush dev br0", "arp grat", 1, "failed"},
        {"", "br port \"$(cat /sys/class/net/eth2/address)\"", 0, "eth2\n"},
        {"", "br port 02:00:00:00:00:77", 1, "no answer \\(unknown\\)"},
        {"", "br port 02:00:00:00:00", 2, "not a MAC"},
        {"", "br fdb", 0, "(1 [01] ([0-9A-F]{2}:){5}[0-9A-F]{2}\n)+"},
        {"", "br fdb nosuch0", 1, "no forwarding table for nosuch0"},
        {"", "br del 02:00:00:00:00:77", 0, ""},
        {"", "br del 020000000077", 2, "not a MAC address xx:xx"},
    });
}

TEST(VeskTool, TimeAndCalendar)
{
    check({
        {"echo '4242.50 1.00' >/proc/uptime", "time uptime", 0, "4242\n"},
        {"echo 'none' >/proc/uptime", "time uptime", 1, "cannot read /proc/uptime"},
        {"", "time monotonic", 0, "[0-9]+\\.[0-9]{6}\n"},
        {"echo UTC0 >/etc/TZ", "time now", 0, "[0-9]{4}/[0-9]{2}/[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\n"},
        {"", "time item y", 0, "[0-9]{4}\n"},
        {"", "time item q", 2, "q is not one of y m d h i s f"},
        {"", "time format 86400 %Y-%m-%d", 0, "1970-01-02\n"},
        {"", "time format 86400 ''", 1, "no answer"},
        {"", "time format 1e3 %Y", 2, "not a number"},
        {"", "time day-number 3 1", 0, "60\n"},
        {"", "time day-number 4 31", 2, "31 is not a number from 1 to 30"},
        {"$QUIL set timedaylight 00030001000a001f00", "time set-zone 75", 0, ""},
        {"", "time set-zone 76", 2, "not a number from 0 to 75"},
        {"", "time set-date 2024-02-29 12:30 utc", 0, ""},
        {"", "time set-date 2023-02-29 12:30", 2, "2023-02-29 is not a date"},
        {"", "time leap 2000", 0, "1\n"},
        {"", "time advance 2024/2/29 1/0/0", 0, "2025/3/1\n"},
        {"", "time advance 2023/2/29 0/0/1", 2, "not a date that exists"},
        {"", "time advance 2024-2-29 0/0/1", 2, "not YEAR/MONTH/DAY"},
        {"", "time duration 93784", 0, "1 day 2 hours 3 mins 4 secs\n"},
        {"", "time duration 93784 compact", 0, "1 day 02:03:04 \n"},
        {"", "time duration -1", 2, "not a number"},
    });
}

TEST(VeskTool, ProductAndStore)
{
    check({
        {"", "product info", 0, "row 0\nfw_upg_product_id 18\n[^]*upnpd_model_url .+\n"},
        {"", "product hw-id", 0, "0x010E0012\n"},
        {"sed -i 's/^hw_id=.*/hw_id=/' /run/vdev/board.conf", "product hw-id", 1, "no hardware ID"},
        {"", "product domain 2", 0, "1\n"},
        {"", "product domain 3", 2, "not one of 1 2"},
        {"", "product version", 0, "version 1.0.0\nnumber 10000\nbuild_date 2015/05/28\n"},
        {"", "product language 1", 0, "[a-z_A-Z]+\n"},
        {"", "product language 20", 1, "no answer"},
        {"", "product language 21", 2, "from 1 to 20"},
        {"", "product notify", 0, "0\n"},
        {"", "product newer 1.0.1", 0, "1\n"},
        {"", "product newer v2", 2, "not a version"},
        {"", "product mtd Kernel", 0, "device /dev/mtd[0-9]+\nsize [0-9]+\n"},
        {"", "product mtd Nothing", 1, "no flash partition Nothing"},
        {"", "product uuid", 0, "f0015eb6-69b9-436e-a383-001a2b3c4d5e\n"},
        {"", "product wlan-uuid 1", 0, "[0-9a-f-]{24}001a2b3c4d5f\n"},
        {"", "product wlan-uuid 2", 2, "not one of 0 1"},
        {"mkdir -p /run/vdev/fail && touch /run/vdev/fail/uuidgen", "product wlan-uuid", 1, "tools failed"},
        {"", "store set schedule_en 1", 0, ""},
        {"", "store schedule", 0, "1\n"},
        {"", "store get nosuch", 2, "unknown key nosuch"},
        {"", "store set admin_cfg 1", 2, "admin_cfg takes 74 bytes as 148 hex digits"},
        {"", "store set wl1basic 0102030405060708090a0b", 0, ""}, // a record takes exactly its bytes
        {"", "store get wl1basic", 0, "0102030405060708090a0b\n"},
        {"", "store usboot", 0, "0\n"},
    });
}

TEST(VeskTool, TextNumbersAndWan)
{
    check({
        {"", "text match 'b+c' abbbc", 0, "1\n"},
        {"", "text hexdump AB 16", 0, "00000010: 41 42 +\\|AB\\|\n"},
        {"", "text hexdump AB x", 2, "x is not a number"},
        {"", "text remove-char a.b.c .", 0, "text abc\ncount 2\n"},
        {"", "text remove-char abc ''", 2, "not one character"},
        {"", "-j text replace-char a.b . -", 0, "\\{\"text\":\"a-b\",\"count\":1\\}\n"},
        {"", "text char-value f", 0, "15\n"},
        {"", "text char-value %", 1, "neither a digit nor a letter"},
        {"", "text component /a/b//", 0, "component \nstripped b\n"},
        {"", "text itoa 255 16", 0, "ff\n"},
        {"", "text itoa 5 17", 2, "from 2 to 16"},
        {"", "text url-cmp A a", 0, "0\n"},
        {"", "text msb 0x80000000", 0, "32\n"},
        {"", "hr scaled 1536", 0, "1.5k\n"},
        {"", "hr scaled 1500 1000", 0, "2\n"},
        {"", "hr grouped 4294967295", 0, "4,294,967,295\n"},
        {"", "hr bytes 1200", 0, "1.2 KBytes\n"},
        {"", "util web 'a\"b'", 0, "a\\\\\"b\n"},
        {"", "util shell 'a b'", 0, "a\\\\ b\n"},
        {"", "util shell ''", 2, "1 to 4096 bytes"},
        {"", "util random", 0, "-?[0-9]+\n"},
        {"", "util seed lo", 0, ""},
        {"", "util seed nosuch0", 2, "no interface nosuch0"},
        {"", "wan ppp pppd ppp0", 0, "status 0\nmeaning down\n"},
        {"", "wan detect", 0, "mask 8\ndhcp 0\npppoe 0\npptp 0\n"},
        {"", "wan ports 80 0 1000 2000", 0, "80, 1000-2000\n"},
        {"", "wan ports 65536", 2, "greater than 65535"},
        {"", "wan list '80, 1000-2000' 4", 0, "80 0\n1000 2000\n"},
        {"", "wan list nosuch0", 2, "not a list of ports"},
    });
}

TEST(VeskTool, Radios)
{
    check({
        {"", "wlan pin 00:1A:2B:3C:4D:5E", 0, "39519665\n"},
        {"", "wlan pin banana", 2, "banana is not one of lan random"},
        {"", "wlan schedule 0", 0, "state [0-3]\nmeaning (on|to-off|off|to-on)\n"},
        {"", "wlan schedule 2", 2, "from 0 to 1"},
        {"", "wlan radio 02:00:00:00:00:01", 1, "on neither radio"},
        {"", "wlan radio 02:00:00", 2, "not a MAC"},
        {"", "wlan radio 02:10:20:30:40:11", 0, "radio 1\nifname ath0\n"},
        {"", "wlan clients ra0", 0, "2\n"},
        {"", "wlan clients eth2", 2, "not a radio interface"},
        {"", "wlan channels ath0", 0, "primary 36\nchannel1 40\nchannel2 44\nchannel3 48\n"},
        {"", "wlan channels ra1", 1, "no channel for ra1"},
        {"", "wlan wps ra0", 0, "1\n"},
        {"", "wlan wps ra1", 1, "no WPS status"},
        {"", "wlan stations ra0", 0, "02:10:20:30:40:01 0 86 -48\n02:10:20:30:40:02 1 44 -71\n"},
        {"", "-j wlan stations ath0", 0,
         "\\[\\{\"mac\":\"02:10:20:30:40:11\",\"ssid\":0,\"signal\":96,\"rssi\":38\\},\\{[^]*\\}\\]\n"},
        {"", "wlan survey ra0", 0, "02:AA:00:00:00:01 1 81 -52 WPA2PSK/AES 1 Cafe Corner\n[^]*NONE 1 -\n"},
        {"", "wlan survey ath0 300", 2, "greater than 255"},
        {"mkdir -p /run/vdev/fail && echo '* * EIO' >/run/vdev/fail/ioctl && touch /run/vdev/fail/iwpriv",
         "wlan clients ra0", 1, "no count for ra0"},
        {"", "wlan stations ath0", 1, "no stations on ath0"},
        {"", "wlan survey ra0", 1, "scan of ra0 failed"},
        {"", "snmp index br0", 0, "[0-9]+\n"},
        {"", "snmp index nosuch0", 1, "no SNMP number"},
    });
}

TEST(VeskTool, FilesDisksAndFirmware)
{
    check({
        {"", "log append /tmp/a.txt hello", 0, ""},
        {"", "log truncate /tmp/a.txt 1 0", 0, ""},
        {"", "log truncate /tmp/a.txt 1 2", 2, "2 is not a number from 0 to 1"},
        {"mkdir -p /tmp/log", "log next /tmp/log sys wifi log", 0, "sys_wifi_[0-9]{8}_00\\.log\n"},
        {"", "log next /tmp/log sys_x wifi log", 2, "sys_x holds '_'"},
        {"", "log last /tmp/log sys wifi log", 1, "no file of today"},
        {"touch /tmp/log/sys_wifi_$(date +%Y%m%d)_04.log", "log last /tmp/log sys wifi log", 0,
         "tag wifi\ndate [0-9]{8}\nnumber 4\n"},
        {"", "-j log list /tmp/log sys wifi log", 0, "\\[\\{\"name\":\"sys_wifi_[0-9]{8}_04.log\"\\}\\]\n"},
        {"echo '/dev/sda1 tmpfs size=64k' >/run/vdev/disks", "disk point /dev/sda1", 1, "no answer"},
        {"", "disk mount /dev/sda1 /mnt/usb1", 0, ""},
        {"", "disk point /dev/sda1", 0, "/mnt/usb1\n"},
        {"", "disk dev /mnt/usb1", 0, "/dev/sda1\n"},
        {"", "disk free /mnt/usb1", 0, "[0-9]+\n"},
        {"", "disk free /nonexistent", 1, "cannot be examined"},
        {"", "disk copy /etc/hostname hn /mnt/usb1 0", 0, ""},
        {"", "disk copy /nonexistent hn /mnt/usb1 0", 1, "the copy failed"},
        {"", "disk unmount /mnt/usb1", 0, ""},
        {"", "disk dev /mnt/usb1", 1, "no answer"},
        {"", "disk mount /dev/sda1 relative", 1, "mounting failed"},
        {"", "fw backup secret", 0, "/tmp/user.conf\n"},
        {"", "fw backup " "0123456789012345678901234567890123456789012345678901234567890123456789", 2, "at most 64"},
        {"", "fw header /tmp/user.conf", 0, "type 7\nversion 1.0.0\n[^]*magic [0-9]+\n"},
        {"", "fw header /nonexistent", 1, "no image header"},
        {"", "fw boot-ver", 0, "1.0.3\n"},
        {"", "fw progress /tmp/nothing", 1, "no progress"},
        {"echo 42 >/var/up.stat", "fw progress up", 0, "42\n"},
        {"", "fw decode /etc/hostname", 1, "check failed"},
        {"echo plain >/tmp/p", "fw encrypt /tmp/p k /tmp/e 1", 0, ""},
        {"", "fw decrypt /tmp/e k /tmp/d", 0, ""},
        {"", "fw decrypt /tmp/nothing k /tmp/d", 1, "lockwrap failed"},
        {"", "fw encrypt /tmp/p k /tmp/e 2", 2, "from 0 to 1"},
        {"", "fw flash /etc/hostname", 1, "no image header"},
        {"", "fw restore /tmp/nothing 0", 2, "/tmp/nothing is not a readable file"},
    });
}

TEST(VeskTool, AccountsPhyAndDaemon)
{
    check({
        {"echo '150.00 1.00' >/proc/uptime", "account login 192.0.2.9 http 100", 0, ""},
        {"", "-j account status", 0, "\\{\"type\":\"http\",\"http_expired\":0,\"cgi_expired\":0\\}\n"},
        {"", "account duplicate 192.0.2.10 http", 0, "1\n"},
        {"", "account duplicate 192.0.2.10 web", 2, "web is not one of none http"},
        {"", "account login 192.0.2 http", 2, "192.0.2 is not a dotted IPv4 address"},
        {"", "account logout", 0, ""},
        {"rm /storage/quil.dat && mkdir /storage/quil.dat", "account login 192.0.2.1 ssh", 1, "storing the login failed"},
        {"", "account logout", 1, "clearing the login failed"},
        {"/run/vdev/emu/peers/radius_server s3 alice pw", "account radius alice pw s3 127.0.0.1 1812", 0, "accepted\n"},
        {"", "account radius alice wrong s3 127.0.0.1 1812", 1, "alice was not accepted"},
        {"", "account radius 'al\"ice' pw s3 127.0.0.1 1812", 2, "holds a double quote"},
        {"", "phy link", 0, "up\n"},
        {"", "phy link eth2 4", 0, "down\n"},
        {"", "phy link br0", 1, "no link state for br0"},
        {"", "phy link eth2 32", 2, "32 is not a number from 0 to 31"},
        {"", "phy speed", 0, "code 2\nmode 100 full\n"},
        {"", "phy speed nosuch0", 1, "no abilities read from nosuch0"},
        // Register 5 of PHY 1 is c1e1: 100 full (2), 100 half (0x10), 10 full (1), 10 half (8).
        {"", "-j phy partner", 0, "\\{\"abilities\":27,\"full_duplex\":0\\}\n"},
        {"", "phy partner nosuch0", 1, "no abilities read"},
        {"", "phy power 1 on", 0, ""},
        {"", "phy power 1 maybe", 2, "maybe is not one of off on"},
        {"", "phy advertise 1 6", 2, "6 is not a number from 0 to 5"},
        {"", "phy mdi 5 1", 2, "5 is not a number from 0 to 4"},
        {"", "phy eee 1 on", 0, ""},
        {"", "phy gmac 2 5", 0, ""},
        {"mkdir -p /run/vdev/fail && touch /run/vdev/fail/mii_mgr", "phy mdi 1 1", 1, "register access failed"},
        {"", "phy pause 1 on", 1, "register access failed"},
        {"touch /run/vdev/fail/reg", "phy gmac 2 5", 1, "register access failed"},
        {"", "sd send ping", 1, "no system daemon runs \\(-3\\)"},
        {"/run/vdev/emu/peers/system_daemon start", "sd send ping", 0, "OK\n"},
        {"", "sd send \"$(printf %01100d 0)\"", 2, "longer than 1023 bytes"},
    });
}

// The example programs of the guide, as a firmware programmer would run them.
TEST(VeskTool, ExamplePrograms)
{
    check({
        {"echo '93784.00 1.00' >/proc/uptime && ip route add default via 192.0.2.254 dev br0", "!$EXAMPLE/status_cgi",
         0,
         "Content-Type: text/html; charset=utf-8\r\n\r\n<!DOCTYPE html>\n[^]*<table>\n"
         "<tr><th>Firmware</th><td>1.0.0</td></tr>\n"
         "<tr><th>LAN address</th><td>192.0.2.1</td></tr>\n"
         "<tr><th>LAN netmask</th><td>255.255.255.0</td></tr>\n"
         "<tr><th>LAN MAC</th><td>([0-9A-F]{2}:){5}[0-9A-F]{2}</td></tr>\n"
         "<tr><th>Gateway</th><td>192.0.2.254</td></tr>\n"
         "<tr><th>Uptime</th><td>1 day 2 hours 3 mins 4 secs</td></tr>\n</table>\n</body></html>\n"},
        {"ip addr flush dev br0 && ip route flush dev br0", "!$EXAMPLE/status_cgi", 0,
         "[^]*<th>LAN address</th><td>not available</td>[^]*<th>Gateway</th><td>not available</td>[^]*"},
        {"", "!$EXAMPLE/survey", 0,
         "BSSID +CH SIG% +DBM  SECURITY +SSID\n"
         "02:AA:00:00:00:01 +1 +81 +-52  WPA2PSK/AES +Cafe Corner\n"
         "02:AA:00:00:00:02 +6 +60 +-67  WPA1PSKWPA2PSK/TKIPAES +Hallway\n"
         "02:AA:00:00:00:03 +11 +35 +-80  NONE +\\(hidden\\)\n"},
        {"mkdir -p /run/vdev/fail && echo 'ra0 survey EIO' >/run/vdev/fail/ioctl", "!$EXAMPLE/survey ra0 6", 1,
         "survey: no survey of ra0"},
    });
}

} // namespace
