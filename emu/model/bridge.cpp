// The bridge's control requests (SIOCDEVPRIVATE with BRCTL_* sub-commands).
// They go to the kernel; under qemu-user, which refuses them with ENOSYS,
// they are answered from the kernel's own state in /sys, as the bridge
// driver would answer them: its forwarding table from brforward, its ports
// from brif/. Either way they are logged and can be failed on demand.
#include <dirent.h>
#include <errno.h>
#include <net/if.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>

#include "model.hpp"

namespace vdev_model {
namespace {

constexpr unsigned long BRCTL_GET_PORT_LIST = 7;
constexpr unsigned long BRCTL_GET_FDB_ENTRIES = 18;
constexpr unsigned long kMaxPorts = 1024; // BR_MAX_PORTS
constexpr unsigned long kDefaultPorts = 256;
constexpr size_t kPageSize = 4096; // the kernel answers at most a page of entries

// struct __fdb_entry, as brforward holds it and the request copies it out.
struct fdb_entry {
    uint8_t mac_addr[6], port_no, is_local;
    uint8_t ageing_timer_value[4], port_hi, pad0, unused[2];
};
static_assert(sizeof(fdb_entry) == 16);
static_assert(offsetof(fdb_entry, port_no) == 6 && offsetof(fdb_entry, is_local) == 7);
static_assert(offsetof(fdb_entry, port_hi) == 12);

// The request's four words are the program's unsigned long.
using brctl_args = unsigned long[4];

answer fdb_entries(const char *bridge, const brctl_args &args)
{
    char path[64];
    snprintf(path, sizeof path, "/sys/class/net/%s/brforward", bridge);
    state_text table;
    if (!read_file(table, path))
        return -EOPNOTSUPP;
    size_t count = table.size / sizeof(fdb_entry);
    size_t skip = std::min<size_t>(args[3], count);
    size_t n = std::min({count - skip, static_cast<size_t>(args[2]), kPageSize / sizeof(fdb_entry)});
    if (n && !args[1])
        return -EFAULT;
    if (n)
        memcpy(reinterpret_cast<void *>(args[1]), table.view().data() + skip * sizeof(fdb_entry), n * sizeof(fdb_entry));
    return static_cast<answer>(n);
}

answer port_list(const char *bridge, const brctl_args &args)
{
    unsigned long num = args[2] == 0 ? kDefaultPorts : std::min(args[2], kMaxPorts);
    char path[64];
    snprintf(path, sizeof path, "/sys/class/net/%s/brif", bridge);
    vesk::unique_dir ports(opendir(path));
    if (!ports)
        return -EOPNOTSUPP;
    if (!args[1])
        return -EFAULT;
    auto *indices = reinterpret_cast<int32_t *>(args[1]);
    memset(indices, 0, num * sizeof *indices);
    while (const dirent *port = readdir(ports.get())) {
        char file[sizeof path + sizeof port->d_name + 16];
        snprintf(file, sizeof file, "%s/%s/port_no", path, port->d_name);
        state_text no;
        if (port->d_name[0] == '.' || !read_file(no, file))
            continue;
        unsigned long port_no = strtoul(no.view().data(), nullptr, 0);
        if (port_no < num)
            indices[port_no] = static_cast<int32_t>(if_nametoindex(port->d_name));
    }
    return static_cast<answer>(num);
}

} // namespace

answer bridge(const request &r)
{
    // Only a bridge's private data are the four words.
    const char *data = static_cast<ifreq *>(r.arg)->ifr_data;
    char dir[64];
    snprintf(dir, sizeof dir, "/sys/class/net/%s/bridge", r.ifname);
    if (!data || !plain_name(r.ifname) || access(dir, F_OK) != 0)
        return kernel(r);
    const auto &args = *reinterpret_cast<const brctl_args *>(data);
    const char *name = args[0] == BRCTL_GET_FDB_ENTRIES ? "fdb" : args[0] == BRCTL_GET_PORT_LIST ? "ports" : "brctl";
    if (int err = opening(r, name, "num=%lu offset=%lu", args[2], args[3]))
        return -err;
    int rc = real_ioctl(r.fd, r.number, r.arg);
    if (rc >= 0 || errno != ENOSYS)
        return rc >= 0 ? rc : -errno;
    // qemu-user refused it: the bridge driver's answer from its state in /sys.
    if (args[0] == BRCTL_GET_FDB_ENTRIES)
        return fdb_entries(r.ifname, args);
    if (args[0] == BRCTL_GET_PORT_LIST)
        return port_list(r.ifname, args);
    return -EOPNOTSUPP;
}

} // namespace vdev_model
