// The emulated device as the tests see it: every case runs inside a fresh
// one (emu/vdev), so a case writes the device's fixed paths freely.
#pragma once

#include <stdlib.h>

#include <string>
#include <string_view>
#include <vector>

namespace vdev {

// Replaces the file at path (also an emulated /proc entry) with content,
// making parent directories as needed.
void put(const std::string &path, std::string_view content);
// The file's content, or "" when it cannot be read.
std::string read(const std::string &path);
bool exists(const std::string &path);
void remove(const std::string &path);

// Runs a shell command in the device; its exit status.
int sh(const std::string &command);

// The command lines given to CMD and sysinteract, verbatim, oldest first.
std::vector<std::string> commands();
// Clears the journal and the request log.
void clear_journal();

// The driver requests the device model answered (emu/model), oldest first,
// as "IFNAME REQUEST DETAIL", e.g. "br0 fdb num=128 offset=0".
std::vector<std::string> ioctls();
// Fails the model's request on ifname ("*": any) with the errno of that name
// ("EAGAIN"), the next times requests, or every one when times is 0.
void fail_ioctl(const std::string &ifname, const std::string &request, const std::string &err, int times = 0);

// Sets a board_config value of the emulated board.
void set_board(const std::string &key, const std::string &value);

// Runs fn in a child process and collects what it wrote to standard output
// and standard error and how it ended (exit status, or 128 + signal).
struct outcome {
    int status;
    std::string out;
    std::string err;
};
outcome in_child(void (*fn)(void *), void *arg);
template <typename F> outcome in_child(F &&f)
{
    return in_child([](void *p) { (*static_cast<F *>(p))(); }, &f);
}

// True when a user-mode emulator runs this test program (a cross build's
// suite): the emulator line of the cross toolchain sets VDEV_QEMU.
inline bool under_qemu() { return getenv("VDEV_QEMU") && *getenv("VDEV_QEMU"); }

} // namespace vdev
