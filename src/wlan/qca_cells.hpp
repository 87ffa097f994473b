// The QCA driver's scan results: a stream of Wireless Extensions events,
// cell after cell, turned into survey records.
#pragma once

#include <stddef.h>

#include <span>

#include "vesk_iw.h"
#include "vesk_wlan.h"

namespace vesk::wlan {

// Walks the len bytes of stream into records, a record a cell, in the
// stream's order; stops when records is full. On "ath0" cells of the
// 2.4 GHz band (and cells without a channel) are left out. The security
// text comes from the WPA and RSN elements.
void read_cells(const char *ifname, char *stream, size_t len, const iw_range &range,
                std::span<vesk_site_survey_record> records);

} // namespace vesk::wlan
