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

} // namespace vdev
