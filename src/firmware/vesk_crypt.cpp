// File encryption: the caller's key goes into a key file for the lockwrap
// tool, which does the cipher work.
#include "vesk_crypt.h"

#include <fcntl.h>
#include <string.h>

#include "core/command.hpp"
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

    // The tool's line first: a refused name stops the call before the old
    // output is removed.
    vesk::unique_heap lockwrap = vesk::cmd::line(func, "lockwrap %s %c %s %s", kKeyFile, mode, input, output);
    if (!lockwrap)
        return 0;
    vesk::cmd::run(func, "rm -rf %s", output);
    if (osapi_is_file_existed(kKeyFile))
        vesk::cmd::run(func, "rm -rf %s", kKeyFile);
    // The key file is the owner's alone. One that cannot be made is no stop
    // here: lockwrap then fails and says so through its exit status.
    if (vesk::unique_fd fd{open(kKeyFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)}) {
        size_t len = strlen(key);
        if (len)
            (void)!write(fd.get(), key, len);
        else
            vesk::cmd::run(func, "echo \"\" > %s", kKeyFile);
    }

    if (vesk::cmd::run_line(lockwrap) != 0) {
        T_PRINTF("%s: lockwrap command error!\n", func);
        return 0;
    }
    vesk::cmd::run(func, "rm -rf %s", kKeyFile);
    if (!keep_input)
        vesk::cmd::run(func, "rm -rf %s", input);
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
