// The system daemon's control link: Unix datagrams to /var/sd_if/if0 from a
// client socket of this process's own.
#include "vesk_sd.h"

#include <errno.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <string_view>

#include "core/unique.hpp"
#include "sysapi.h"

// Both ends are passed with the full address length: 2 bytes of family
// and 108 of path.
static_assert(sizeof(sockaddr_un) == 110 && offsetof(sockaddr_un, sun_path) == 2);

namespace {

constexpr char kDaemonPath[] = "/var/sd_if/if0";
constexpr char kClientFormat[] = "/var/sd_local_%d-%d";
constexpr int kClientTag = 168;
constexpr int kReplyWaitSeconds = 40;
constexpr size_t kReplySize = 128; // the datagram is read with one byte less
constexpr char kInterim = '<';

enum result : int { kOk = 0, kFailed = -1, kTimedOut = -2, kNoDaemon = -3 };

sockaddr_un unix_address(const char *format, int a = 0, int b = 0)
{
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    snprintf(addr.sun_path, sizeof addr.sun_path, format, a, b);
    return addr;
}

// The bound client socket; its file is removed when the call ends.
struct client {
    vesk::unique_fd sock;
    sockaddr_un addr;
    bool bound = false;
    ~client()
    {
        sock.reset(); // closed first, then the file goes
        if (bound)
            unlink(addr.sun_path);
    }
};

// Waits for the next datagram, at most kReplyWaitSeconds. A signal does not
// end the wait early nor restart it: select() leaves the time still to wait
// in tv.
bool readable(int fd)
{
    if (fd >= FD_SETSIZE)
        return false;
    timeval tv{kReplyWaitSeconds, 0};
    for (;;) {
        fd_set set;
        FD_ZERO(&set);
        FD_SET(fd, &set);
        const int n = select(fd + 1, &set, nullptr, nullptr, &tv);
        if (n < 0 && errno == EINTR)
            continue;
        return n > 0 && FD_ISSET(fd, &set);
    }
}

} // namespace

extern "C" int vesk_sd_ctrl(const char *command, char *reply)
{
    if (!osapi_is_file_existed(kDaemonPath))
        return kNoDaemon;
    if (!command || !*command)
        return kFailed;
    const std::string_view text(command);
    const bool no_answer = text.back() == '&';

    client c{vesk::unique_fd(socket(AF_UNIX, SOCK_DGRAM, 0)), unix_address(kClientFormat, getpid(), kClientTag)};
    if (!c.sock)
        return kFailed;
    if (bind(c.sock.get(), reinterpret_cast<const sockaddr *>(&c.addr), sizeof c.addr) < 0)
        return kFailed;
    c.bound = true;
    const sockaddr_un daemon = unix_address(kDaemonPath);
    if (connect(c.sock.get(), reinterpret_cast<const sockaddr *>(&daemon), sizeof daemon) < 0)
        return kFailed;
    if (send(c.sock.get(), text.data(), text.size() - (no_answer ? 1 : 0), 0) < 0) {
        T_PRINTF("'%s' command failed.\n", command);
        return kFailed;
    }

    char buf[kReplySize] = "OK";
    ssize_t n = 2;
    while (!no_answer) {
        if (!readable(c.sock.get())) {
            T_PRINTF("'%s' command timed out.\n", command);
            return kTimedOut;
        }
        n = recv(c.sock.get(), buf, kReplySize - 1, 0);
        if (n < 0) {
            T_PRINTF("'%s' command failed.\n", command);
            return kFailed;
        }
        if (n == 0 || buf[0] != kInterim)
            break;
        const ssize_t shown = n == static_cast<ssize_t>(kReplySize - 1) ? n - 1 : n;
        buf[shown] = '\0';
        T_PRINTF("[%s] [%d]\n", buf, static_cast<int>(shown));
    }
    buf[n] = '\0';
    unlink(c.addr.sun_path); // on success the file goes first, then the socket
    c.bound = false;
    c.sock.reset();
    if (reply)
        memcpy(reply, buf, static_cast<size_t>(n) + 1);
    return kOk;
}
