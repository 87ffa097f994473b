// The packet socket: a TCP client that builds one request in its record,
// sends it in one piece and reads one reply, every wait bounded.
//
// The assertion lines are what the device prints for a caller's bad
// argument, and field scripts match on them: their line numbers are
// written out.
#include "vesk_socket.h"

#include <errno.h>
#include <netdb.h>
#include <netinet/in.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>

#include "core/assert.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_string.h"

// The record is shared with the daemons' programs; its layout is fixed.
static_assert(sizeof(unsigned short) == 2 && sizeof(int) == 4);
static_assert(offsetof(vesk_socket_pkt, name) == 0 && offsetof(vesk_socket_pkt, port) == 256);
static_assert(offsetof(vesk_socket_pkt, sock) == 260 && offsetof(vesk_socket_pkt, sock_timeout) == 264);
static_assert(offsetof(vesk_socket_pkt, send_timeout) == 268 && offsetof(vesk_socket_pkt, recv_timeout) == 272);
static_assert(offsetof(vesk_socket_pkt, out_buf) == 276 && offsetof(vesk_socket_pkt, out_len) == 1776);
static_assert(offsetof(vesk_socket_pkt, in_buf) == 1780 && offsetof(vesk_socket_pkt, in_len) == 3280);
static_assert(offsetof(vesk_socket_pkt, pos_to_write) == 3284 && sizeof(vesk_socket_pkt) == 3288);

namespace {

constexpr int kSockTimeout = 2, kSendTimeout = 5, kRecvTimeout = 5;

// Room left in out_buf; the counters never pass the buffer's end.
int room(const vesk_socket_pkt *pkt) { return MAX_VESK_SOCKET_BUFFER - std::clamp(pkt->out_len, 0, MAX_VESK_SOCKET_BUFFER); }

void appended(vesk_socket_pkt *pkt, int n)
{
    pkt->out_len += n;
    pkt->pos_to_write += n;
}

// select() for one descriptor: its result, with errno EBADF for a
// descriptor that no select set can hold.
int wait_for(int fd, int seconds, bool writable, fd_set &set)
{
    FD_ZERO(&set);
    if (fd < 0 || fd >= FD_SETSIZE) {
        errno = EBADF;
        return -1;
    }
    FD_SET(fd, &set);
    timeval tv{seconds, 0};
    return select(fd + 1, writable ? nullptr : &set, writable ? &set : nullptr, nullptr, &tv);
}

} // namespace

