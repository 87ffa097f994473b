// File encryption: the caller's key goes into a key file for the lockwrap
// tool, which does the cipher work.
#include "vesk_crypt.h"

#include <string.h>

#include "core/unique.hpp"
#include "sysapi.h"

namespace {

constexpr char kKeyFile[] = "/var/vesk_crypt_key_file";
constexpr size_t kMaxKeyLen = 64;

int run_lockwrap(const char *func, char mode, const char *input, const char *key, const char *output,
                 int keep_input)
{
    if (!input || !output) {
        T_PRINTF("%s: input filename/output_filename is NULL!\n", func);
        return 0;
    }
    // strnlen: a key without a terminator near its start is refused, not read on.
    if (!key || strnlen(key, kMaxKeyLen + 1) > kMaxKeyLen) {
        T_PRINTF("%s: input key error!\n", func);
        return 0;
    }
    if (!osapi_is_file_existed(input)) {
        T_PRINTF("%s: File [%s] does not exist!\n", func, input);
        return 0;
    }

    CMD("rm -rf %s", output);
    if (osapi_is_file_existed(kKeyFile))
        CMD("rm -rf %s", kKeyFile);
    // A key file that cannot be made is no stop here: lockwrap then fails
    // and says so through its exit status.
    if (vesk::unique_file kf = vesk::open_file(kKeyFile, "w")) {
        size_t len = strlen(key);
        if (len)
            fwrite(key, 1, len, kf.get());
        else
            CMD("echo \"\" > /var/vesk_crypt_key_file");
    }

    if (CMD("lockwrap %s %c %s %s", kKeyFile, mode, input, output) != 0) {
        T_PRINTF("%s: lockwrap command error!\n", func);
        return 0;
    }
    CMD("rm -rf /var/vesk_crypt_key_file");
    if (!keep_input)
        CMD("rm -rf %s", input);
    return 1;
}

} // namespace

extern "C" {

int vesk_crypt_enc_file(const char *input, const char *key, const char *output, int keep_input)
{
    return run_lockwrap(__func__, 'e', input, key, output, keep_input);
}

int vesk_crypt_dec_file(const char *input, const char *key, const char *output, int keep_input)
{
    return run_lockwrap(__func__, 'd', input, key, output, keep_input);
}

} // extern "C"
