#include <limits.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "core/unique.hpp"
#include "vesk_file.h"
#include "vesk_logfile.h"

namespace {

int append(int, char **argv)
{
    vesk_file_text_append(argv[0], "%s\n", argv[1]);
    return cli::kAnswer;
}

int truncate(int argc, char **argv)
{
    int max, to_free;
    if (!cli::parse_int(argv[1], &max, 0, INT_MAX) || !cli::parse_int(argv[2], &to_free, 0, max))
        return cli::kUsage;
    return cli::done(vesk_file_text_truncate(argv[0], argc > 3 ? argv[3] : nullptr, max, to_free) == 1, "truncating");
}

// A file name is PREFIX_TAG_YYYYMMDD_NN.EXT: the parts cannot hold '_' or '.'.
bool name_parts(char **argv)
{
    for (int i = 1; i < 4; i++) {
        if (!argv[i][0] || strpbrk(argv[i], "_./")) {
            cli::refuse("%s holds '_', '.' or '/' or is empty", argv[i]);
            return false;
        }
    }
    return true;
}

int list(int, char **argv)
{
    if (!name_parts(argv))
        return cli::kUsage;
    if (!vesk_logfile_list_files(argv[0], argv[1], argv[2], argv[3]))
        return cli::miss("cannot list %s", argv[0]);
    vesk::unique_file f(fopen("/var/logfile_list.txt", "r"));
    if (!f)
        return cli::miss("no listing");
    cli::list names;
    for (char line[256]; fgets(line, sizeof line, f.get());) {
        line[strcspn(line, "\n")] = '\0';
        cli::record().text("name", line);
    }
    return cli::kAnswer;
}

int last(int, char **argv)
{
    char tag[128], date[128];
    int number = 0;
    if (!name_parts(argv))
        return cli::kUsage;
    if (!vesk_logfile_get_last_record_date_and_number(argv[0], argv[1], argv[2], tag, date, &number, argv[3]))
        return cli::miss("no file of today");
    cli::record().text("tag", tag).text("date", date).number("number", number);
    return cli::kAnswer;
}

int next(int, char **argv)
{
    return name_parts(argv) ? cli::answer(vesk_logfile_get_filename(argv[0], argv[1], argv[2], argv[3]))
                            : cli::kUsage;
}

constexpr cli::command kCommands[] = {
    {"append", "FILE TEXT", "append TEXT and a newline to FILE", 2, append},
    {"truncate", "FILE MAX FREE [BACKUP]", "past MAX lines keep the last MAX - FREE lines", 3, truncate},
    {"list", "DIR PREFIX TAG EXT", "the directory's PREFIX*.EXT files in \"sort -n\" order, one name a line", 4,
     list},
    {"last", "DIR PREFIX TAG EXT", "tag, date and number of the day's last file", 4, last},
    {"next", "DIR PREFIX TAG EXT", "name for the next log file of the day", 4, next},
};

} // namespace

extern const cli::family family_log = {"log", "bounded text files and log directories", kCommands};