extern "C" {

int vesk_socket_pkt_dump(vesk_socket_pkt *pkt)
{
    VESK_ASSERT_AT(71, pkt!=0);
    T_PRINTF("\n----- pkt @0x%x, OUT: len %d, pos_to_write(next) %d|IN len %d, name[%s] port[%d] ----\n",
             static_cast<unsigned int>(reinterpret_cast<uintptr_t>(pkt)), pkt->out_len, pkt->pos_to_write,
             pkt->in_len, pkt->name, pkt->port);
    if (pkt->out_len) {
        T_PRINTF(">>OUT>>\n");
        vesk_dbg_hexdump(0, pkt->out_buf, static_cast<unsigned int>(std::clamp(pkt->out_len, 0, MAX_VESK_SOCKET_BUFFER)));
    }
    if (pkt->in_len) {
        T_PRINTF("<<IN<<\n");
        vesk_dbg_hexdump(0, pkt->in_buf, static_cast<unsigned int>(std::clamp(pkt->in_len, 0, MAX_VESK_SOCKET_BUFFER)));
    }
    T_PRINTF("\n");
    return 1;
}

int vesk_socket_pkt_write(vesk_socket_pkt *pkt, const char *format, ...)
{
    VESK_ASSERT_AT(89, pkt!=0);
    char text[MAX_VESK_SOCKET_BUFFER];
    va_list ap;
    va_start(ap, format);
    int n = format ? vsnprintf(text, sizeof text, format, ap) : 0;
    va_end(ap);
    // What vsnprintf kept of the text, and of that what fits behind the
    // earlier writes; the rest of out_buf is zero, so no terminator is needed.
    n = std::min({std::max(n, 0), MAX_VESK_SOCKET_BUFFER - 1, room(pkt)});
    memcpy(pkt->out_buf + MAX_VESK_SOCKET_BUFFER - room(pkt), text, static_cast<size_t>(n));
    appended(pkt, n);
    return 1;
}

int vesk_socket_pkt_write_binary(vesk_socket_pkt *pkt, const void *ptr, int len)
{
    VESK_ASSERT_AT(105, pkt!=0);
    VESK_ASSERT_AT(106, ptr!=0);
    const int n = std::clamp(len, 0, room(pkt));
    memcpy(pkt->out_buf + MAX_VESK_SOCKET_BUFFER - room(pkt), ptr, static_cast<size_t>(n));
    appended(pkt, n);
    return 1;
}

int vesk_socket_do_connect(vesk_socket_pkt *pkt)
{
    VESK_ASSERT_AT(115, pkt!=0);
    pkt->sock = socket(AF_INET, SOCK_STREAM, 0);
    if (pkt->sock < 0) {
        perror("vesk_socket_do_connect: create socket error!\n");
        return 0;
    }
    vesk::unique_fd sock(pkt->sock);

    addrinfo hints{};
    hints.ai_flags = AI_CANONNAME;
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM; // for the look-up only: the address is all we take
    addrinfo *found = nullptr;
    sockaddr_in addr{};
    if (getaddrinfo(pkt->name, nullptr, &hints, &found) != 0 || !found || found->ai_family != AF_INET) {
        vesk::unique_addrinfo release(found);
        perror("vesk_socket_do_connect: get domain name error!\n");
        return 0;
    }
    memcpy(&addr, found->ai_addr, std::min(sizeof addr, static_cast<size_t>(found->ai_addrlen)));
    freeaddrinfo(found);

    // A service named by the port's decimal text wins; its port is in
    // network order already.
    const servent *service = getservbyname(vesk_itoa(pkt->port, 10), "tcp");
    addr.sin_family = AF_INET;
    addr.sin_port = service ? static_cast<in_port_t>(service->s_port) : htons(pkt->port);

    const timeval tv{pkt->sock_timeout, 0};
    if (setsockopt(sock.get(), SOL_SOCKET, SO_RCVTIMEO, &tv, sizeof tv) < 0 ||
        setsockopt(sock.get(), SOL_SOCKET, SO_SNDTIMEO, &tv, sizeof tv) < 0)
        return 0;
    if (connect(sock.get(), reinterpret_cast<const sockaddr *>(&addr), sizeof addr) == -1) {
        perror("connect");
        return 0;
    }
    sock.release();
    return 1;
}

int vesk_socket_send(vesk_socket_pkt *pkt)
{
    VESK_ASSERT_AT(157, pkt!=0);
    fd_set set;
    const int ready = wait_for(pkt->sock, pkt->send_timeout, true, set);
    if (ready == 0) {
        T_PRINTF("%s: socket Timeout\n", __func__);
        return 0;
    }
    if (ready < 0) {
        T_PRINTF("%s: Select error [%s]\n", __func__, strerror(errno));
    } else if (!FD_ISSET(pkt->sock, &set)) {
        fputs("error: case not handled.", stderr);
    } else {
        // MSG_NOSIGNAL: a peer that has gone away must not kill the caller
        // with SIGPIPE; the failure is reported like any other.
        const size_t len = static_cast<size_t>(std::clamp(pkt->out_len, 0, MAX_VESK_SOCKET_BUFFER));
        if (send(pkt->sock, pkt->out_buf, len, MSG_NOSIGNAL) == -1)
            fprintf(stderr, "Error sending request: %s\n", strerror(errno));
    }
    memset(pkt->out_buf, 0, sizeof pkt->out_buf);
    pkt->out_len = 0;
    pkt->pos_to_write = 0;
    return 1;
}

int vesk_socket_recv(vesk_socket_pkt *pkt, int len)
{
    VESK_ASSERT_AT(183, pkt!=0);
    VESK_ASSERT_AT(184, len < MAX_VESK_SOCKET_BUFFER);
    if (len < 1) {
        fprintf(stderr, "%s: no room for a reply (len %d)\n", __func__, len);
        return -1;
    }
    fd_set set;
    const int ready = wait_for(pkt->sock, pkt->recv_timeout, false, set);
    if (ready < 0) {
        fprintf(stderr, "select: %s\n", strerror(errno));
        return -1;
    }
    if (ready == 0) {
        fputs("timeout\n", stderr);
        return -1;
    }
    if (!FD_ISSET(pkt->sock, &set)) {
        fputs("error: case not handled.", stderr);
        return -1;
    }
    const ssize_t n = recv(pkt->sock, pkt->in_buf, static_cast<size_t>(len - 1), 0);
    if (n == -1) {
        fprintf(stderr, "error recv()ing reply: %s\n", strerror(errno));
        return -1;
    }
    pkt->in_buf[n] = '\0';
    return static_cast<int>(n);
}

int vesk_socket_close(vesk_socket_pkt *pkt)
{
    VESK_ASSERT_AT(214, pkt!=0);
    return close(pkt->sock);
}

int vesk_socket_pkt_init(vesk_socket_pkt *pkt, const char *name, unsigned short port)
{
    if (!pkt || !name) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    memset(pkt, 0, sizeof *pkt);
    memcpy(pkt->name, name, strnlen(name, sizeof pkt->name - 1));
    pkt->port = port;
    pkt->sock_timeout = kSockTimeout;
    pkt->send_timeout = kSendTimeout;
    pkt->recv_timeout = kRecvTimeout;
    return 1;
}

} // extern "C"
