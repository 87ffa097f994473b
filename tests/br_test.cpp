#include <gtest/gtest.h>
#include <net/if.h>
#include <linux/sockios.h>
#include <sys/socket.h>
#include <unistd.h>

#include <set>
#include <string>
#include <vector>

#include "fake_ioctl.hpp"
#include "fake_sleep.hpp"
#include "vdev.hpp"
#include "vesk_br.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr unsigned long kGetPortList = 7, kGetFdbEntries = 18;

// Static entries 02:00:00:00:HH:LL, i = 1..count, on dev; the bridge learns
// nothing more, so the table holds exactly what a test put there.
void add_static_entries(int count, const char *dev = "eth2")
{
    std::string batch;
    char line[80];
    for (int i = 1; i <= count; i++) {
        snprintf(line, sizeof line, "fdb add 02:00:00:00:%02x:%02x dev %s master static\n", i >> 8, i & 0xFF, dev);
        batch += line;
    }
    vdev::put("/tmp/fdb.batch", batch);
    // lan0 may have been heard before learning stopped: forget it.
    ASSERT_EQ(vdev::sh("bridge link set dev eth2 learning off"
                       " && { bridge fdb del $(cat /sys/class/net/lan0/address) dev eth2 master 2>/dev/null; true; }"
                       " && bridge -batch /tmp/fdb.batch"),
              0);
}

void entry_mac(int i, unsigned char *mac)
{
    const unsigned char m[6] = {2, 0, 0, 0, static_cast<unsigned char>(i >> 8), static_cast<unsigned char>(i)};
    memcpy(mac, m, 6);
}

std::vector<unsigned char> sys_mac(const char *ifname)
{
    unsigned int b[6];
    std::string text = vdev::read(std::string("/sys/class/net/") + ifname + "/address");
    EXPECT_EQ(sscanf(text.c_str(), "%x:%x:%x:%x:%x:%x", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5]), 6);
    return {b, b + 6};
}

// The bridge control requests the library issued, and injected failures.
struct brctl_call {
    unsigned long cmd, num, offset;
};
std::vector<brctl_call> calls;
int busy_reads;        // fail this many entry reads with EAGAIN
int port_list_errno;   // fail the port list with this errno

int record_brctl(int, unsigned long request, void *arg)
{
    if (request != SIOCDEVPRIVATE)
        return 0;
    const auto *args = reinterpret_cast<const unsigned long *>(static_cast<ifreq *>(arg)->ifr_data);
    calls.push_back({args[0], args[2], args[3]});
    if (args[0] == kGetFdbEntries && busy_reads > 0) {
        busy_reads--;
        return EAGAIN;
    }
    if (args[0] == kGetPortList)
        return port_list_errno;
    return 0;
}

struct BrTable : testing::Test {
    void SetUp() override
    {
        calls.clear();
        busy_reads = 0;
        port_list_errno = 0;
        fake_sleep::reset();
        fake_ioctl::set(record_brctl);
    }
    void TearDown() override { fake_ioctl::set(nullptr); }
};

TEST_F(BrTable, ReadsWindowsOfTheTable)
{
    // 299 static entries and the local address of eth2: 300 in all.
    add_static_entries(299);
    int sock = socket(AF_INET, SOCK_STREAM, 0);
    vesk_br_fdb_entry all[400];
    // The kernel answers at most a page of entries (256) per read.
    ASSERT_EQ(br_read_fdb("br0", all, 0, 400, sock), 256);
    ASSERT_EQ(br_read_fdb("br0", all + 256, 256, 144, sock), 44);
    int locals = 0;
    for (int i = 0; i < 300; i++) {
        EXPECT_EQ(all[i].port_no, 1);
        locals += all[i].is_local;
        if (all[i].is_local) {
            EXPECT_EQ(std::vector<unsigned char>(all[i].mac_addr, all[i].mac_addr + 6), sys_mac("eth2"));
        }
    }
    EXPECT_EQ(locals, 1);

    const struct {
        unsigned long offset, num;
        int result;
    } windows[] = {{128, 128, 128}, {256, 128, 44}, {300, 128, 0}, {299, 5, 1}, {10, 0, 0}};
    for (const auto &w : windows) {
        SCOPED_TRACE(testing::Message() << "offset " << w.offset << " num " << w.num);
        vesk_br_fdb_entry part[130];
        memset(part, 0xEE, sizeof part);
        ASSERT_EQ(br_read_fdb("br0", part, w.offset, w.num, sock), w.result);
        for (int i = 0; i < w.result; i++)
            EXPECT_EQ(memcmp(part[i].mac_addr, all[w.offset + i].mac_addr, 6), 0) << i;
        EXPECT_EQ(part[w.result].port_no, 0xEEEE); // nothing written past the entries read
    }
    errno = 0;
    EXPECT_LT(br_read_fdb("nosuchbr", all, 0, 128, sock), 0);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_LT(br_read_fdb("br0", nullptr, 0, 128, sock) | br_read_fdb(nullptr, all, 0, 128, sock), 0);
    close(sock);
}

