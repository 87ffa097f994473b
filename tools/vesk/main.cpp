#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "cli.hpp"
#include "cli_state.hpp"
#include "host_guard.hpp"
#include "vesk_version.h"

#define VESK_FAMILY(name) extern const cli::family family_##name;
#include "families.inc"
#undef VESK_FAMILY

namespace {

#define VESK_FAMILY(name) &family_##name,
const cli::family *const kFamilies[] = {
#include "families.inc"
};
#undef VESK_FAMILY

constexpr const char kExitCodes[] = "exit status: 0 answer, 1 no answer (message on stderr), 2 usage or refused input\n";

void print_command(FILE *out, const cli::family &f, const cli::command &c)
{
    fprintf(out, "  vesk %s %s%s%s\n      %s\n", f.name, c.name, *c.args ? " " : "", c.args, c.help);
}

int family_help(FILE *out, const cli::family &f)
{
    fprintf(out, "%s: %s\n", f.name, f.help);
    for (const cli::command &c : f.commands)
        print_command(out, f, c);
    return out == stderr ? cli::kUsage : cli::kAnswer;
}

int usage(FILE *out)
{
    fputs("usage: vesk [-j|--json] [--host] FAMILY COMMAND [ARGS...]\n"
          "       vesk FAMILY --help | vesk FAMILY COMMAND --help | vesk --version\n"
          "Asks the device through libvesk and prints the answers.\n"
          "  -j, --json  print the answer as one JSON value\n"
          "  --host      let commands change this host's clock, host name or /storage\n"
          "              outside an emulated device (or VESK_HOST=1)\n",
          out);
    fputs(kExitCodes, out);
    fputs("\nfamilies:\n", out);
    for (const cli::family *f : kFamilies)
        fprintf(out, "  %-10s %s\n", f->name, f->help);
    return out == stderr ? cli::kUsage : cli::kAnswer;
}

// Largest word count the synopsis allows; -1 when it ends in "...".
int max_args(const char *synopsis)
{
    if (strstr(synopsis, "..."))
        return -1;
    int n = 0;
    for (const char *p = synopsis; *p; p++)
        n += *p != ' ' && *p != '[' && *p != ']' && (p == synopsis || p[-1] == ' ' || p[-1] == '[');
    return n;
}

int run(const cli::family &f, const cli::command &c, int argc, char **argv, bool host)
{
    cli::g_state.command = c.name;
    const int most = max_args(c.args);
    if (argc < c.min_args || (most >= 0 && argc > most)) {
        fprintf(stderr, "usage: vesk %s %s %s\n", f.name, c.name, c.args);
        return cli::kUsage;
    }
    if ((c.flags & cli::changes_device) && !vesk_tool::may_change(host))
        return cli::refuse("refused outside an emulated device, as it would change this host (%s); give --host "
                           "or VESK_HOST=1 to mean this host",
                           c.help);
    return c.run(argc, argv);
}

} // namespace

int main(int argc, char **argv)
{
    const int user_fd = dup(STDOUT_FILENO);
    if (user_fd >= 0 && (cli::g_state.out = fdopen(user_fd, "w")))
        dup2(STDERR_FILENO, STDOUT_FILENO);
    else
        cli::g_state.out = stdout;
    // Options anywhere before "--"; everything else is a word, in order.
    bool help = false, host = false;
    int words = 0;
    for (int i = 1; i < argc; i++) {
        char *a = argv[i];
        if (!strcmp(a, "--")) {
            while (++i < argc)
                argv[++words] = argv[i];
            break;
        }
        if (!strcmp(a, "-j") || !strcmp(a, "--json"))
            cli::g_state.json = true;
        else if (!strcmp(a, "--host"))
            host = true;
        else if (!strcmp(a, "-h") || !strcmp(a, "--help"))
            help = true;
        else if (!strcmp(a, "--version"))
            return fprintf(cli::g_state.out, "vesk %s\n", VESK_VERSION_STRING) < 0;
        else
            argv[++words] = a;
    }
    if (words < 1)
        return usage(help ? cli::g_state.out : stderr);
    for (const cli::family *f : kFamilies) {
        if (strcmp(f->name, argv[1]))
            continue;
        cli::g_state.family = f->name;
        if (words < 2)
            return family_help(help ? cli::g_state.out : stderr, *f);
        for (const cli::command &c : f->commands) {
            if (strcmp(c.name, argv[2]))
                continue;
            if (help) {
                print_command(cli::g_state.out, *f, c);
                fputs(kExitCodes, cli::g_state.out);
                return cli::kAnswer;
            }
            return run(*f, c, words - 2, argv + 3, host);
        }
        fprintf(stderr, "vesk %s: no command %s (vesk %s --help lists them)\n", f->name, argv[2], f->name);
        return cli::kUsage;
    }
    fprintf(stderr, "vesk: no family %s (vesk --help lists them)\n", argv[1]);
    return cli::kUsage;
}
