// VESK_ASSERT with the line number written out: field scripts match the
// printed line, so a reformat of the source must not change it.
#pragma once

#include <stdio.h>
#include <stdlib.h>

#include "vesk_core.h"

#define VESK_ASSERT_AT(line, expr)                                                                 \
    do {                                                                                           \
        if (!(expr)) {                                                                             \
            printf("VESK_ASSERT FAILED '" #expr "' %s %s:%d\n", __func__, VESK_ASSERT_FILE, line); \
            exit(1);                                                                               \
        }                                                                                          \
    } while (0)
