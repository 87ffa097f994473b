// Whether a newer firmware has been announced: the notice files in /var and
// version comparison.
#include <dirent.h>
#include <stdio.h>
#include <string.h>

#include <iterator>

#include "core/unique.hpp"
#include "core/version.hpp"
#include "vesk_product.h"

namespace {

// The notice languages; independent of the product row's language list.
constexpr const char *kNoticeLanguages[] = {"uk", "nl", "de", "dk", "es", "fr", "it", "pt", "se"};

} // namespace

extern "C" {

int vesk_product_check_fw_notify(void)
{
    vesk::unique_dir dir(opendir("/var"));
    if (!dir)
        return 0;
    unsigned int found = 0;
    while (const struct dirent *entry = readdir(dir.get())) {
        for (const char *lang : kNoticeLanguages) {
            char name[50] = {};
            snprintf(name, sizeof name, "%s_xml.txt", lang);
            if (strcmp(name, entry->d_name) == 0) {
                found++;
                break;
            }
        }
    }
    return found == std::size(kNoticeLanguages) ? 1 : 0;
}

int vesk_product_check_new_fw_by_str(const char *str)
{
    if (!str)
        return 0;
    // Without at least major and minor there is no version to compare.
    int fields;
    uint32_t candidate = vesk::version_number(str, &fields);
    if (fields < 2)
        return 0;
    return vesk_product_get_fw_version_dec() < candidate ? 1 : 0;
}

} // extern "C"
