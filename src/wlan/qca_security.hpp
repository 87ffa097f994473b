// The WPA and RSN information elements of a scanned cell, reduced to the
// security state that get_security_str turns into words.
#pragma once

#include <stdint.h>

#include <span>

#include "vesk_wlan.h"

namespace vesk::wlan {

// Walks the elements of a beacon's payload and takes what the WPA (vendor
// 00-50-F2 type 1) and RSN elements announce into sec. An element cut short
// keeps what was read up to its end.
void parse_security_ies(std::span<const uint8_t> ie, vesk_wlan_security &sec);

} // namespace vesk::wlan
