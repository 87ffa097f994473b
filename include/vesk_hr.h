/* Numbers as short human-readable text. Each function returns its own static
 * buffer, which its next call overwrites; copy the text to keep it. */
#ifndef VESK_HR_H
#define VESK_HR_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* val in steps of 1024 with one decimal and a letter of "kMGT" (1536 is
 * "1.5k", 2047 is "2.0k", 1048575 is "1024.0k"); below 1024 the plain number.
 * With a non-zero unit: val / unit rounded half up, as a plain number
 * (1500 with 1000 is "2"). Returns the constant "0" when val is 0, else the
 * static 21-byte buffer. */
VESK_API const char *vesk_hr_u64_to_str(unsigned long long val, unsigned long long unit);

/* val in decimal with a comma between groups of three digits
 * ("4,294,967,295"). Returns the static 80-byte buffer. */
VESK_API char *vesk_hr_u32_to_str(unsigned int val);

/* A byte count in steps of 1000 with one cut (not rounded) decimal:
 * "999 Bytes", "1.2 KBytes", "999.9 KBytes", "2.0 MBytes", "1.9 GBytes".
 * From 10^12 bytes on the count stays in GBytes ("1234.5 GBytes").
 * Returns the static 80-byte buffer. */
VESK_API char *vesk_parse_pkt_unit(unsigned long long val);

VESK_END_DECLS

#endif
