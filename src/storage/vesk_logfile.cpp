// Log directories: listing through the shell and naming the next file of
// the day.
#include "vesk_logfile.h"

#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "core/command.hpp"
#include "core/line_reader.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_string.h"
#include "vesk_time.h"

namespace {

constexpr const char kList[] = "/var/logfile_list.txt";
constexpr const char kWebList[] = "/var/logfile_web_list.txt";
constexpr const char kTodayList[] = "/var/logfile_today_list.txt";
constexpr const char kNullInput[] = "Error: %s, input is NULL!\n";

constexpr size_t kDateSize = 80;
constexpr size_t kFieldSize = 128; // last_tag, last_date and a list line
constexpr size_t kPatternSize = 2 * kFieldSize;

char log_filename_buffer[80];

// The day's date as "%Y%m%d" in local time.
void today(char (&date)[kDateSize]) { vesk_time_get_str(time(nullptr), "%Y%m%d", date, sizeof date); }

} // namespace

extern "C" {

int vesk_logfile_list_files(const char *dir, const char *prefix, const char *tag, const char *ext)
{
    if (!dir || !prefix || !tag || !ext) {
        T_PRINTF(kNullInput, __func__);
        return 0;
    }
    // The star is the shell's: it lists every tag and day of the prefix.
    if (vesk::cmd::run(__func__, "cd %s;ls %s*.%s |sort -n> %s", dir, prefix, ext, kList) == vesk::cmd::kRefused)
        return 0;
    vesk::cmd::run(__func__, "cd %s;ls %s*.%s |sort -r> %s", dir, prefix, ext, kWebList);
    return 1;
}

int vesk_logfile_get_last_record_date_and_number(const char *dir, const char *prefix, const char *tag,
                                                 char *last_tag, char *last_date, int *last_number, const char *ext)
{
    if (!dir || !prefix || !tag || !last_tag || !last_date || !last_number || !ext) {
        T_PRINTF(kNullInput, __func__);
        if (last_tag)
            last_tag[0] = '\0';
        if (last_date)
            last_date[0] = '\0';
        return 0;
    }
    last_tag[0] = '\0';
    last_date[0] = '\0';
    vesk_logfile_list_files(dir, prefix, tag, ext);

    char date[kDateSize];
    today(date);
    // A basic regular expression, not a wild card: the star repeats the
    // date's last digit, so every day of the date's ten-day span matches.
    // It goes to grep as one quoted word, never expanded by the shell.
    char pattern[kPatternSize];
    int len = snprintf(pattern, sizeof pattern, "%s_%s_%s*", prefix, tag, date);
    if (len < 0 || static_cast<size_t>(len) >= sizeof pattern) {
        T_PRINTF("%s: name parts too long!\n", __func__);
        return 0;
    }
    if (vesk::cmd::run(__func__, "grep -h %s %s > %s", pattern, kList, kTodayList) == vesk::cmd::kRefused)
        return 0;
    if (getNumOfRecord(kTodayList, 0) == 0) {
        T_PRINTF("Warning, File [%s/%s] has no record!\n", dir, prefix);
        return 0;
    }

    char last[kFieldSize] = "";
    {
        vesk::unique_file f = vesk::open_file(kTodayList, "r");
        if (!f) {
            T_PRINTF("%s: file open error!\n", __func__);
            return 0;
        }
        // "sort -n" puts the highest name last.
        char line[kFieldSize];
        while (vesk::read_line(f.get(), line))
            memcpy(last, line, sizeof last);
    }

    vesk_string_remove_char(last, '\n');
    vesk_string_replace_char(last, '_', ' ');
    vesk_string_replace_char(last, '.', ' ');
    char tag_field[kFieldSize], date_field[kFieldSize], ext_field[kFieldSize];
    int number;
    if (sscanf(last, "%*s %127s %127s %d %127s", tag_field, date_field, &number, ext_field) != 4) {
        T_PRINTF("%s: No record found\n", __func__);
        return 0;
    }
    memcpy(last_date, date_field, kFieldSize);
    memcpy(last_tag, tag_field, kFieldSize);
    *last_number = number;
    vesk::cmd::run(__func__, "rm -rf %s", kTodayList);
    return 1;
}

char *vesk_logfile_get_filename(const char *dir, const char *prefix, const char *tag, const char *ext)
{
    log_filename_buffer[0] = '\0';
    if (!dir || !prefix || !tag || !ext) {
        T_PRINTF(kNullInput, __func__);
        return log_filename_buffer;
    }
    char date[kDateSize];
    today(date);

    char last_tag[kFieldSize], last_date[kFieldSize];
    int last_number = 0;
    int number = 0;
    // A name of a past day, or a failure, starts the day at 00. A number
    // that cannot be counted past starts over as well.
    if (vesk_logfile_get_last_record_date_and_number(dir, prefix, tag, last_tag, last_date, &last_number, ext) &&
        strcmp(last_date, date) == 0 && last_number >= 0 && last_number < INT_MAX)
        number = last_number + 1;

    int len = snprintf(log_filename_buffer, sizeof log_filename_buffer, "%s_%s_%s_%02d.%s", prefix, tag, date,
                       number, ext);
    // A cut name would point at some other file: give none.
    if (len < 0 || static_cast<size_t>(len) >= sizeof log_filename_buffer) {
        T_PRINTF("%s: file name too long!\n", __func__);
        log_filename_buffer[0] = '\0';
    }
    return log_filename_buffer;
}

int vesk_firmware_list_files(void) { return 1; }

} // extern "C"
