// The survey store under /tmp/survey, one file per channel, and the survey
// flow that both families follow: answer from the channel's file while it is
// young enough, else scan and replace the file.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <span>

#include "vesk_wlan.h"

namespace vesk::wlan {

// What the loader says; bit 0: a scan is needed, bit 1: write its result.
inline constexpr int kSurveyFromFile = 0;
inline constexpr int kSurveyScan = 1;
inline constexpr int kSurveySave = 2;

// Records a survey buffer of ifname holds: 64 for "ra..." names, else 256.
size_t survey_capacity(const char *ifname);

// Fills records from the channel's file, one record a line, never beyond
// records.size(). kSurveyFromFile when the file is at most max_age seconds
// old; kSurveyScan | kSurveySave when it is missing, unreadable or older.
int vesk_wlan_survey_load(int channel, std::span<vesk_site_survey_record> records, uint16_t max_age);

// Rewrites the channel's file with the records of that channel, up to the
// first record of channel 0; hidden networks get an empty SSID, in records
// too. A file that cannot be written is passed over.
void vesk_wlan_survey_save(const char *ifname, int channel, std::span<vesk_site_survey_record> records);

// A family's scan into records; -1 (after its own message) when it failed.
using scan_fn = int (*)(const char *ifname, std::span<vesk_site_survey_record> records);

// The survey of the channel in the first word of records (0: all, which
// neither reads nor writes a file): 0 from the file, 1 after a scan, -1 when
// the scan failed or an argument is null.
int run_survey(const char *func, const char *ifname, vesk_site_survey_record *records, uint16_t max_age,
               scan_fn scan);

} // namespace vesk::wlan
