// Stand-in for the device's system library.
#include "sysapi.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdint.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>

#include "unique.hpp"

extern char **environ;

namespace {

using vesk::unique_fd;
using vesk::unique_file;
using vesk::unique_heap;

// Formats a command line of any length into a heap block.
unique_heap format_command(const char *format, va_list ap)
{
    va_list again;
    va_copy(again, ap);
    int len = vsnprintf(nullptr, 0, format, ap);
    unique_heap line;
    if (len >= 0) {
        line.reset(malloc(static_cast<size_t>(len) + 1));
        if (line)
            vsnprintf(static_cast<char *>(line.get()), static_cast<size_t>(len) + 1, format, again);
    }
    va_end(again);
    return line;
}

constexpr int kCouldNotRun = -1;

// Inside the emulated device every command line is added to its journal
// before the shell sees it, as "$ " and the line with backslash, newline,
// tab, carriage return and other control bytes escaped C-style, so a line
// keeps its exact bytes, trailing blanks included.
void journal_command(const char *line)
{
    unique_fd journal(open("/run/vdev/journal", O_WRONLY | O_APPEND | O_CLOEXEC));
    if (!journal)
        return;
    size_t len = strlen(line);
    unique_heap rec(malloc(4 * len + 4));
    if (!rec)
        return;
    char *out = static_cast<char *>(rec.get()), *p = out;
    *p++ = '$';
    *p++ = ' ';
    for (const unsigned char *s = reinterpret_cast<const unsigned char *>(line); *s; s++) {
        const char *esc = *s == '\\' ? "\\\\" : *s == '\n' ? "\\n" : *s == '\t' ? "\\t" : *s == '\r' ? "\\r" : nullptr;
        if (esc) {
            memcpy(p, esc, 2);
            p += 2;
        } else if (*s < 0x20 || *s == 0x7f) {
            p += sprintf(p, "\\x%02x", *s);
        } else {
            *p++ = static_cast<char>(*s);
        }
    }
    *p++ = '\n';
    // One write: appends of whole records do not interleave.
    (void)!write(journal.get(), out, static_cast<size_t>(p - out));
}

// Bytes that the shell takes literally; a line of only these and blanks
// means to the shell just its words split at the blanks.
bool is_literal(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || strchr("_-./:@%+,=", c);
}

// Names that the shell runs itself (builtins, keywords): as a first word
// they keep the line in the shell, whatever program of that name exists.
constexpr const char *kShellWords[] = {
    "!", ".", ":", "[", "[[", "]]", "alias", "bg", "bind", "break", "builtin", "caller", "case", "cd", "chdir",
    "command", "compgen", "complete", "continue", "coproc", "declare", "dirs", "disown", "do", "done", "echo",
    "elif", "else", "enable", "esac", "eval", "exec", "exit", "export", "false", "fc", "fg", "fi", "for",
    "function", "getopts", "hash", "help", "history", "if", "in", "jobs", "kill", "let", "local", "logout",
    "mapfile", "popd", "printf", "pushd", "pwd", "read", "readarray", "readonly", "return", "select", "set",
    "shift", "shopt", "source", "suspend", "test", "then", "time", "times", "trap", "true", "type", "typeset",
    "ulimit", "umask", "unalias", "unset", "until", "wait", "while",
};

constexpr size_t kMaxDirectWords = 64;

// Splits a line without shell syntax into argv (in words, pointing into
// copy); false when the shell must read it: any other byte, no word, a
// first word that is a builtin or keyword or an assignment, or too many words.
bool split_plain(const char *line, char *copy, char **words)
{
    size_t n = 0;
    for (const char *s = line; *s; s++) {
        const auto c = static_cast<unsigned char>(*s);
        if (c != ' ' && c != '\t' && !is_literal(c))
            return false;
    }
    strcpy(copy, line);
    char *rest = nullptr;
    for (char *tok = strtok_r(copy, " \t", &rest); tok; tok = strtok_r(nullptr, " \t", &rest)) {
        if (n == kMaxDirectWords)
            return false;
        words[n++] = tok;
    }
    words[n] = nullptr;
    if (n == 0 || strchr(words[0], '='))
        return false;
    for (const char *name : kShellWords)
        if (strcmp(words[0], name) == 0)
            return false;
    return true;
}

enum class program { absent, runnable, shell_only };

// What the kernel would make of path: a file it executes (ELF, "#!"
// script), one only the shell runs (a script without "#!"), or none.
program program_at(const char *path)
{
    if (access(path, X_OK) != 0)
        return program::absent;
    unique_fd fd(open(path, O_RDONLY | O_CLOEXEC));
    struct stat st;
    if (!fd || fstat(fd.get(), &st) != 0)
        return program::shell_only;
    if (!S_ISREG(st.st_mode))
        return program::absent;
    char magic[4];
    ssize_t n = read(fd.get(), magic, sizeof magic);
    bool runs = (n >= 2 && memcmp(magic, "#!", 2) == 0) || (n == 4 && memcmp(magic, "\177ELF", 4) == 0);
    return runs ? program::runnable : program::shell_only;
}

// The file that the shell would run for name, searched on PATH as the
// shell does, when the kernel can execute it directly.
bool find_program(const char *name, char (&path)[PATH_MAX])
{
    if (strchr(name, '/'))
        return snprintf(path, sizeof path, "%s", name) < static_cast<int>(sizeof path) &&
               program_at(path) == program::runnable;
    const char *dirs = getenv("PATH");
    if (!dirs)
        return false; // the shell's own default applies
    for (const char *dir = dirs;;) {
        const char *end = strchrnul(dir, ':');
        int len = end == dir ? snprintf(path, sizeof path, "%s", name)
                             : snprintf(path, sizeof path, "%.*s/%s", static_cast<int>(end - dir), dir, name);
        if (len > 0 && len < static_cast<int>(sizeof path)) {
            program found = program_at(path);
            if (found != program::absent)
                return found == program::runnable;
        }
        if (*end == '\0')
            return false;
        dir = end + 1;
    }
}

// Runs the line and does not wait: a line without shell syntax as its own
// program (one exec instead of the shell's and the program's), any other
// through "/bin/sh -c line". posix_spawn does not copy the caller's address
// space, which matters for the big programs on a small device. A program
// that is missing or not executable goes to the shell too, so it reads as
// the shell tells it (126 or 127, its message). With out_fd >= 0 the
// command's standard output is that descriptor. Returns 0 or kCouldNotRun.
int spawn_line(const char *line, int out_fd, pid_t *child)
{
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0)
        return kCouldNotRun;
    if (out_fd >= 0)
        posix_spawn_file_actions_adddup2(&actions, out_fd, STDOUT_FILENO);
    int rc = -1;
    unique_heap copy(malloc(strlen(line) + 1));
    char *words[kMaxDirectWords + 1];
    char path[PATH_MAX];
    if (copy && split_plain(line, static_cast<char *>(copy.get()), words) && find_program(words[0], path))
        rc = posix_spawn(child, path, &actions, nullptr, words, environ);
    if (rc != 0) {
        char sh[] = "/bin/sh", dash_c[] = "-c";
        char *argv[] = {sh, dash_c, const_cast<char *>(line), nullptr};
        rc = posix_spawn(child, "/bin/sh", &actions, nullptr, argv, environ);
    }
    posix_spawn_file_actions_destroy(&actions);
    return rc == 0 ? 0 : kCouldNotRun;
}

