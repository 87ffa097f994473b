// Site surveys: the per-channel survey files, the flow that decides between
// file and scan, and the Ralink scan, whose driver hands back finished
// records.
#include <errno.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "core/line_reader.hpp"
#include "core/words.hpp"
#include "sysapi.h"
#include "vesk_mac.h"
#include "vesk_string.h"
#include "vesk_wlan.h"
#include "wlan/driver.hpp"
#include "wlan/survey_store.hpp"

static_assert(sizeof(vesk_site_survey_record) == 100);
static_assert(offsetof(vesk_site_survey_record, bssid) == 0);
static_assert(offsetof(vesk_site_survey_record, channel) == 6);
static_assert(offsetof(vesk_site_survey_record, ssid) == 7);
static_assert(offsetof(vesk_site_survey_record, security) == 40);
static_assert(offsetof(vesk_site_survey_record, rssi) == 72);
static_assert(offsetof(vesk_site_survey_record, wireless_type) == 73);
static_assert(offsetof(vesk_site_survey_record, ex_channel) == 81);
static_assert(offsetof(vesk_site_survey_record, dbm) == 92);
static_assert(offsetof(vesk_site_survey_record, hidden) == 96);

namespace {

constexpr char kSurveyDir[] = "/tmp/survey";
constexpr size_t kPathMax = 64;
constexpr size_t kReadLine = 256;
constexpr size_t kWriteLine = 512;

// The labels of a record line, in the order of its fields.
enum field { kCh, kSsid, kBssid, kSec, kRssi, kDbm, kExCh, kType, kFieldCount };
constexpr std::string_view kLabels[kFieldCount] = {"{Ch:",  ", SSID:", ", BSSID:", ", Sec:",
                                                   ", RSSI:", ", dbm:", ", Ex_ch:", ", Type:"};
constexpr char kLineFormat[] = "{Ch:%d, SSID:%.*s, BSSID:%s, Sec:%.*s, RSSI:%d, dbm:%d, Ex_ch:%.*s, Type:%.*s";

struct survey_path {
    char text[kPathMax];
    explicit survey_path(int channel) { snprintf(text, sizeof text, "%s/ch_%d.txt", kSurveyDir, channel); }
};

uint32_t uptime_seconds()
{
    uint32_t tv[2] = {0, 0};
    x_gettimeofday(tv);
    return tv[0];
}

// Splits a record line at its labels. Each value runs to the next label, so
// an SSID that holds a comma, or none at all (a hidden network), reads
// whole; where a label is missing, that value takes the rest of the line
// and the later ones stay empty. False for a line that is no record.
bool split_record(std::string_view line, std::array<std::string_view, kFieldCount> &values)
{
    if (!line.starts_with(kLabels[kCh]))
        return false;
    size_t pos = kLabels[kCh].size();
    for (size_t i = 0; i < kFieldCount; i++) {
        size_t end = i + 1 < kFieldCount ? line.find(kLabels[i + 1], pos) : line.rfind('}');
        if (end == std::string_view::npos || end < pos) {
            values[i] = std::string_view(line.data() + pos, line.size() - pos);
            break;
        }
        values[i] = std::string_view(line.data() + pos, end - pos);
        pos = end + (i + 1 < kFieldCount ? kLabels[i + 1].size() : 1);
    }
    return true;
}

int number_of(std::string_view text)
{
    char digits[16];
    vesk::put_text(digits, text);
    return static_cast<int>(strtol(digits, nullptr, 10));
}

// Everything the line defines is set, the rest cleared; hidden stays as the
// caller had it.
void parse_record(const std::array<std::string_view, kFieldCount> &values, vesk_site_survey_record &rec)
{
    memset(&rec, 0, offsetof(vesk_site_survey_record, hidden));
    rec.channel = static_cast<unsigned char>(number_of(values[kCh]));
    vesk::put_text(rec.ssid, values[kSsid]);
    char bssid[32];
    vesk::put_text(bssid, values[kBssid]);
    if (bssid[0])
        vesk_mac_str_2_bin(rec.bssid, bssid);
    vesk::put_text(rec.security, values[kSec]);
    rec.rssi = static_cast<unsigned char>(number_of(values[kRssi]));
    rec.dbm = number_of(values[kDbm]);
    vesk::put_text(rec.ex_channel, values[kExCh]);
    vesk::put_text(rec.wireless_type, values[kType]);
}

// Precision that keeps a driver's unterminated text inside its field.
template <size_t N> constexpr int bounded(const char (&)[N]) { return static_cast<int>(N - 1); }

void write_record(FILE *f, vesk_site_survey_record &rec)
{
    char bssid[18];
    vesk_mac_bin_2_str(bssid, rec.bssid);
    if (rec.hidden == 1)
        rec.ssid[0] = '\0';
    char line[kWriteLine] = {};
    snprintf(line, sizeof line, kLineFormat, rec.channel, bounded(rec.ssid), rec.ssid, bssid,
             bounded(rec.security), rec.security, rec.rssi, rec.dbm, bounded(rec.ex_channel), rec.ex_channel,
             bounded(rec.wireless_type), rec.wireless_type);
    fprintf(f, "%s}\r\n", line);
}

int scan_ralink(const char *ifname, std::span<vesk_site_survey_record> records)
{
    auto buf = std::as_writable_bytes(records.first(VESK_SURVEY_RECORDS_RALINK));
    if (!vesk::wlan::driver_request(ifname, vesk::wlan::kRalinkPrivate, vesk::wlan::kRalinkSurvey, buf)) {
        T_PRINTF("ioctl error, get_site_survey:%s\n", strerror(errno));
        return -1;
    }
    return 0;
}

} // namespace