TEST_F(BrTable, LookUpReadsTheWholeTableInBatchesOf128)
{
    add_static_entries(299);
    unsigned char mac[6];
    entry_mac(1, mac); // in the first batch: the whole table is read all the same
    EXPECT_STREQ(brtable_find_if_by_mac(mac, "br0"), "eth2");
    std::vector<unsigned long> offsets;
    for (const auto &c : calls) {
        if (c.cmd == kGetFdbEntries) {
            offsets.push_back(c.offset);
            EXPECT_EQ(c.num, 128u);
        }
    }
    EXPECT_EQ(offsets, (std::vector<unsigned long>{0, 128, 256, 300}));
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back().cmd, kGetPortList);
    EXPECT_EQ(calls.back().num, 1024u);
}

TEST_F(BrTable, PortOfAnAddress)
{
    ASSERT_EQ(vdev::sh("ip link add eth3 type veth peer name lan1 && ip link set eth3 master br0"
                       " && ip link add br9 type bridge && ip link add eth9 type veth peer name lan9"),
              0);
    add_static_entries(200);
    ASSERT_EQ(vdev::sh("bridge fdb add fe:dc:ba:98:76:54 dev eth3 master static"
                       " && bridge fdb add 02:00:00:00:00:c8 dev eth3 master static 2>/dev/null; true"),
              0);
    auto eth2_mac = sys_mac("eth2");
    auto eth3_mac = sys_mac("eth3");
    unsigned char last[6], unknown[6] = {2, 0, 0, 0, 0xFF, 0xFF};
    entry_mac(200, last);
    const struct {
        const char *name;
        const unsigned char *mac;
        const char *bridge;
        const char *port;
        const char *message;
    } cases[] = {
        {"static entry in the last batch", last, "br0", "eth2", ""},
        {"bytes above 0x7F on a second port", (const unsigned char *)"\xfe\xdc\xba\x98\x76\x54", "br0", "eth3", ""},
        {"local address of a port", eth2_mac.data(), "br0", "eth2", ""},
        {"local address of the other port", eth3_mac.data(), "br0", "eth3", ""},
        {"address not in the table", unknown, "br0", "unknown", ""},
        {"empty table", last, "br9", "unknown", ""},
        {"no such bridge", last, "nosuchbr", "unknown", "read of forward table failed: No such device\n"},
        {"not a bridge", last, "eth9", "unknown", "read of forward table failed: Operation not supported\n"},
        {"name too long", last, "bridge-name-long", "unknown", "read of forward table failed: File name too long\n"},
        {"null bridge", last, nullptr, "unknown", ""},
        {"null address", nullptr, "br0", "unknown", ""},
    };
    char *buffer = brtable_find_if_by_mac(last, "br0");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        CaptureStderr();
        EXPECT_EQ(brtable_find_if_by_mac(c.mac, c.bridge), buffer);
        EXPECT_EQ(GetCapturedStderr(), c.message);
        EXPECT_STREQ(buffer, c.port);
    }
}

