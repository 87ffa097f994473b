// WAN state: the PPP link, the detector's findings, and port range lists.
#include "core/command.hpp"
#include "core/placeholders.hpp"
#include "vesk_wan.h"

#include <net/if.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string_view>

#include "sysapi.h"
#include "vesk_if.h"
#include "vesk_util.h"

namespace {

constexpr size_t kPidPath = 80;
constexpr size_t kNetstatOut = 80;


constexpr struct {
    const char *marker;
    int bit;
} kDetectors[] = {
    {"/tmp/detector.dhcp", 1},
    {"/tmp/detector.pppoe", 2},
    {"/tmp/detector.pptp", 4},
};
constexpr int kDetectionAlways = 8;

bool daemon_alive(const char *pid_name)
{
    if (!pid_name)
        return false;
    char pid_file[kPidPath];
    int n = snprintf(pid_file, sizeof pid_file, "/var/run/%s.pid", pid_name);
    if (n < 0 || static_cast<size_t>(n) >= sizeof pid_file)
        return false; // a cut path would name some other daemon's file
    return osapi_is_proc_pid_existed(pid_file) > 0;
}

// Runs "netstat -rn | grep <ifname>"; only whether it could be run counts.
int netstat_route_check(const char *ifname)
{
    if (!ifname || strlen(ifname) >= IFNAMSIZ)
        return -1;
    char out[kNetstatOut] = {};
    return vesk::cmd::capture(__func__, out, "netstat -rn | grep %s", ifname);
}

// Text appended to a fixed buffer; when it would not fit it is cut and the
// buffer is full for good.
class bounded_text {
public:
    bounded_text(char *dst, size_t size) : dst_(dst), size_(size) {}
    bool full() const { return full_; }
    void append(const char *format, ...) __attribute__((format(printf, 2, 3)))
    {
        if (full_)
            return;
        va_list ap;
        va_start(ap, format);
        int n = vsnprintf(dst_ + used_, size_ - used_, format, ap);
        va_end(ap);
        if (n < 0 || static_cast<size_t>(n) >= size_ - used_) {
            full_ = true;
            return;
        }
        used_ += static_cast<size_t>(n);
    }

private:
    char *dst_;
    size_t size_;
    size_t used_ = 0;
    bool full_ = false;
};

// atoi cut to 16 bits, without atoi's undefined overflow.
unsigned short port_at(const char *text) { return static_cast<unsigned short>(strtol(text, nullptr, 10)); }

} // namespace

extern "C" {

int vesk_wan_get_ppp_status(const char *pid_name, const char *ifname)
{
    const bool alive = daemon_alive(pid_name);
    const std::string_view gateway(vesk_if_get_default_gateway());
    const bool real_gateway = gateway != vesk::kNoAnswer && gateway != vesk::kPppPlaceholderPeer;
    const int route_check = netstat_route_check(ifname);
    if (!alive)
        return 0;
    return real_gateway && route_check >= 0 ? 1 : 2;
}

int vesk_wan_detection(void)
{
    int mask = 0;
    for (const auto &d : kDetectors)
        if (osapi_is_file_existed(d.marker))
            mask |= d.bit;
    return mask | kDetectionAlways;
}

int vesk_wan_port_range_list_to_string(const unsigned short *list, int count, char *dst, int dst_size)
{
    if (!list || !dst)
        return 0;
    if (dst_size <= 0)
        return 1;
    memset(dst, 0, static_cast<size_t>(dst_size));
    if (count <= 0)
        return 1;
    bounded_text text(dst, static_cast<size_t>(dst_size));
    text.append("%d", list[0]);
    for (int i = 1; i < count && !text.full(); i++) {
        const bool is_end = i % 2 == 1;
        if (list[i] == 0) {
            // A start of 0 is a port when its range has an end; the end of
            // the last start of an odd list lies outside it and reads as 0.
            const unsigned short end = i + 1 < count ? list[i + 1] : 0;
            if (is_end || end == 0)
                continue;
        }
        text.append("%s%d", is_end ? "-" : ", ", list[i]);
    }
    return 1;
}

int vesk_wan_port_ranger_string_to_list(const char *str, unsigned short *list, int count)
{
    if (!str || !list)
        return 0;
    if (count <= 0)
        return 1;
    memset(list, 0, static_cast<size_t>(count) * sizeof *list);
    list[0] = port_at(str);
    int next = 1;
    for (const char *p = str; *p && next < count; p++) {
        if (*p == ',') {
            if (next % 2 == 1)
                next++; // every range starts at an even entry
            if (next >= count)
                break;
            list[next++] = port_at(p + 1);
        } else if (*p == '-') {
            list[next++] = port_at(p + 1);
        }
    }
    return 1;
}

} // extern "C"
