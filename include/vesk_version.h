/* The version of these headers; the build takes its version from here. */
#ifndef VESK_VERSION_H
#define VESK_VERSION_H

#define VESK_VERSION_MAJOR 1
#define VESK_VERSION_MINOR 0
#define VESK_VERSION_PATCH 0
#define VESK_VERSION_STRING "1.0.0"
/* Major times 10000, plus minor times 100, plus patch: compares as a number. */
#define VESK_VERSION_NUMBER (VESK_VERSION_MAJOR * 10000 + VESK_VERSION_MINOR * 100 + VESK_VERSION_PATCH)

#endif