// Formats the command line and starts it; the child's pid, or -1 when it
// could not be started.
pid_t start_command(int out_fd, const char *format, va_list ap)
{
    if (!format)
        return -1;
    unique_heap line = format_command(format, ap);
    if (!line)
        return -1;
    journal_command(static_cast<const char *>(line.get()));
    fflush(nullptr); // keep the caller's buffered output ahead of the child's
    pid_t child;
    return spawn_line(static_cast<const char *>(line.get()), out_fd, &child) == 0 ? child : -1;
}

// Waits for the child. Returns its wait status, or -1 when it cannot be had.
int wait_child(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return status;
}

// While a command runs, a caller's SIGCHLD that is ignored (daemons often
// ignore it) becomes the default action: otherwise the kernel reaps the
// child and its exit status is lost. The caller's action comes back after.
class child_status_kept {
public:
    child_status_kept()
    {
        sigaction(SIGCHLD, nullptr, &saved_);
        changed_ = saved_.sa_handler == SIG_IGN || (saved_.sa_flags & SA_NOCLDWAIT);
        if (changed_) {
            struct sigaction dfl = {};
            dfl.sa_handler = SIG_DFL;
            sigemptyset(&dfl.sa_mask);
            sigaction(SIGCHLD, &dfl, nullptr);
        }
    }
    ~child_status_kept()
    {
        if (changed_)
            sigaction(SIGCHLD, &saved_, nullptr);
    }
    child_status_kept(const child_status_kept &) = delete;
    child_status_kept &operator=(const child_status_kept &) = delete;

private:
    struct sigaction saved_ = {};
    bool changed_ = false;
};

int exit_code(int status)
{
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return 1;
}

} // namespace

