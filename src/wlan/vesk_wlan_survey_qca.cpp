// The survey of the QCA radio: the shared survey flow over a Wireless
// Extensions scan. The driver is told to scan, then asked for its results
// until they are ready; the buffer grows when the driver says it is too small.
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/select.h>

#include "core/ifreq.hpp"
#include "core/unique.hpp"
#include "vesk_iw.h"
#include "vesk_wlan.h"
#include "wlan/driver.hpp"
#include "wlan/qca_cells.hpp"
#include "wlan/survey_store.hpp"

namespace {

constexpr unsigned char kOldestScanVersion = 14; // no scan before this
constexpr unsigned char kGrowingVersion = 17;    // E2BIG with the size wanted from this on
constexpr uint16_t kScanFlags = 8;               // the driver's flag word for a survey scan
constexpr long kFirstWait = 250000;              // microseconds before the first look
constexpr long kNextWait = 100000;               // and after each answer "not yet"
constexpr long kBudget = 15000000 - kFirstWait;
constexpr size_t kFirstSize = 4095;
constexpr size_t kLargestSize = UINT16_MAX;      // what the request's length can carry

// Sleeps for us microseconds, through signals; false when select fails.
bool wait_for(long us)
{
    timeval left{us / 1000000, us % 1000000};
    while (select(0, nullptr, nullptr, nullptr, &left) < 0) {
        if (errno != EAGAIN && errno != EINTR)
            return false;
    }
    return true;
}

// Polls for the scan's results into buf; their length, or -1.
long fetch_results(int fd, const char *ifname, int32_t channel, unsigned char version, vesk::unique_heap &buf)
{
    long wait = kFirstWait, budget = kBudget;
    size_t size = kFirstSize;
    for (;;) {
        if (!wait_for(wait))
            return -1;
        for (;;) {
            void *grown = realloc(buf.get(), size);
            if (!grown)
                return -1;
            buf.release();
            buf.reset(grown);
            memset(grown, 0, size);
            const int32_t word = channel < 0 ? 0 : channel;
            memcpy(grown, &word, sizeof word);
            vesk::wlan::iwreq req;
            vesk::wlan::make_iwreq(req, ifname, grown, uint16_t(size), 0);
            if (ioctl(fd, SIOCGIWSCAN, &req) == 0)
                return req.u.data.length;
            if (errno != E2BIG)
                break;
            const size_t wanted = req.u.data.length;
            if (version < kGrowingVersion || wanted == 0)
                return -1;
            size = size < wanted ? wanted : 2 * size;
            if (size > kLargestSize)
                return -1;
        }
        budget -= kNextWait;
        wait = kNextWait;
        if (errno != EAGAIN || budget <= 0)
            return -1;
    }
}

int scan_qca(const char *ifname, std::span<vesk_site_survey_record> records)
{
    vesk::unique_fd fd = vesk::open_socket(vesk::kInetDgram);
    iw_range range;
    if (!fd || iw_get_range_info(fd.get(), ifname, &range) < 0 || range.we_version_compiled < kOldestScanVersion)
        return -1;
    int32_t channel;
    memcpy(&channel, records.data(), sizeof channel);
    vesk::wlan::iwreq req;
    if (!vesk::wlan::make_iwreq(req, ifname, &channel, sizeof channel, kScanFlags) || ioctl(fd.get(), SIOCSIWSCAN, &req) < 0)
        return -1;
    vesk::unique_heap buf;
    const long length = fetch_results(fd.get(), ifname, channel, range.we_version_compiled, buf);
    if (length < 0)
        return -1;
    if (length > 0)
        vesk::wlan::read_cells(ifname, static_cast<char *>(buf.get()), size_t(length), range, records);
    return 1;
}

} // namespace

extern "C" int vesk_wlan_get_site_survey_qca(const char *ifname, vesk_site_survey_record *records,
                                             unsigned short max_age)
{
    return vesk::wlan::run_survey(__func__, ifname, records, max_age, scan_qca);
}
