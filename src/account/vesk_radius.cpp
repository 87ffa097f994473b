// A user's login checked against a RADIUS server: eapol_test runs PEAP with
// MSCHAPv2 inside from a configuration file written for the call, and its
// exit status is the answer.
#include "vesk_account.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "sysapi.h"

namespace {

constexpr char kConfPath[] = "/tmp/peap-mschapv2.conf";

// The file holds the password: only its owner reads it. A link planted at
// the fixed path in /tmp is not followed.
vesk::unique_file create_private(const char *path)
{
    vesk::unique_fd fd(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!fd || fchmod(fd.get(), S_IRUSR | S_IWUSR) != 0)
        return {};
    vesk::unique_file f(fdopen(fd.get(), "w"));
    if (f)
        fd.release();
    return f;
}

// The values go between double quotes on lines of their own: a quote or a
// line break would end the value and let the rest become settings.
bool quotable(const char *value) { return value && !strpbrk(value, "\"\n\r"); }

} // namespace

extern "C" int vesk_account_auth_radius_user(const char *identity, const char *password, const char *radius_secret,
                                             const char *radius_server, const char *radius_port, int timeout)
{
    if (!quotable(identity) || !quotable(password)) {
        T_PRINTF("%s: name or password missing or holding a double quote or line break, refused\n", __func__);
        return 0;
    }
    vesk::unique_heap line = vesk::cmd::line(__func__, "eapol_test -s %s -a %s -p %s -t %d -c %s > /dev/null",
                                             radius_secret, radius_server, radius_port, timeout, kConfPath);
    if (!line)
        return 0;
    // A file that cannot be written leaves the tool with what is there.
    if (vesk::unique_file conf = create_private(kConfPath))
        fprintf(conf.get(),
                "network={\n"
                "ssid=\"auth_user\"\n"
                "key_mgmt=WPA-EAP\n"
                "eap=PEAP\n"
                "identity=\"%s\"\n"
                "password=\"%s\"\n"
                "phase2=\"autheap=MSCHAPV2\"\n"
                "}",
                identity, password);
    // The C library's system(), not CMD: the device's CMD may print or log
    // its line, and this one carries the shared secret.
    return system(static_cast<const char *>(line.get())) == 0 ? 1 : 0;
}