TEST_F(BrTable, BusyTableIsAskedTenTimes)
{
    add_static_entries(3);
    unsigned char mac[6];
    entry_mac(3, mac);
    const struct {
        int busy;
        const char *port;
        unsigned sleeps;
        const char *message;
    } cases[] = {
        {1, "eth2", 1, ""},
        {9, "eth2", 9, ""},
        {10, "unknown", 9, "read of forward table failed: Resource temporarily unavailable\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.busy);
        busy_reads = c.busy;
        fake_sleep::reset();
        CaptureStderr();
        EXPECT_STREQ(brtable_find_if_by_mac(mac, "br0"), c.port);
        EXPECT_EQ(GetCapturedStderr(), c.message);
        EXPECT_EQ(fake_sleep::calls, c.sleeps);
        EXPECT_EQ(fake_sleep::slept_us, 0u); // sleep(0): a yield, not a wait
    }
}

TEST_F(BrTable, FailedPortList)
{
    add_static_entries(1);
    port_list_errno = EPERM;
    unsigned char mac[6];
    entry_mac(1, mac);
    CaptureStderr();
    EXPECT_STREQ(brtable_find_if_by_mac(mac, "br0"), "unknown");
    EXPECT_EQ(GetCapturedStderr(), "list ports for bridge:'br0' failed: Operation not permitted\n");
}

TEST_F(BrTable, PortNumbersAbove255)
{
    // eth2 is port 1, p1..p258 are ports 2..259; the kernel's entry carries
    // the high byte of 259 apart from the low one.
    std::string batch;
    for (int i = 1; i <= 258; i++)
        batch += "link add p" + std::to_string(i) + " type veth peer name q" + std::to_string(i) + "\nlink set p" +
                 std::to_string(i) + " master br0\n";
    vdev::put("/tmp/ports.batch", batch);
    ASSERT_EQ(vdev::sh("ip -batch /tmp/ports.batch"), 0);
    ASSERT_EQ(vdev::read("/sys/class/net/p258/brport/port_no"), "0x103\n");
    ASSERT_EQ(vdev::sh("bridge fdb add 02:00:00:00:01:03 dev p258 master static"
                       " && bridge fdb add 02:00:00:00:00:03 dev p2 master static"),
              0);
    unsigned char high[6] = {2, 0, 0, 0, 1, 3}, low[6] = {2, 0, 0, 0, 0, 3};
    EXPECT_STREQ(brtable_find_if_by_mac(high, "br0"), "p258");
    EXPECT_STREQ(brtable_find_if_by_mac(low, "br0"), "p2");
}

// Lines of "bridge fdb show" that hold text.
int fdb_lines(const std::string &text)
{
    vdev::sh("bridge fdb show > /tmp/fdb.txt");
    std::string all = vdev::read("/tmp/fdb.txt");
    int n = 0;
    for (size_t pos = all.find(text); pos != std::string::npos; pos = all.find(text, pos + 1))
        n++;
    return n;
}

TEST(BrDelete, RemovesTheAddressFromEveryDevice)
{
    // iproute2's "bridge fdb del" without "master" asks the device itself, so
    // an entry of the bridge (..:03) survives; the result is 1 all the same.
    ASSERT_EQ(vdev::sh("bridge fdb add 02:aa:bb:cc:dd:01 dev eth2 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:01 dev lan0 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:02 dev lan0 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:03 dev eth2 master static"),
              0);
    const struct {
        const char *mac;
        int result;
        const char *line; // how often it is then shown
        int left;
    } cases[] = {
        {"02-aa-bb-cc-dd-02", 0, "02:aa:bb:cc:dd:02", 1},
        {"02aabbccdd02", 0, "02:aa:bb:cc:dd:02", 1},
        {"02:aa:bb:cc:dd:0", 0, "02:aa:bb:cc:dd:02", 1},
        {"02:aa:bb:cc:dd:02:03", 0, "02:aa:bb:cc:dd:02", 1},
        {" 02:aa:bb:cc:dd:02", 0, "02:aa:bb:cc:dd:02", 1},
        {"02:aa:bb:cc:dd:0g", 0, "02:aa:bb:cc:dd:02", 1},
        {nullptr, 0, "02:aa:bb:cc:dd:02", 1},
        {"02:AA:BB:CC:DD:02", 1, "02:aa:bb:cc:dd:02", 1}, // the tool prints lower case
        {"02:aa:bb:cc:dd:99", 1, "02:aa:bb:cc:dd:99", 0},
        {"02:aa:bb:cc:dd:01", 1, "02:aa:bb:cc:dd:01", 0}, // from both devices
        {"02:aa:bb:cc:dd:03", 1, "02:aa:bb:cc:dd:03", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mac ? c.mac : "(null)");
        EXPECT_EQ(vesk_del_br_fdb(c.mac), c.result);
        EXPECT_EQ(fdb_lines(c.line), c.left);
    }
    EXPECT_EQ(fdb_lines("02:aa:bb:cc:dd:02"), 1);
}

TEST(BrDelete, CutOutputLineIsLeftAlone)
{
    // 30 devices carry the address: the tool's output passes 1024 bytes.
    std::string batch;
    for (int i = 0; i < 30; i++)
        batch += "link add veth-long-" + std::to_string(i) + " type veth peer name vp" + std::to_string(i) + "\n";
    vdev::put("/tmp/links.batch", batch);
    ASSERT_EQ(vdev::sh("ip -batch /tmp/links.batch && for i in $(seq 0 29); do"
                       " bridge fdb add 02:aa:bb:cc:dd:04 dev veth-long-$i self permanent || exit 1; done"),
              0);
    ASSERT_EQ(vdev::sh("bridge fdb show | grep 02:aa:bb:cc:dd:04 > /tmp/before.txt"), 0);
    std::string before = vdev::read("/tmp/before.txt");
    ASSERT_GT(before.size(), 1023u);
    std::string seen = before.substr(0, 1023);
    int complete = 0;
    for (char ch : seen)
        complete += ch == '\n';
    ASSERT_NE(seen.back(), '\n');

    EXPECT_EQ(vesk_del_br_fdb("02:aa:bb:cc:dd:04"), 1);
    EXPECT_EQ(fdb_lines("02:aa:bb:cc:dd:04"), 30 - complete);
    // The device of the cut line keeps its entry.
    std::string cut = before.substr(seen.rfind('\n') + 1);
    cut = cut.substr(0, cut.find('\n'));
    EXPECT_EQ(fdb_lines(cut), 1) << cut;
}

} // namespace
