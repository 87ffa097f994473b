#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_sd.h"

namespace {

// The words as one command, as the daemon gets it.
int send(int argc, char **argv)
{
    char command[1024] = "";
    for (int i = 0; i < argc; i++) {
        if (strlen(command) + strlen(argv[i]) + 2 > sizeof command) {
            fprintf(stderr, "vesk sd send: command too long\n");
            return 2;
        }
        if (i)
            strcat(command, " ");
        strcat(command, argv[i]);
    }
    char reply[128] = "";
    const int result = vesk_sd_ctrl(command, reply);
    static const char *const kMeaning[] = {"", "failed", "timed out", "no system daemon"};
    if (result < 0) {
        fprintf(stderr, "vesk sd send: %s (%d)\n", result >= -3 ? kMeaning[-result] : "", result);
        return 1;
    }
    puts(reply);
    return 0;
}

constexpr cli::command kCommands[] = {
    {"send", "WORD...", "sends a command to the system daemon and prints its final reply (a command ending in & "
                        "is not waited for)", 1, send},
};

} // namespace

extern const cli::family family_sd = {"sd", "the system daemon's control link", kCommands};
