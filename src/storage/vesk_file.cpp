// Text files kept within a bound of lines.
//
// The assertion lines of this file are part of what the device prints when
// a caller passes bad arguments, and field scripts match on them: their line
// numbers are written out.
#include "vesk_file.h"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/stat.h>

#include "core/assert.hpp"
#include "core/command.hpp"
#include "core/unique.hpp"
#include "sysapi.h"

namespace {

// The last line formatted by vesk_file_text_append.
char text_line_buffer[256];

// Where a file waits while it is cut, when the caller keeps no backup.
constexpr const char kWorkFile[] = "/tmp/vesk_file_text_truncate.tmp";

// A line as the copy loop sees it: longer lines come in pieces.
constexpr int kLineCapacity = 256;

void remove_work_file() { vesk::cmd::run("vesk_file_text_truncate", "rm -rf %s", kWorkFile); }

// The file is moved onto the target: a directory there (anyone can make one
// in /tmp) would take the file in and the copy-back would find no lines.
bool usable_target(const char *path)
{
    struct stat st;
    return lstat(path, &st) != 0 ? errno == ENOENT : S_ISREG(st.st_mode);
}

} // namespace

extern "C" {

void vesk_file_text_append(const char *filename, const char *format, ...)
{
    text_line_buffer[0] = '\0';
    if (format) {
        va_list ap;
        va_start(ap, format);
        vsnprintf(text_line_buffer, sizeof text_line_buffer, format, ap);
        va_end(ap);
    }

    // The text is formatted before the test, as the device's callers expect.
    VESK_ASSERT_AT(44, filename!=NULL);

    T_PRINTF("[%s]\n", text_line_buffer);
    vesk::unique_file f = vesk::open_file(filename, "a");
    if (!f)
        return;
    fputs(text_line_buffer, f.get());
}

// Copies the lines of from whose count (from 1) is above first_kept_after
// to to, byte for byte.
static void copy_tail(FILE *from, FILE *to, unsigned int first_kept_after)
{
    char line[kLineCapacity];
    unsigned int count = 0;
    while (fgets(line, sizeof line, from)) {
        // A line of more than 255 characters counts once per piece here,
        // though getNumOfRecord counted it once, so a little more survives.
        if (++count > first_kept_after)
            fputs(line, to);
    }
}

// A file of n lines with n > i_max_line keeps its last
// i_max_line - i_line_to_free lines, so that the next cut lies
// i_line_to_free appends ahead instead of at every append. The file is
// moved away first (to backup, which then keeps the whole old file, or to
// the work file) and the kept lines are copied back. Counts are compared
// unsigned, as getNumOfRecord gives them.
// While this runs a reader sees the file absent, then partly written; the
// fixed work file allows one cut at a time on the device. Nothing here
// reports a failure: the result is always 1.
int vesk_file_text_truncate(const char *filename, const char *backup, int i_max_line, int i_line_to_free)
{
    VESK_ASSERT_AT(78, filename!=NULL);
    VESK_ASSERT_AT(79, i_max_line>=0 && i_line_to_free>=0 && i_max_line>=i_line_to_free);

    if (!osapi_is_file_existed(filename))
        return 1;

    const unsigned int lines = getNumOfRecord(filename, 0);
    if (lines <= static_cast<unsigned int>(i_max_line)) {
        if (!backup)
            remove_work_file();
        return 1;
    }

    // A failed move leaves the file where it was; reading an older target
    // then would overwrite the file with stale lines.
    const char *target = backup ? backup : kWorkFile;
    if (!usable_target(target)) {
        T_PRINTF("%s: %s is no regular file, not cut\n", __func__, target);
        return 1;
    }
    if (vesk::cmd::run(__func__, "mv %s %s", filename, target) != 0)
        return 1;

    // When either open fails the lines lie only in the target: keep it,
    // even the work file, so that nothing is lost. The file is not created
    // empty when the target cannot be read.
    vesk::unique_file from = vesk::open_file(target, "r");
    vesk::unique_file to = from ? vesk::open_file(filename, "w") : vesk::unique_file();
    if (!from || !to)
        return 1;
    copy_tail(from.get(), to.get(), lines - static_cast<unsigned int>(i_max_line) +
                                        static_cast<unsigned int>(i_line_to_free));
    from.reset();
    to.reset();
    if (!backup)
        remove_work_file();
    return 1;
}

} // extern "C"
