#include <stdio.h>

#include "cli.hpp"
#include "vesk_file.h"
#include "vesk_logfile.h"

namespace {

int append(int, char **argv)
{
    vesk_file_text_append(argv[0], "%s\n", argv[1]);
    return 0;
}

int truncate(int argc, char **argv)
{
    int max, to_free;
    if (!cli::parse_int(argv[1], &max) || !cli::parse_int(argv[2], &to_free) || max < 0 || to_free < 0 ||
        to_free > max) {
        fprintf(stderr, "vesk log truncate: want MAX >= FREE >= 0\n");
        return 2;
    }
    return vesk_file_text_truncate(argv[0], argc > 3 ? argv[3] : nullptr, max, to_free) == 1 ? 0 : 1;
}

int list(int, char **argv)
{
    if (!vesk_logfile_list_files(argv[0], argv[1], argv[2], argv[3]))
        return 1;
    FILE *f = fopen("/var/logfile_list.txt", "r");
    if (!f)
        return 1;
    for (int c; (c = getc(f)) != EOF;)
        putchar(c);
    fclose(f);
    return 0;
}

int last(int, char **argv)
{
    char tag[128], date[128];
    int number = 0;
    if (!vesk_logfile_get_last_record_date_and_number(argv[0], argv[1], argv[2], tag, date, &number, argv[3]))
        return 1;
    printf("tag %s\ndate %s\nnumber %d\n", tag, date, number);
    return 0;
}

int next(int, char **argv)
{
    const char *name = vesk_logfile_get_filename(argv[0], argv[1], argv[2], argv[3]);
    return cli::print_text(*name ? name : nullptr);
}

constexpr cli::command kCommands[] = {
    {"append", "FILE TEXT", "append TEXT and a newline to FILE", 2, append},
    {"truncate", "FILE MAX FREE [BACKUP]", "past MAX lines keep the last MAX - FREE lines", 3, truncate},
    {"list", "DIR PREFIX TAG EXT", "the directory's PREFIX*.EXT files in \"sort -n\" order", 4, list},
    {"last", "DIR PREFIX TAG EXT", "tag, date and number of the day's last file", 4, last},
    {"next", "DIR PREFIX TAG EXT", "name for the next log file of the day", 4, next},
};

} // namespace

extern const cli::family family_log = {"log", "bounded text files and log directories", kCommands};
