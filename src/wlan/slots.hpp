// Functions of the wireless family that the library keeps to itself: the
// family look-up and the client counts, which only the operations records
// reach.
#pragma once

#include "vesk_wlan.h"

extern "C" {

// The family's record for ifname by its prefix, or null (with a message).
const vesk_wlan_ops *vesk_wlan_get_ops(const char *ifname);

// Slot 0 of the two records.
int vesk_wlan_get_qca_client_num(const char *ifname);
int vesk_wlan_get_ralink_client_num(const char *ifname);

} // extern "C"
