// The survey of the QCA radio: the shared survey flow over the QCA scan.
#include "sysapi.h"
#include "vesk_wlan.h"
#include "wlan/survey_store.hpp"

namespace {

// The QCA driver speaks Wireless Extensions; until its scan is read here,
// only a young enough survey file answers.
int scan_qca(const char *ifname, std::span<vesk_site_survey_record>)
{
    T_PRINTF("%s: no scan on %s\n", __func__, ifname);
    return -1;
}

} // namespace

extern "C" int vesk_wlan_get_site_survey_qca(const char *ifname, vesk_site_survey_record *records,
                                             unsigned short max_age)
{
    return vesk::wlan::run_survey(__func__, ifname, records, max_age, scan_qca);
}
