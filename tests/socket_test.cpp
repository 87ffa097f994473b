#include <arpa/inet.h>
#include <poll.h>
#include <string.h>
#include <unistd.h>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_socket.h"

namespace {

constexpr unsigned short kPort = 7777; // the device's own network: nothing else listens

// A TCP listener on 127.0.0.1: the kernel completes the library's connect,
// and the test then takes the peer's end with accept() and plays it itself.
int listener()
{
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{AF_INET, htons(kPort), {htonl(INADDR_LOOPBACK)}, {}};
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr *>(&a), sizeof a), 0);
    EXPECT_EQ(listen(fd, 1), 0);
    return fd;
}

std::string error_text(int err) { return strerror(err) + std::string("\n"); }

TEST(Socket, InitAndWritesStayWithinTheRecord)
{
    vesk_socket_pkt pkt;
    memset(&pkt, 0xA5, sizeof pkt);
    ASSERT_EQ(vesk_socket_pkt_init(&pkt, std::string(300, 'n').c_str(), 8080), 1);
    EXPECT_EQ(std::string(pkt.name), std::string(255, 'n'));
    EXPECT_EQ(std::make_tuple(pkt.port, pkt.sock_timeout, pkt.send_timeout, pkt.recv_timeout), std::make_tuple(8080, 2, 5, 5));

    vesk_socket_pkt_write(&pkt, "a=%d", 1);
    vesk_socket_pkt_write(&pkt, "b");
    vesk_socket_pkt_write_binary(&pkt, "\0x\0y", 4);
    vesk_socket_pkt_write(&pkt, "%s", "z");
    EXPECT_EQ(std::string(pkt.out_buf, 10), std::string("a=1b\0x\0yz\0", 10));
    EXPECT_EQ(std::make_pair(pkt.out_len, pkt.pos_to_write), std::make_pair(9, 9));
    vesk_socket_pkt_write(&pkt, "%s", std::string(2000, 't').c_str()); // stops at the end of out_buf
    vesk_socket_pkt_write_binary(&pkt, "more", 4);
    EXPECT_EQ(std::make_tuple(pkt.out_len, pkt.pos_to_write, pkt.in_buf[0]), std::make_tuple(1500, 1500, '\0'));
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_socket_pkt_init(nullptr, "x", 1), 0); }), "vesk_socket_pkt_init: input error!\n");
}

TEST(Socket, RequestsRepliesAndCloses)
{
    const int listening = listener();
    vesk_socket_pkt pkt;
    vesk_socket_pkt_init(&pkt, "localhost", kPort);
    ASSERT_EQ(vesk_socket_do_connect(&pkt), 1);
    const int peer = accept(listening, nullptr, nullptr);
    pkt.recv_timeout = 1; // nothing sent yet
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_recv(&pkt, 100), -1); }), "timeout\n");
    vesk_socket_pkt_write(&pkt, "GET /%s", "x");
    vesk_socket_pkt_write_binary(&pkt, "\0\1", 2);
    EXPECT_EQ(std::make_pair(vesk_socket_send(&pkt), pkt.out_len), std::make_pair(1, 0));
    char got[16];
    ASSERT_EQ(recv(peer, got, sizeof got, 0), 8); // both writes in one send
    EXPECT_EQ(std::string(got, 8), std::string("GET /x\0\1", 8));
    send(peer, "abcdef", 6, 0);
    EXPECT_EQ(vesk_socket_recv(&pkt, 3), 2); // len - 1 bytes, terminated
    EXPECT_STREQ(pkt.in_buf, "ab");
    EXPECT_EQ(vesk_socket_recv(&pkt, 100), 4);
    // The peer goes with a reset; a read and a send after that fail without killing the caller.
    const linger reset_on_close{1, 0};
    setsockopt(peer, SOL_SOCKET, SO_LINGER, &reset_on_close, sizeof reset_on_close);
    close(peer);
    pollfd reset{pkt.sock, 0, 0};
    EXPECT_EQ(poll(&reset, 1, 2000), 1);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_recv(&pkt, 100), -1); }),
              "error recv()ing reply: " + error_text(ECONNRESET));
    vesk_socket_pkt_write(&pkt, "lost");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_send(&pkt), 1); }), "Error sending request: " + error_text(EPIPE));
    EXPECT_EQ(vesk_socket_close(&pkt), 0);
    pkt.port = kPort + 1; // nothing listens there
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_do_connect(&pkt), 0); }), "connect: " + error_text(ECONNREFUSED));
    close(listening);
}

TEST(Socket, WaitsEndAndBadDescriptorsReport)
{
    vesk_socket_pkt pkt;
    vesk_socket_pkt_init(&pkt, "127.0.0.1", kPort);
    int pipe_fds[2];
    ASSERT_EQ(pipe(pipe_fds), 0);
    pkt.sock = pipe_fds[0]; // never writable: the request stays for another try
    pkt.send_timeout = 0;
    vesk_socket_pkt_write(&pkt, "hello");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_send(&pkt), 0); }), "vesk_socket_send: socket Timeout\n");
    close(pipe_fds[0]);
    close(pipe_fds[1]);
    pkt.sock = dup2(0, 60); // closed, and no capture reuses the number meanwhile
    close(60);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_send(&pkt), 1); }),
              "vesk_socket_send: Select error [" + std::string(strerror(EBADF)) + "]\n");
    EXPECT_EQ(pkt.out_len, 0);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_socket_recv(&pkt, 10), -1); }), "select: " + error_text(EBADF));
}

TEST(Socket, BadArgumentsEndTheProcessWithTheirLine)
{
    static vesk_socket_pkt pkt;
    vesk_socket_pkt_init(&pkt, "127.0.0.1", 1);
    const struct { void (*call)(); const char *out; } cases[] = {
        {[] { vesk_socket_pkt_dump(nullptr); }, "'pkt!=0' vesk_socket_pkt_dump vesk_socket.cpp:71"},
        {[] { vesk_socket_pkt_write(nullptr, "x"); }, "'pkt!=0' vesk_socket_pkt_write vesk_socket.cpp:89"},
        {[] { vesk_socket_pkt_write_binary(nullptr, "", 0); }, "'pkt!=0' vesk_socket_pkt_write_binary vesk_socket.cpp:105"},
        {[] { vesk_socket_pkt_write_binary(&pkt, nullptr, 0); }, "'ptr!=0' vesk_socket_pkt_write_binary vesk_socket.cpp:106"},
        {[] { vesk_socket_do_connect(nullptr); }, "'pkt!=0' vesk_socket_do_connect vesk_socket.cpp:115"},
        {[] { vesk_socket_send(nullptr); }, "'pkt!=0' vesk_socket_send vesk_socket.cpp:157"},
        {[] { vesk_socket_recv(nullptr, 1); }, "'pkt!=0' vesk_socket_recv vesk_socket.cpp:183"},
        {[] { vesk_socket_recv(&pkt, 1500); }, "'len < MAX_VESK_SOCKET_BUFFER' vesk_socket_recv vesk_socket.cpp:184"},
        {[] { vesk_socket_close(nullptr); }, "'pkt!=0' vesk_socket_close vesk_socket.cpp:214"},
    };
    for (const auto &c : cases) {
        vdev::outcome o = vdev::in_child([&] { c.call(); });
        EXPECT_EQ(o.status, 1) << o.out;
        EXPECT_EQ(o.out, "VESK_ASSERT FAILED " + std::string(c.out) + "\n");
    }
}

} // namespace
