#include <net/if.h>
#include <sys/socket.h>

#include "fake_sleep.hpp"
#include "net_helpers.hpp"
#include "vesk_br.h"

namespace {

// Static entries 02:00:00:00:HH:LL, i = 1..count, on eth2; learning is off
// and lan0's learnt address forgotten, so the table holds exactly these.
void add_static_entries(int count)
{
    ASSERT_EQ(vdev::sh("bridge link set dev eth2 learning off && { bridge fdb del $(cat /sys/class/net/lan0/address)"
                       " dev eth2 master 2>/dev/null; true; } && for i in $(seq " + std::to_string(count) + "); do"
                       " printf 'fdb add 02:00:00:00:%02x:%02x dev eth2 master static\\n' $((i >> 8)) $((i & 255));"
                       " done > /tmp/fdb.batch && bridge -batch /tmp/fdb.batch"), 0);
}

std::vector<unsigned char> entry_mac(int i) { return {2, 0, 0, 0, (unsigned char)(i >> 8), (unsigned char)i}; }

TEST(BrTable, ReadsWindowsAndLooksUpPortsInBatchesOf128)
{
    add_static_entries(299); // and the local address of eth2: 300 in all
    int sock = socket(AF_INET, SOCK_STREAM, 0);
    vesk_br_fdb_entry all[400];
    const auto eth2 = sys_mac("eth2");
    // The kernel answers at most a page of entries (256) per read.
    ASSERT_EQ(br_read_fdb("br0", all, 0, 400, sock), 256);
    ASSERT_EQ(br_read_fdb("br0", all + 256, 256, 144, sock), 44);
    EXPECT_EQ(br_read_fdb("br0", all, 0, ULONG_MAX / 2, sock), 256); // a huge count is capped, not allocated
    // The one local entry is eth2's own address.
    const auto is_local = [](const vesk_br_fdb_entry &e) { return e.is_local != 0; };
    ASSERT_EQ(std::count_if(all, all + 300, is_local), 1);
    const vesk_br_fdb_entry *local = std::find_if(all, all + 300, is_local);
    EXPECT_EQ(std::vector<unsigned char>(local->mac_addr, local->mac_addr + 6), eth2);
    const struct { unsigned long offset, num; int result; } windows[] = {
        {128, 128, 128}, {300, 128, 0}, {299, 5, 1}, {10, 0, 0}};
    for (const auto &w : windows) {
        SCOPED_TRACE(testing::Message() << "offset " << w.offset << " num " << w.num);
        vesk_br_fdb_entry part[130];
        memset(part, 0xEE, sizeof part);
        ASSERT_EQ(br_read_fdb("br0", part, w.offset, w.num, sock), w.result);
        for (int i = 0; i < w.result; i++)
            EXPECT_EQ(memcmp(part[i].mac_addr, all[w.offset + i].mac_addr, 6), 0) << i;
        EXPECT_EQ(part[w.result].port_no, 0xEEEE); // nothing written past the entries read
    }
    EXPECT_LT(br_read_fdb("br0", nullptr, 0, 128, sock), 0);
    EXPECT_LT(br_read_fdb(nullptr, all, 0, 128, sock), 0);
    close(sock);
    // A look-up reads the whole table in batches of 128, though the entry
    // is in the first one, then the port list.
    vdev::clear_journal();
    char *buffer = brtable_find_if_by_mac(entry_mac(1).data(), "br0");
    EXPECT_STREQ(buffer, "eth2");
    EXPECT_EQ(vdev::ioctls(), (std::vector<std::string>{"br0 fdb num=128 offset=0", "br0 fdb num=128 offset=128",
                                                        "br0 fdb num=128 offset=256", "br0 fdb num=128 offset=300",
                                                        "br0 ports num=1024 offset=0"}));
    // Every answer, found or not, is in the same buffer.
    auto last = entry_mac(299), unknown = entry_mac(0xFFFF);
    const struct { const unsigned char *mac; const char *bridge, *port; std::string message; } cases[] = {
        {last.data(), "br0", "eth2", ""}, // static entry in the last batch
        {unknown.data(), "br0", "unknown", ""},
        {last.data(), "nosuchbr", "unknown", "read of forward table failed: No such device\n"},
        {last.data(), nullptr, "unknown", ""},
        {nullptr, "br0", "unknown", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << (c.bridge ? c.bridge : "(null)") << " " << (c.mac ? c.mac[0] : -1));
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(brtable_find_if_by_mac(c.mac, c.bridge), buffer); }), c.message);
        EXPECT_STREQ(buffer, c.port);
    }
}

