// Wireless parsers: the site survey file.
#include <string.h>

#include "fuzz.hpp"
#include "vesk_wlan.h"

namespace {

VESK_FUZZ_TABLE({"survey", "/tmp/survey/ch_6.txt", [](const char *, size_t) {
                     static vesk_site_survey_record records[VESK_SURVEY_RECORDS_QCA];
                     memset(records, 0, sizeof records);
                     const uint32_t channel = 6;
                     memcpy(records, &channel, sizeof channel);
                     vesk_wlan_get_site_survey_qca("ath0", records, 65535); // the file is never too old
                 }}, );

} // namespace
