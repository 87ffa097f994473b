/* Small text and number routines: a regular-expression test, a hex dump,
 * in-place character edits, path components, bounded appending, integer to
 * text, URL comparison and the bit length of a number. Only vesk_reg_match
 * prints diagnostics; only vesk_itoa owns a static buffer. */
#ifndef VESK_STRING_H
#define VESK_STRING_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* One unanchored search of pattern (classic PCRE syntax, compiled on every
 * call) over the whole text. Returns 1 on a match, 0 on no match, on a
 * pattern that does not compile and on a null argument (those two with a
 * message on standard error). */
VESK_API int vesk_reg_match(const char *pattern, const char *text);

/* Prints data to standard output, sixteen bytes a line:
 * "%08x: " offset (position plus base), "%02X " per byte, " |", the bytes
 * as text (a full stop outside 0x20..0x7E) and "|". A short last line gets
 * no filler after the text. A null data prints nothing. */
VESK_API void vesk_dbg_hexdump(unsigned int base, const void *data, unsigned int len);

/* Removes every c from text in place; returns how many were removed
 * (0 for a null text). */
VESK_API int vesk_string_remove_char(char *text, char c);

/* Writes to over every from in text; returns how many were replaced
 * (0 for a null text). */
VESK_API int vesk_string_replace_char(char *text, char from, char to);

/* Value of a digit character: '0'..'9' give 0..9, any letter gives its
 * upper-case code minus 55 ('a' and 'A' 10, 'z' 35), all else -1. */
VESK_API int vesk_char_to_int(char c);

/* First position of text holding neither a blank nor a tab (newlines are
 * not skipped). Null for a null text. */
VESK_API char *vesk_char_skip_whitespace(const char *text);

/* Position of the last character of text when it equals c, else null (also
 * for a null or empty text). */
VESK_API char *vesk_char_last_is(const char *text, char c);

/* The part of path behind its last '/', pointing into path: path itself
 * when it has no slash or is exactly "/", the empty text when it ends in a
 * slash. Null for a null path. */
VESK_API char *vesk_string_get_last_path_component_nostrip(char *path);

/* Cuts trailing slashes off path in place (never its first character),
 * then answers as vesk_string_get_last_path_component_nostrip:
 * "/a/b//" becomes "/a/b" and gives "b"; "///" becomes "/" and gives "/". */
VESK_API char *vesk_string_get_last_path_component_strip(char *path);

/* Formats at most 2047 characters and appends them to dst, whose room is
 * the caller's duty. Returns dst; does nothing and returns null when dst is
 * null. */
VESK_API char *vesk_strcat(char *dst, const char *format, ...) VESK_PRINTF(2, 3);

/* Digits of value in base 2..16 (lower case, no sign, at most the lowest
 * 30 digits) in a static 32-byte buffer that the next call overwrites.
 * 0 gives the empty text. A negative value is taken as its unsigned 32-bit
 * pattern (-1 in base 16 is "ffffffff"); a base outside 2..16 gives the
 * empty text. Never null. */
VESK_API char *vesk_itoa(int value, int base);

/* Compares a and b as strcmp does after lower-casing both (ASCII only);
 * nothing else is normalised. Texts of any length are compared whole; a
 * null text counts as empty. Result below, at or above 0. */
VESK_API int vesk_url_cmp(const char *a, const char *b);

/* Cuts one line end from text: a last "\n", and a "\r" just before it.
 * A lone trailing "\r" stays. Returns text. */
VESK_API char *vesk_remove_crlf(char *text);

/* One-based position of the highest set bit: 0 for 0, 1 for 1, 32 for
 * 0x80000000. */
VESK_API int vesk_math_msb32(unsigned int value);

VESK_END_DECLS

#endif
