// quil: read and write the configuration store from the shell.
//   quil get KEY          number in decimal, record in hex
//   quil set KEY VALUE    the same forms
//   quil list             the store's file as it stands
//   quil --host set ...   write the store outside a device as well
// Exit status: 0 done, 1 no value, a value the key does not take or a failed
// write, 2 usage, an unknown key or refused.
#include <stdio.h>
#include <string.h>

#include "host_guard.hpp"
#include "quil.h"

namespace {

int usage()
{
    fputs("usage: quil get KEY | quil [--host] set KEY VALUE | quil list\n"
          "  numbers are decimal, records are hex (two digits a byte)\n"
          "  set writes /storage only inside a device, or with --host (or VESK_HOST=1)\n",
          stderr);
    return 2;
}

// Size of the key's value; 0, with a message, for an unknown key.
int key_size(const char *key, int *is_number)
{
    int size = quil_key_info(key, is_number);
    if (!size)
        fprintf(stderr, "quil: unknown key %s\n", key);
    return size;
}

int get(const char *key)
{
    int is_number = 0;
    int size = key_size(key, &is_number);
    if (!size)
        return 2;
    unsigned char value[128] = {};
    if (!quil_get_value(value, "%s", key))
        return 1;
    if (is_number) {
        int v;
        memcpy(&v, value, sizeof v);
        printf("%d\n", v);
    } else {
        for (int i = 0; i < size; i++)
            printf("%02x", value[i]);
        putchar('\n');
    }
    return 0;
}

int set(const char *key, const char *text)
{
    int is_number = 0;
    int size = key_size(key, &is_number);
    if (!size)
        return 2;
    if (quil_set_text(key, text) != 0) {
        if (is_number)
            fprintf(stderr, "quil: %s takes a 32-bit decimal number\n", key);
        else
            fprintf(stderr, "quil: %s takes %d bytes in hex\n", key, size);
        return 1;
    }
    return 0;
}

int list()
{
    FILE *f = fopen(QUIL_DAT_FILE, "r");
    if (!f)
        return 0;
    int c;
    while ((c = getc(f)) != EOF)
        putchar(c);
    fclose(f);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const bool host = argc > 1 && !strcmp(argv[1], "--host");
    argc -= host, argv += host;
    if (argc == 4 && !strcmp(argv[1], "set") && !vesk_tool::may_change(host)) {
        fputs("quil: refused outside an emulated device, as set would change this host's /storage; "
              "give --host or VESK_HOST=1 to mean this host\n",
              stderr);
        return 2;
    }
    if (argc == 3 && !strcmp(argv[1], "get"))
        return get(argv[2]);
    if (argc == 4 && !strcmp(argv[1], "set"))
        return set(argv[2], argv[3]);
    if (argc == 2 && !strcmp(argv[1], "list"))
        return list();
    return usage();
}
