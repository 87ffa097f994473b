// One face over both chipset families: a record of operations per family,
// chosen by the interface name, and the four dispatchers that use it.
#include "vesk_wlan.h"

#include <string.h>

#include <string_view>

#include "sysapi.h"
#include "wlan/slots.hpp"

extern "C" {

const vesk_wlan_ops vesk_qca_ops = {
    .get_client_num = vesk_wlan_get_qca_client_num,
    .get_ch_info = vesk_get_wlan_ch_info_qca,
    .get_site_survey = vesk_wlan_get_site_survey_qca,
    .get_sta_info = vesk_wlan_get_qca_sta_info,
};

const vesk_wlan_ops vesk_ralink_ops = {
    .get_client_num = vesk_wlan_get_ralink_client_num,
    .get_ch_info = vesk_get_wlan_ch_info_ralink,
    .get_site_survey = vesk_wlan_get_site_survey_ralink,
    .get_sta_info = vesk_wlan_get_ralink_sta_info,
};

// The only place that tells the families apart.
const vesk_wlan_ops *vesk_wlan_get_ops(const char *ifname)
{
    struct family {
        std::string_view prefix;
        const vesk_wlan_ops *ops;
    };
    static constexpr family kFamilies[] = {{"ra", &vesk_ralink_ops}, {"ath", &vesk_qca_ops}, {"wds", &vesk_qca_ops}};
    const std::string_view name = ifname ? ifname : "";
    for (const family &f : kFamilies)
        if (name.starts_with(f.prefix))
            return f.ops;
    T_PRINTF("Unknown platform IF:[%s]\n", ifname ? ifname : "(null)");
    return nullptr;
}

} // extern "C"

namespace {

// The family's operation behind slot, or null after both messages.
template <typename Op> Op slot_of(Op vesk_wlan_ops::*slot, const char *func, const char *ifname)
{
    const vesk_wlan_ops *ops = vesk_wlan_get_ops(ifname);
    if (!ops) {
        T_PRINTF("%s,error!!!attach fail\n", func);
        return nullptr;
    }
    return ops->*slot;
}

} // namespace

extern "C" {

int vesk_get_wlan_client_num(const char *ifname)
{
    auto op = slot_of(&vesk_wlan_ops::get_client_num, __func__, ifname);
    return op ? op(ifname) : 0;
}

int vesk_get_wlan_ch_info(const char *ifname, vesk_wlan_ch_info *info)
{
    auto op = slot_of(&vesk_wlan_ops::get_ch_info, __func__, ifname);
    return op ? op(ifname, info) : 0;
}

int vesk_wlan_get_site_survey(const char *ifname, vesk_site_survey_record *records, unsigned short max_age)
{
    auto op = slot_of(&vesk_wlan_ops::get_site_survey, __func__, ifname);
    return op ? op(ifname, records, max_age) : 0;
}

int vesk_wlan_get_sta_info(const char *ifname, vesk_sta_table *table)
{
    auto op = slot_of(&vesk_wlan_ops::get_sta_info, __func__, ifname);
    return op ? op(ifname, table) : 0;
}

int vesk_wlan_get_board_dual_mode(int) { return 4; }

} // extern "C"
