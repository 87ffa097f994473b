// The model's state files: reading them, the words of their lines, the
// request log and the failures a scenario or a test asks for.
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "model.hpp"

namespace vdev_model {
namespace {

constexpr char kRoot[] = "/run/vdev/";
constexpr char kFailures[] = "/run/vdev/fail/ioctl";
constexpr char kLog[] = "/run/vdev/ioctls";

struct errno_name {
    const char *name;
    int value;
};
// The errors a scenario may name; by name, since the numbers differ on MIPS.
constexpr errno_name kErrnos[] = {
    {"EPERM", EPERM},   {"ENOENT", ENOENT},   {"EIO", EIO},         {"ENXIO", ENXIO},
    {"E2BIG", E2BIG},   {"EAGAIN", EAGAIN},   {"ENOMEM", ENOMEM},   {"EACCES", EACCES},
    {"EFAULT", EFAULT}, {"EBUSY", EBUSY},     {"ENODEV", ENODEV},   {"EINVAL", EINVAL},
    {"ENOSPC", ENOSPC}, {"ENOSYS", ENOSYS},   {"ETIMEDOUT", ETIMEDOUT}, {"ENETDOWN", ENETDOWN},
    {"EOPNOTSUPP", EOPNOTSUPP}, {"ENOTSUP", ENOTSUP}, {"ENOTTY", ENOTTY}, {"EINTR", EINTR},
};

int errno_of(const char *name)
{
    for (const errno_name &e : kErrnos)
        if (strcmp(e.name, name) == 0)
            return e.value;
    return EIO; // a name the model does not know still fails the request
}

bool matches(const char *pattern, const char *word) { return strcmp(pattern, "*") == 0 || strcmp(pattern, word) == 0; }

// The first line "IFNAME REQUEST ERRNO [TIMES]" that matches; a line with a
// count is used up after that many requests.
int failure(const char *ifname, const char *name)
{
    vesk::unique_fd fd(open(kFailures, O_RDWR | O_CLOEXEC));
    if (!fd)
        return 0;
    flock(fd.get(), LOCK_EX); // several processes may count down one line
    state_text text;
    if (!read_state(text, "fail/ioctl"))
        return 0;
    int err = 0;
    bool counted = false;
    char rest[4096];
    size_t used = 0;
    each_line(text.view(), [&](std::string_view line) {
        char who[32], what[32], error[32];
        int times = 0;
        char copy[128];
        snprintf(copy, sizeof copy, "%.*s", static_cast<int>(line.size()), line.data());
        int n = sscanf(copy, "%31s %31s %31s %d", who, what, error, &times);
        bool hit = !err && n >= 3 && matches(who, ifname) && matches(what, name);
        if (hit)
            err = errno_of(error);
        counted |= hit && n == 4;
        if (hit && n == 4 && --times <= 0)
            return; // used up
        int w = hit && n == 4 ? snprintf(rest + used, sizeof rest - used, "%s %s %s %d\n", who, what, error, times)
                              : snprintf(rest + used, sizeof rest - used, "%s\n", copy);
        used = w > 0 && used + static_cast<size_t>(w) < sizeof rest ? used + static_cast<size_t>(w) : used;
    });
    if (counted && ftruncate(fd.get(), 0) == 0)
        (void)!pwrite(fd.get(), rest, used, 0);
    return err;
}

bool state_path(char (&path)[256], const char *format, va_list ap)
{
    int n = snprintf(path, sizeof path, "%s", kRoot);
    int m = vsnprintf(path + n, sizeof path - static_cast<size_t>(n), format, ap);
    return m >= 0 && static_cast<size_t>(n + m) < sizeof path && !strstr(path, "/../");
}

} // namespace

int opening(const request &r, const char *name, const char *detail_format, ...)
{
    char line[256];
    int n = snprintf(line, sizeof line, "%s %s ", r.ifname, name);
    va_list ap;
    va_start(ap, detail_format);
    vsnprintf(line + n, sizeof line - static_cast<size_t>(n) - 1, detail_format, ap);
    va_end(ap);
    size_t len = strlen(line);
    while (len && line[len - 1] == ' ')
        len--;
    line[len++] = '\n';
    vesk::unique_fd log(open(kLog, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    if (log)
        (void)!write(log.get(), line, len); // one write: lines of two processes never mix
    return failure(r.ifname, name);
}

bool read_state(state_text &out, const char *format, ...)
{
    char path[256];
    va_list ap;
    va_start(ap, format);
    bool ok = state_path(path, format, ap);
    va_end(ap);
    return ok && read_file(out, path);
}

bool read_file(state_text &out, const char *path)
{
    vesk::unique_fd fd(open(path, O_RDONLY | O_CLOEXEC));
    struct stat st;
    if (!fd || fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode))
        return false;
    // sysfs tells no size (or a page) and answers whole records only: read
    // to the end, at least a page at a time, growing the block.
    constexpr size_t kPage = 4096;
    size_t cap = static_cast<size_t>(st.st_size) + 1 + kPage;
    out.size = 0;
    out.block.reset(malloc(cap));
    for (ssize_t n = 1; out.block && n > 0;) {
        if (cap - 1 - out.size < kPage) {
            void *more = realloc(out.block.get(), cap * 2);
            if (!more)
                return false;
            out.block.release();
            out.block.reset(more);
            cap *= 2;
        }
        n = read(fd.get(), static_cast<char *>(out.block.get()) + out.size, cap - 1 - out.size);
        out.size += n > 0 ? static_cast<size_t>(n) : 0;
    }
    if (!out.block)
        return false;
    static_cast<char *>(out.block.get())[out.size] = '\0';
    return true;
}

bool state_exists(const char *format, ...)
{
    char path[256];
    va_list ap;
    va_start(ap, format);
    bool ok = state_path(path, format, ap);
    va_end(ap);
    return ok && access(path, F_OK) == 0;
}

bool next_field(std::string_view &line, field &f)
{
    size_t start = line.find_first_not_of(" \t\r");
    if (start == std::string_view::npos)
        return false;
    line.remove_prefix(start);
    size_t eq = line.find_first_of("= \t\r");
    f.key = std::string_view(line.data(), eq < line.size() ? eq : line.size());
    line.remove_prefix(eq == std::string_view::npos ? line.size() : eq);
    f.len = 0;
    if (line.empty() || line[0] != '=') {
        f.value[0] = '\0';
        return true;
    }
    line.remove_prefix(1);
    bool quoted = !line.empty() && line[0] == '"';
    if (quoted)
        line.remove_prefix(1);
    while (!line.empty() && (quoted ? line[0] != '"' : line.find_first_of(" \t\r") != 0)) {
        char c = line[0];
        line.remove_prefix(1);
        if (quoted && c == '\\' && !line.empty()) {
            c = line[0];
            line.remove_prefix(1);
            if (c == 'x' && line.size() >= 2) {
                char hex[3] = {line[0], line[1], '\0'};
                c = static_cast<char>(strtoul(hex, nullptr, 16));
                line.remove_prefix(2);
            }
        }
        if (f.len < sizeof f.value - 1)
            f.value[f.len++] = c;
    }
    if (quoted && !line.empty())
        line.remove_prefix(1); // the closing quote
    f.value[f.len] = '\0';
    return true;
}

long number(const field &f) { return strtol(f.value, nullptr, 0); }

bool mac_of(const field &f, unsigned char mac[6])
{
    unsigned int b[6];
    char end;
    if (sscanf(f.value, "%2x:%2x:%2x:%2x:%2x:%2x%c", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &end) != 6)
        return false;
    for (int i = 0; i < 6; i++)
        mac[i] = static_cast<unsigned char>(b[i]);
    return true;
}

} // namespace vdev_model