extern "C" {

int CMD(const char *format, ...)
{
    child_status_kept keep;
    va_list ap;
    va_start(ap, format);
    pid_t child = start_command(-1, format, ap);
    va_end(ap);
    if (child < 0)
        return kCouldNotRun;
    int status = wait_child(child);
    return status < 0 ? kCouldNotRun : exit_code(status);
}

int sysinteract(char *buf, int size, const char *format, ...)
{
    if (!buf || size <= 0)
        return kCouldNotRun;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return kCouldNotRun;
    unique_fd rd(fds[0]), wr(fds[1]);
    child_status_kept keep;
    va_list ap;
    va_start(ap, format);
    pid_t child = start_command(wr.get(), format, ap);
    va_end(ap);
    if (child < 0)
        return kCouldNotRun;
    wr.reset();

    // Read to the end so the command never blocks on a full pipe; keep what fits.
    size_t used = 0, room = static_cast<size_t>(size) - 1;
    char scrap[512];
    for (;;) {
        char *dst = used < room ? buf + used : scrap;
        size_t want = used < room ? room - used : sizeof scrap;
        ssize_t n = read(rd.get(), dst, want);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        if (dst != scrap)
            used += static_cast<size_t>(n);
    }
    buf[used] = '\0';

    int status = wait_child(child);
    if (status < 0)
        return kCouldNotRun;
    if (WIFEXITED(status) && (WEXITSTATUS(status) == 126 || WEXITSTATUS(status) == 127))
        return kCouldNotRun; // no such command, or it could not be executed
    return (WIFEXITED(status) && WEXITSTATUS(status) == 0) ? 1 : 0;
}

void T_PRINTF(const char *format, ...)
{
    if (!format)
        return;
    va_list ap;
    va_start(ap, format);
    vfprintf(stderr, format, ap);
    va_end(ap);
}

void system_log(int level, const char *text)
{
    if (!text)
        return;
    unique_file log = vesk::open_file("/var/log/messages", "a");
    if (!log)
        return;
    time_t now = time(nullptr);
    struct tm tm;
    char stamp[32] = "";
    if (localtime_r(&now, &tm))
        strftime(stamp, sizeof stamp, "%b %e %H:%M:%S", &tm);
    size_t len = strlen(text);
    const char *nl = (len && text[len - 1] == '\n') ? "" : "\n";
    fprintf(log.get(), "%s vesk[%d]: <%d> %s%s", stamp, static_cast<int>(getpid()), level, text, nl);
}

void x_gettimeofday(void *tv)
{
    if (!tv)
        return;
    uint32_t words[2] = {0, 0};
    unique_file f = vesk::open_file("/proc/uptime", "r");
    unsigned long sec = 0, frac = 0;
    char fracs[8] = "";
    if (f && fscanf(f.get(), "%lu.%7[0-9]", &sec, fracs) >= 1) {
        // Scale the fraction's digits to microseconds.
        size_t digits = strlen(fracs);
        for (size_t i = 0; i < 6; i++)
            frac = frac * 10 + (i < digits ? fracs[i] - '0' : 0);
        words[0] = static_cast<uint32_t>(sec);
        words[1] = static_cast<uint32_t>(frac);
    } else {
        struct timespec ts;
        clock_gettime(CLOCK_BOOTTIME, &ts);
        words[0] = static_cast<uint32_t>(ts.tv_sec);
        words[1] = static_cast<uint32_t>(ts.tv_nsec / 1000);
    }
    memcpy(tv, words, sizeof words);
}

unsigned int getNumOfRecord(const char *path, int)
{
    if (!path)
        return 0;
    unique_file f = vesk::open_file(path, "r");
    if (!f)
        return 0;
    unsigned int lines = 0;
    int c, last = '\n';
    while ((c = getc(f.get())) != EOF) {
        if (c == '\n')
            lines++;
        last = c;
    }
    if (last != '\n')
        lines++;
    return lines;
}

int osapi_is_file_existed(const char *path)
{
    return path && access(path, F_OK) == 0;
}

unsigned int osapi_file_size(const char *path)
{
    struct stat st;
    if (!path || stat(path, &st) != 0)
        return 0;
    // off_t is a signed 32-bit word on the board: compare unsigned and wide.
    const auto size = static_cast<unsigned long long>(st.st_size);
    return size > UINT_MAX ? UINT_MAX : static_cast<unsigned int>(size);
}

int osapi_is_proc_pid_existed(const char *pid_file)
{
    if (!pid_file)
        return 0;
    unique_file f = vesk::open_file(pid_file, "r");
    long pid = 0;
    if (!f || fscanf(f.get(), "%ld", &pid) != 1)
        return 0;
    // Only a real process number: 0 and negatives would address groups.
    if (pid <= 0 || pid > INT_MAX)
        return 0;
    return (kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM) ? 1 : 0;
}

} // extern "C"
