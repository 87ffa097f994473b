/* Line-oriented text files kept within a bound: append a line, cut the file
 * down once it has grown past a maximum. Paths go into shell command lines
 * as they are, so they must hold no blanks or shell characters. */
#ifndef VESK_FILE_H
#define VESK_FILE_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Formats a line (printf format; the caller adds the newline) into a static
 * 256-byte buffer, cut at 255 characters, prints it as "[line]" through
 * T_PRINTF and appends it to filename. A file that cannot be opened loses
 * the line silently. A null filename is a failed assertion: the process
 * prints the assertion line to standard output and exits with status 1. */
VESK_API void vesk_file_text_append(const char *filename, const char *format, ...) VESK_PRINTF(2, 3);

/* When filename has more than i_max_line lines, keeps only its last
 * i_max_line - i_line_to_free lines (1001 lines with 1000 and 100 keep 900).
 * The file is moved to backup (or, with a null backup, to the work file
 * "/tmp/vesk_file_text_truncate.tmp", removed afterwards) and copied back
 * line by line; backup keeps the whole old file. A missing file is left
 * alone. A null filename, a negative count or i_max_line < i_line_to_free is
 * a failed assertion (message on standard output, exit status 1).
 * Returns 1. */
VESK_API int vesk_file_text_truncate(const char *filename, const char *backup, int i_max_line, int i_line_to_free);

VESK_END_DECLS

#endif
