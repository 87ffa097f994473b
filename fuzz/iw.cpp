// Wireless parsers: the QCA scan's event stream with its cells, the WPA/RSN
// element walk, iwconfig's text and the site survey file.
#include <string.h>

#include "fuzz.hpp"
#include "vesk_iw.h"
#include "vesk_wlan.h"
#include "wlan/qca_cells.hpp"
#include "wlan/qca_security.hpp"

namespace {

// The first byte picks the driver's version (18 or 22), the rest is its stream.
void stream(const char *data, size_t size)
{
    static vesk_site_survey_record records[VESK_SURVEY_RECORDS_QCA];
    memset(records, 0, sizeof records);
    iw_range range{};
    range.we_version_compiled = size && (data[0] & 1) ? 18 : 22;
    range.max_qual.qual = 94;
    range.num_frequency = 2;
    range.freq[0] = {518000000, 1, 36, 0};
    range.freq[1] = {243700000, 1, 6, 0};
    char *s = const_cast<char *>(data); // the reader never writes the stream
    vesk::wlan::read_cells("ath0", size ? s + 1 : s, size ? size - 1 : 0, range, records);
}

void elements(const char *data, size_t size)
{
    vesk_wlan_security sec{};
    sec.infrastructure = size && (data[0] & 1);
    init_security(&sec);
    vesk::wlan::parse_security_ies({reinterpret_cast<const uint8_t *>(data), size}, sec);
    char text[32];
    get_security_str(text, &sec);
}

VESK_FUZZ_TABLE({"iw_stream", nullptr, stream, true}, {"ies", nullptr, elements, true},
                {"iwconfig", "tool:iwconfig", [](const char *, size_t) {
                     vesk_wlan_info info;
                     vesk_get_wlan_interface_info("ath0", &info);
                 }},
                {"survey", "/tmp/survey/ch_6.txt", [](const char *, size_t) {
                     static vesk_site_survey_record records[VESK_SURVEY_RECORDS_QCA];
                     memset(records, 0, sizeof records);
                     const uint32_t channel = 6; // the channel asked for: the buffer's first word
                     memcpy(records, &channel, sizeof channel);
                     vesk_wlan_get_site_survey_qca("ath0", records, 65535); // the file is never too old
                 }}, );

} // namespace