namespace vesk::wlan {

size_t survey_capacity(const char *ifname)
{
    return std::string_view(ifname).starts_with("ra") ? VESK_SURVEY_RECORDS_RALINK : VESK_SURVEY_RECORDS_QCA;
}

int vesk_wlan_survey_load(int channel, std::span<vesk_site_survey_record> records, uint16_t max_age)
{
    constexpr int kMissing = kSurveyScan | kSurveySave;
    survey_path path(channel);
    unique_file file = open_file(path.text, "r+");
    char line[kReadLine];
    unsigned int stamp;
    if (!file || !read_line(file.get(), line) || sscanf(vesk_remove_crlf(line), "uptime: %u", &stamp) != 1)
        return kMissing;
    if (static_cast<uint32_t>(stamp + max_age) < uptime_seconds())
        return kMissing;
    size_t next = 0;
    std::array<std::string_view, kFieldCount> values;
    while (next < records.size() && read_line(file.get(), line)) {
        values = {};
        if (split_record(vesk_remove_crlf(line), values))
            parse_record(values, records[next++]);
    }
    return kSurveyFromFile;
}

void vesk_wlan_survey_save(const char *ifname, int channel, std::span<vesk_site_survey_record> records)
{
    survey_path path(channel);
    unique_file file = open_file(path.text, "w");
    if (!file)
        return;
    fprintf(file.get(), "uptime: %u\r\n", uptime_seconds());
    for (vesk_site_survey_record &rec : records.first(std::min(records.size(), survey_capacity(ifname)))) {
        if (rec.channel == 0)
            break;
        if (channel == 0 || rec.channel == channel)
            write_record(file.get(), rec);
    }
}

int run_survey(const char *func, const char *ifname, vesk_site_survey_record *records, uint16_t max_age,
               scan_fn scan)
{
    if (!ifname || !records) {
        T_PRINTF(ifname ? "%s: input error!\n" : "Err: %s, dev_name is NULL!\n", func);
        return -1;
    }
    const std::span<vesk_site_survey_record> buffer(records, survey_capacity(ifname));
    int channel;
    memcpy(&channel, records, sizeof channel);
    int status = kSurveyScan;
    if (channel != 0) {
        status = vesk_wlan_survey_load(channel, buffer, max_age);
        if (!(status & kSurveyScan))
            return 0;
    }
    if (scan(ifname, buffer) < 0)
        return -1;
    if (status & kSurveySave)
        vesk_wlan_survey_save(ifname, channel, buffer);
    return 1;
}

} // namespace vesk::wlan

extern "C" int vesk_wlan_get_site_survey_ralink(const char *ifname, vesk_site_survey_record *records,
                                                unsigned short max_age)
{
    return vesk::wlan::run_survey(__func__, ifname, records, max_age, scan_ralink);
}
