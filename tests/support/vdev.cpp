#include "vdev.hpp"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace vdev {

namespace {

void make_parents(const std::string &path)
{
    for (size_t pos = path.find('/', 1); pos != std::string::npos; pos = path.find('/', pos + 1))
        mkdir(path.substr(0, pos).c_str(), 0755);
}

std::vector<std::string> lines_of(const char *path)
{
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string slurp_fd(int fd)
{
    std::string text;
    char buf[4096];
    lseek(fd, 0, SEEK_SET);
    for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;)
        text.append(buf, static_cast<size_t>(n));
    return text;
}

} // namespace

void put(const std::string &path, std::string_view content)
{
    make_parents(path);
    unlink(path.c_str()); // an emulated /proc entry is a link to the kernel's
    std::ofstream(path, std::ios::binary) << content;
}

std::string read(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

void remove(const std::string &path) { unlink(path.c_str()); }

int sh(const std::string &command)
{
    fflush(nullptr);
    int status = system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// "$ " starts a command line that CMD or sysinteract recorded, escaped
// C-style; any other line is a stand-in tool's.
std::vector<std::string> commands()
{
    std::vector<std::string> lines;
    for (const std::string &line : lines_of("/run/vdev/journal")) {
        if (line.rfind("$ ", 0) != 0)
            continue;
        std::string text;
        for (size_t i = 2; i < line.size(); i++) {
            if (line[i] != '\\' || i + 1 == line.size()) {
                text += line[i];
                continue;
            }
            switch (line[++i]) {
            case 'n': text += '\n'; break;
            case 't': text += '\t'; break;
            case 'r': text += '\r'; break;
            case 'x': text += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16)); i += 2; break;
            default: text += line[i];
            }
        }
        lines.push_back(text);
    }
    return lines;
}

void clear_journal()
{
    std::ofstream("/run/vdev/journal", std::ios::trunc);
    std::ofstream("/run/vdev/ioctls", std::ios::trunc);
}

std::vector<std::string> ioctls() { return lines_of("/run/vdev/ioctls"); }

void fail_ioctl(const std::string &ifname, const std::string &request, const std::string &err, int times)
{
    std::string line = ifname + " " + request + " " + err + (times ? " " + std::to_string(times) : "") + "\n";
    put("/run/vdev/fail/ioctl", read("/run/vdev/fail/ioctl") + line);
}

void set_board(const std::string &key, const std::string &value)
{
    std::string out;
    for (const std::string &line : lines_of("/run/vdev/board.conf"))
        if (line.rfind(key + "=", 0) != 0)
            out += line + "\n";
    put("/run/vdev/board.conf", out + key + "=" + value + "\n");
}

outcome in_child(void (*fn)(void *), void *arg)
{
    char out_name[] = "/tmp/.vdev-outXXXXXX", err_name[] = "/tmp/.vdev-errXXXXXX";
    int out = mkstemp(out_name), err = mkstemp(err_name);
    unlink(out_name);
    unlink(err_name);
    fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(out, 1);
        dup2(err, 2);
        fn(arg);
        fflush(nullptr);
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    outcome o{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), slurp_fd(out), slurp_fd(err)};
    close(out);
    close(err);
    return o;
}

} // namespace vdev