TEST(BrTable, BusyTableIsAskedTenTimesAndPortListFailure)
{
    add_static_entries(3);
    const struct { int busy; const char *ports_err, *port; unsigned sleeps; const char *message; } cases[] = {
        {9, nullptr, "eth2", 9, ""},
        {10, nullptr, "unknown", 9, "read of forward table failed: Resource temporarily unavailable\n"},
        {0, "EPERM", "unknown", 0, "list ports for bridge:'br0' failed: Operation not permitted\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.busy);
        vdev::remove("/run/vdev/fail/ioctl");
        if (c.busy)
            vdev::fail_ioctl("br0", "fdb", "EAGAIN", c.busy);
        else
            vdev::fail_ioctl("br0", "ports", c.ports_err);
        fake_sleep::reset();
        EXPECT_EQ(stderr_of([&] { EXPECT_STREQ(brtable_find_if_by_mac(entry_mac(3).data(), "br0"), c.port); }),
                  c.message);
        EXPECT_EQ(fake_sleep::calls, c.sleeps);
        EXPECT_EQ(fake_sleep::slept_us, 0u); // sleep(0): a yield, not a wait
    }
}

TEST(BrTable, PortNumbersAbove255)
{
    // eth2 is port 1, p1..p258 are ports 2..259; the kernel's entry carries
    // the high byte of 259 apart from the low one.
    ASSERT_EQ(vdev::sh("for i in $(seq 258); do printf 'link add p%d type veth peer name q%d\\nlink set p%d master br0\\n'"
                       " $i $i $i; done > /tmp/ports.batch && ip -batch /tmp/ports.batch"), 0);
    ASSERT_EQ(vdev::read("/sys/class/net/p258/brport/port_no"), "0x103\n");
    ASSERT_EQ(vdev::sh("bridge fdb add 02:00:00:00:01:03 dev p258 master static"
                       " && bridge fdb add 02:00:00:00:00:03 dev p2 master static"), 0);
    EXPECT_STREQ(brtable_find_if_by_mac(entry_mac(0x103).data(), "br0"), "p258");
    EXPECT_STREQ(brtable_find_if_by_mac(entry_mac(3).data(), "br0"), "p2");
}

// How many lines of "bridge fdb show" hold text, in any case.
int fdb_lines(const std::string &text)
{
    vdev::sh("bridge fdb show | grep -ci -- '" + text + "' > /tmp/fdb.count");
    return std::stoi(vdev::read("/tmp/fdb.count"));
}

TEST(BrDelete, RemovesTheAddressFromEveryDevice)
{
    // "bridge fdb del" without "master" asks the device itself, so the
    // bridge's own entry (..:03) survives; the result is 1 all the same.
    ASSERT_EQ(vdev::sh("bridge fdb add 02:aa:bb:cc:dd:01 dev eth2 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:01 dev lan0 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:02 dev lan0 self permanent"
                       " && bridge fdb add 02:aa:bb:cc:dd:03 dev eth2 master static"), 0);
    for (const char *bad : {"02:aa:bb:cc:dd:02:03", " 02:aa:bb:cc:dd:02", "02:aa:bb:cc:dd:0g", (const char *)nullptr})
        EXPECT_EQ(vesk_del_br_fdb(bad), 0) << (bad ? bad : "(null)");
    EXPECT_EQ(fdb_lines("02:aa:bb:cc:dd:02"), 1);
    // How often the address is shown after it is deleted: the tool prints
    // lower case, so an upper-case address finds nothing; ..:01 goes from both devices.
    for (auto [mac, left] : {std::pair{"02:AA:BB:CC:DD:02", 1}, {"02:aa:bb:cc:dd:01", 0}, {"02:aa:bb:cc:dd:03", 1}}) {
        EXPECT_EQ(vesk_del_br_fdb(mac), 1) << mac;
        EXPECT_EQ(fdb_lines(mac), left) << mac;
    }
}

TEST(BrDelete, CutOutputLineIsLeftAlone)
{
    // 30 devices carry the address: the tool's output passes 1024 bytes.
    ASSERT_EQ(vdev::sh("for i in $(seq 0 29); do ip link add veth-long-$i type veth peer name vp$i"
                       " && bridge fdb add 02:aa:bb:cc:dd:04 dev veth-long-$i self permanent || exit 1; done"
                       " && bridge fdb show | grep 02:aa:bb:cc:dd:04 > /tmp/before.txt"), 0);
    std::string before = vdev::read("/tmp/before.txt"), seen = before.substr(0, 1023);
    ASSERT_GT(before.size(), 1023u);
    ASSERT_NE(seen.back(), '\n');
    vdev::clear_journal();
    EXPECT_EQ(vesk_del_br_fdb("02:aa:bb:cc:dd:04"), 1);
    const long whole = std::count(seen.begin(), seen.end(), '\n');
    EXPECT_EQ(fdb_lines("02:aa:bb:cc:dd:04"), 30 - whole);
    EXPECT_EQ(vdev::commands().size(), size_t(whole) + 1); // the grep and one deletion a whole line
    // The device of the cut line keeps its entry.
    std::string cut = before.substr(seen.rfind('\n') + 1);
    cut = cut.substr(0, cut.find('\n'));
    EXPECT_EQ(fdb_lines(cut), 1) << cut;
}

} // namespace
