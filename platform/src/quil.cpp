// Stand-in for the device's configuration store.
//
// /storage/quil.dat holds one setting a line, "key=value": a number in
// decimal, a record as exactly two lower-case hex digits a byte. Every
// write replaces the file through a flushed temporary of its own and
// rename(), so a failed or killed write leaves the previous settings whole;
// a lock on "<file>.lock" makes each read-modify-write whole, so that two
// programs writing at once lose nothing.
#include "quil.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string_view>

#include "unique.hpp"

namespace {

using vesk::unique_dir;
using vesk::unique_fd;
using vesk::unique_file;

struct key_spec {
    const char *pattern; // printf form; %d stands for a decimal number
    int size;            // bytes of a record; 0 for a number
};

// Every key that the library reads or writes, with the size of its value.
constexpr key_spec kKeys[] = {
    {"admin_cfg", 74},
    {"timedaylight", 9},
    {"wl%dbasic", 11},
    {"wl%dwds_basic_%d", 9},
    {"wlif_info", 34},
    {"radio_opmode_%d", 0},
    {"wl%d%dhidessid", 0},
    {"scheduleS_en", 0},
    {"scheduleS_5g_en", 0},
    {"schedule_en", 0},
};

constexpr int kMaxKey = 64;
constexpr int kMaxRecord = 128;
constexpr int kLineMax = 2 * kMaxRecord + kMaxKey + 8;

static_assert(sizeof(int) == 4, "numbers are stored as 32-bit words");

// Matches key against a pattern in which each %d takes one or more digits.
bool match(const char *pat, const char *key)
{
    if (!*pat)
        return !*key;
    if (pat[0] == '%' && pat[1] == 'd') {
        if (*key < '0' || *key > '9')
            return false;
        // Try every digit run length, so that "%d%d" can split "11".
        for (const char *k = key; *k >= '0' && *k <= '9'; k++)
            if (match(pat + 2, k + 1))
                return true;
        return false;
    }
    return *pat == *key && match(pat + 1, key + 1);
}

const key_spec *find_spec(const char *key)
{
    if (!key || strnlen(key, kMaxKey + 1) > static_cast<size_t>(kMaxKey))
        return nullptr;
    for (const key_spec &k : kKeys)
        if (match(k.pattern, key))
            return &k;
    return nullptr;
}

int value_size(const key_spec &k) { return k.size ? k.size : static_cast<int>(sizeof(int)); }

// Formats the key and finds it in the key table; null, with a message, for
// a key that is too long or not in the table.
const key_spec *resolve(char (&key)[kMaxKey + 1], const char *format, va_list ap)
{
    int n = vsnprintf(key, sizeof key, format, ap);
    bool formatted = n > 0 && n <= kMaxKey;
    const key_spec *k = formatted ? find_spec(key) : nullptr;
    if (!k)
        T_PRINTF("quil: unknown key [%s]\n", formatted ? key : format);
    return k;
}

int hexval(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Parses the value text of a line into out (value_size bytes).
bool parse_value(const key_spec &k, std::string_view text, unsigned char *out)
{
    if (!k.size) {
        char num[16];
        if (text.empty() || text.size() >= sizeof num)
            return false;
        memcpy(num, text.data(), text.size());
        num[text.size()] = '\0';
        char *end;
        errno = 0;
        long v = strtol(num, &end, 10);
        if (*end || end == num || errno || v < INT_MIN || v > INT_MAX)
            return false;
        int iv = static_cast<int>(v);
        memcpy(out, &iv, sizeof iv);
        return true;
    }
    if (text.size() != 2 * static_cast<size_t>(k.size))
        return false;
    for (int i = 0; i < k.size; i++) {
        int hi = hexval(text[2 * i]), lo = hexval(text[2 * i + 1]);
        if (hi < 0 || lo < 0)
            return false;
        out[i] = static_cast<unsigned char>(hi << 4 | lo);
    }
    return true;
}

void write_line(FILE *f, const char *key, const key_spec &k, const unsigned char *value)
{
    fprintf(f, "%s=", key);
    if (!k.size) {
        int v;
        memcpy(&v, value, sizeof v);
        fprintf(f, "%d", v);
    } else {
        for (int i = 0; i < k.size; i++)
            fprintf(f, "%02x", value[i]);
    }
    fputc('\n', f);
}

// Reads one line; lines longer than the buffer are skipped whole.
bool read_line(FILE *f, char (&line)[kLineMax])
{
    while (fgets(line, sizeof line, f)) {
        size_t len = strlen(line);
        if (len && line[len - 1] == '\n') {
            line[len - 1] = '\0';
            return true;
        }
        if (feof(f))
            return true;
        int c;
        while ((c = getc(f)) != EOF && c != '\n') {
        }
    }
    return false;
}

std::string_view key_of(const char *line)
{
    const char *eq = strchr(line, '=');
    return eq ? std::string_view(line, static_cast<size_t>(eq - line)) : std::string_view();
}

// Finds key in path and parses its value into out.
bool lookup(const char *path, const char *key, const key_spec &k, unsigned char *out)
{
    unique_file f = vesk::open_file(path, "r");
    if (!f)
        return false;
    char line[kLineMax];
    while (read_line(f.get(), line)) {
        if (key_of(line) == key)
            return parse_value(k, std::string_view(line + strlen(key) + 1), out);
    }
    return false;
}

// Removes the temporaries that killed writers left beside path. Called
// with the lock held, when no other writer has one open.
void sweep_temporaries(const char *path)
{
    const char *slash = strrchr(path, '/');
    std::string_view dir(path, static_cast<size_t>(slash - path)), base(slash + 1);
    char dirname[256];
    if (dir.size() >= sizeof dirname)
        return;
    memcpy(dirname, dir.data(), dir.size());
    dirname[dir.size()] = '\0';
    unique_dir d(opendir(dirname));
    while (dirent *e = d ? readdir(d.get()) : nullptr) {
        std::string_view name(e->d_name);
        if (name.size() == base.size() + 10 && name.starts_with(base) &&
            std::string_view(name.data() + base.size(), 4) == ".tmp")
            unlinkat(dirfd(d.get()), e->d_name, 0);
    }
}

// Rewrites path: the old lines that keep() accepts, then what append()
// writes. The new file replaces the old one only once it is on disk.
template <typename Keep, typename Append>
bool rewrite(const char *path, Keep keep, Append append)
{
    char lock_path[256], tmp[256];
    if (snprintf(lock_path, sizeof lock_path, "%s.lock", path) >= static_cast<int>(sizeof lock_path) ||
        snprintf(tmp, sizeof tmp, "%s.tmpXXXXXX", path) >= static_cast<int>(sizeof tmp))
        return false;
    unique_fd lock(open(lock_path, O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    while (lock && flock(lock.get(), LOCK_EX) != 0)
        if (errno != EINTR)
            return false;
    if (!lock)
        return false;
    sweep_temporaries(path);
    unique_fd fd(mkostemp(tmp, O_CLOEXEC));
    if (!fd)
        return false;
    fchmod(fd.get(), 0644); // as readable as a file made with fopen
    unique_file out(fdopen(fd.get(), "w"));
    if (!out) {
        unlink(tmp);
        return false;
    }
    fd.release();
    if (unique_file in = vesk::open_file(path, "r")) {
        char line[kLineMax];
        while (read_line(in.get(), line))
            if (keep(line))
                fprintf(out.get(), "%s\n", line);
    }
    bool ok = append(out.get());
    ok = ok && fflush(out.get()) == 0 && fsync(fileno(out.get())) == 0;
    ok = (fclose(out.release()) == 0) && ok;
    if (!ok || rename(tmp, path) != 0) {
        unlink(tmp);
        return false;
    }
    return true;
}

} // namespace

extern "C" {

int quil_key_info(const char *key, int *is_number)
{
    const key_spec *k = find_spec(key);
    if (!k)
        return 0;
    if (is_number)
        *is_number = k->size == 0;
    return value_size(*k);
}

int quil_set_text(const char *key, const char *text)
{
    const key_spec *k = find_spec(key);
    unsigned char value[kMaxRecord];
    if (!k || !text || !parse_value(*k, text, value))
        return -1;
    return quil_set_value(value, key);
}

int quil_get_value(void *dest, const char *key_format, ...)
{
    if (!dest || !key_format)
        return 0;
    char key[kMaxKey + 1];
    va_list ap;
    va_start(ap, key_format);
    const key_spec *k = resolve(key, key_format, ap);
    va_end(ap);
    if (!k)
        return 0;
    unsigned char value[kMaxRecord];
    if (!lookup(QUIL_DAT_FILE, key, *k, value))
        return 0;
    memcpy(dest, value, static_cast<size_t>(value_size(*k)));
    return 1;
}

int quil_get_int_value(const char *key_format, ...)
{
    if (!key_format)
        return 0;
    char key[kMaxKey + 1];
    va_list ap;
    va_start(ap, key_format);
    const key_spec *k = resolve(key, key_format, ap);
    va_end(ap);
    if (!k)
        return 0;
    if (k->size) {
        T_PRINTF("quil: [%s] is not a number key\n", key);
        return 0;
    }
    int v = 0;
    unsigned char value[kMaxRecord];
    if (lookup(QUIL_DAT_FILE, key, *k, value))
        memcpy(&v, value, sizeof v);
    return v;
}

int quil_set_value(const void *value, const char *key)
{
    const key_spec *k = find_spec(key);
    if (!k || !value) {
        T_PRINTF("quil: cannot set unknown key [%s]\n", key ? key : "(null)");
        return -1;
    }
    std::string_view name(key);
    bool ok = rewrite(
        QUIL_DAT_FILE, [&](const char *line) { return key_of(line) != name; },
        [&](FILE *out) {
            write_line(out, key, *k, static_cast<const unsigned char *>(value));
            return true;
        });
    return ok ? 0 : -1;
}

void quil_update_dat_file(void)
{
    // Writes go straight to the file; only make sure that it exists.
    if (access(QUIL_DAT_FILE, F_OK) != 0)
        rewrite(QUIL_DAT_FILE, [](const char *) { return true; }, [](FILE *) { return true; });
}

void quil_save_new_file_by_token(const char *token)
{
    if (!token || !*token)
        return;
    std::string_view prefix(token);
    auto selected = [&](const char *line) {
        std::string_view key = key_of(line);
        return !key.empty() && key.starts_with(prefix);
    };
    rewrite(
        QUIL_NEW_DAT_FILE, [&](const char *line) { return !selected(line); },
        [&](FILE *out) {
            unique_file in = vesk::open_file(QUIL_DAT_FILE, "r");
            char line[kLineMax];
            while (in && read_line(in.get(), line))
                if (selected(line))
                    fprintf(out, "%s\n", line);
            return true;
        });
}

} // extern "C"
