/* Log directories whose files are named "prefix_tag_YYYYMMDD_NN.ext": a day
 * (local time) and a running number within it, from 00. These functions
 * list a directory with the shell's ls, sort and grep and name the next
 * file of the day; they write no log themselves. prefix and tag must hold
 * no "_" and no "."; paths and name parts go into shell command lines as
 * they are. The list files under /var have fixed names: one listing at a
 * time on the device. */
#ifndef VESK_LOGFILE_H
#define VESK_LOGFILE_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Writes the names (without the directory) of dir's files "prefix*.ext",
 * of every tag and day, to "/var/logfile_list.txt" in the order of
 * "sort -n" and to "/var/logfile_web_list.txt" in the order of "sort -r".
 * tag is tested but not used. Returns 1 when the commands were run, 0 with a
 * message when an argument is null. */
VESK_API int vesk_logfile_list_files(const char *dir, const char *prefix, const char *tag, const char *ext);

/* The last file of the day in the "sort -n" order of dir's prefix_tag files:
 * its tag and date into last_tag and last_date (128 bytes each) and its
 * number into *last_number. The pattern takes the first seven digits of the
 * day's date, so a file of another day of the same ten days (the 20th to the
 * 29th, say) can be the answer. "sort -n" puts number 100 before 11, so that
 * 99 stays last once it exists. Returns 1 with all three set; 0 with a
 * message when no file matches or the last name does not parse (last_tag
 * and last_date empty, *last_number untouched) or an argument is null. */
VESK_API int vesk_logfile_get_last_record_date_and_number(const char *dir, const char *prefix, const char *tag,
                                                          char *last_tag, char *last_date, int *last_number,
                                                          const char *ext);

/* The name for the next log file of the day, "prefix_tag_YYYYMMDD_NN.ext":
 * one past the last file of the day, or number 00 when the day has none.
 * Creates nothing; dir is not part of the name. Returns the static 80-byte
 * buffer, which holds an empty text (with a message) when an argument is
 * null or the name would be longer than 79 characters. */
VESK_API char *vesk_logfile_get_filename(const char *dir, const char *prefix, const char *tag, const char *ext);

/* Kept for the firmware's callers: does nothing and returns 1. */
VESK_API int vesk_firmware_list_files(void);

VESK_END_DECLS

#endif
