// The emulated device as the tests see it: every case runs inside a fresh
// one (emu/vdev), so a case writes the device's fixed paths freely.
#pragma once

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

// The command lines the stand-in tools were run with, oldest first.
std::vector<std::string> journal();
// The command lines given to CMD and sysinteract, verbatim, oldest first.
std::vector<std::string> commands();
void clear_journal();

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

// The user-mode emulator that runs this test program (a cross build's
// suite: "qemu-mipsel"), or "" when it runs on the processor it was built
// for. Set by the emulator line of the cross toolchain (VDEV_QEMU).
const char *emulator();
inline bool under_qemu() { return *emulator() != '\0'; }

} // namespace vdev

// Skips the current test under user-mode emulation, with the reason in the
// output: for requests that the emulator does not pass through to the host
// kernel (device-private ioctls, some socket families).
#define VDEV_SKIP_UNDER_QEMU(reason)                                                               \
    do {                                                                                           \
        if (vdev::under_qemu())                                                                    \
            GTEST_SKIP() << "under " << vdev::emulator() << ": " << (reason);                     \
    } while (0)
