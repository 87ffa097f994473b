// What main tells the helpers of cli.cpp about the running command.
#pragma once

#include <stdio.h>

namespace cli {

struct state {
    const char *family = "";
    const char *command = "";
    bool json = false;
    bool in_list = false;
    int rows = 0;
    // The user's stdout. Standard output itself goes to stderr, so that what
    // the library and the device's tools print never mixes with answers.
    FILE *out = stdout;
};

extern state g_state;

} // namespace cli
