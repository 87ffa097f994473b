// The emulated device's drivers: what the radios, the Ethernet PHYs and (under
// user-mode emulation) the bridge answer to the requests this kernel cannot.
// The state lies in files under /run/vdev, shared by every process in the
// device and by the stand-in tools, so a program and a tool see one device.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <string_view>

#include "unique.hpp"

namespace vdev_model {

inline constexpr size_t kNameSize = 16; // IFNAMSIZ

// One request as the program issued it.
struct request {
    int fd;
    unsigned long number;
    void *arg;
    char ifname[kNameSize]; // the request's name field, terminated
};

// What a handler answers: the ioctl's result (0 or more), or -errno.
using answer = int;

// The C library's ioctl, which the model stands in front of.
int real_ioctl(int fd, unsigned long number, void *arg);

// The kernel's own answer to a request that no model covers. qemu-user
// refuses device-private requests with ENOSYS; then the answer the kernel
// gives a device without such a driver: ENODEV for a missing interface,
// EOPNOTSUPP for any other.
answer kernel(const request &r);
// That answer without asking: for what this kernel may not know at all
// (Wireless Extensions), as the device's kernel answers it.
answer no_driver(const request &r);

// Opens every answer of the model: adds "IFNAME NAME DETAIL" to the request
// log (/run/vdev/ioctls) and gives the errno that /run/vdev/fail/ioctl
// names for this interface and request, or 0.
int opening(const request &r, const char *name, const char *detail_format, ...)
    __attribute__((format(printf, 3, 4)));

// A state file read whole into a terminated heap block.
struct state_text {
    vesk::unique_heap block;
    size_t size = 0;
    std::string_view view() const { return {static_cast<const char *>(block.get()), size}; }
};
// Reads the file at path; false when it is no regular file.
bool read_file(state_text &out, const char *path);
// Reads /run/vdev/ and the formatted rest of the path; false when absent.
bool read_state(state_text &out, const char *format, ...) __attribute__((format(printf, 2, 3)));
bool state_exists(const char *format, ...) __attribute__((format(printf, 1, 2)));

// A name that can stand in a path: no "/", not "." or "..".
inline bool plain_name(const char *name) { return name[0] && name[0] != '.' && !strchr(name, '/'); }

// Visits the lines of a state file, blank lines and "#" comments skipped.
template <typename F> void each_line(std::string_view text, F &&visit)
{
    while (!text.empty()) {
        // remove_prefix, not substr: substr may throw, and the stand-in
        // links without libstdc++ as the device's libraries do.
        size_t end = text.find('\n');
        std::string_view line(text.data(), end < text.size() ? end : text.size());
        text.remove_prefix(end < text.size() ? end + 1 : text.size());
        size_t first = line.find_first_not_of(" \t\r");
        if (first != std::string_view::npos && line[first] != '#') {
            line.remove_prefix(first);
            visit(line);
        }
    }
}

// One "key=value" word of a line. A value in double quotes may hold blanks
// and the escapes \xHH, \\ and \"; value is decoded and terminated.
struct field {
    std::string_view key;
    char value[128];
    size_t len;
};
// Takes the next word off line; false at its end.
bool next_field(std::string_view &line, field &f);

long number(const field &f);
// Six hexadecimal bytes with colons; false when malformed.
bool mac_of(const field &f, unsigned char mac[6]);

inline void put_le16(unsigned char *p, uint32_t v)
{
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
}
inline void put_le32(unsigned char *p, uint32_t v)
{
    put_le16(p, v);
    put_le16(p + 2, v >> 16);
}

// The drivers. Each takes a request whose number lies in its range.
answer radio_wext(const request &r);     // Wireless Extensions and the Ralink private request
answer device_private(const request &r); // SIOCDEVPRIVATE .. + 15
answer mii(const request &r);            // SIOCGMIIPHY, SIOCGMIIREG

// Parts of device_private.
bool is_radio(const char *ifname);
answer qca_stations(const request &r);
bool is_mii_port(const char *ifname, int *fixed_phy);
answer mii_private(const request &r);
answer bridge(const request &r);

} // namespace vdev_model
