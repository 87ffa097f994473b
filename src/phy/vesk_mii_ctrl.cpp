// PHY and GMAC settings through the device's tools: a register is read by
// running mii_mgr (or reg) and scanning what it prints, its bits are
// changed, and it is written back.
#include "vesk_mii.h"

#include <linux/mii.h>
#include <stdio.h>

#include <optional>
#include <span>

#include "core/command.hpp"
#include "sysapi.h"

namespace {

namespace cmd = vesk::cmd;

constexpr size_t kCapture = 80;
constexpr size_t kMdiCapture = 128;

constexpr int kReadFailed = -1;

// The value that a read printed, or nothing after "Error in".
std::optional<unsigned int> scanned(const char *func, const char *out, const char *format)
{
    unsigned int value;
    if (sscanf(out, format, &value) == 1)
        return value;
    T_PRINTF("Error in %s\n", func);
    return std::nullopt;
}

// mii_mgr prints "Get: phy[P].reg[R] = VALUE".
constexpr char kMiiValue[] = "%*s %*s = %x";

// A PHY register, or -1; a read that could not run is no value either.
int read_register(const char *func, int port, int reg)
{
    char out[kCapture] = {};
    if (reg == MII_BMCR)
        cmd::capture(func, std::span(out), "mii_mgr -g -p %d -r 0 ", port);
    else if (reg == MII_ADVERTISE)
        cmd::capture(func, std::span(out), "mii_mgr -g -p %d -r 4 ", port);
    else
        cmd::capture(func, std::span(out), "mii_mgr -g -p %d -r 9 ", port);
    const std::optional<unsigned int> value = scanned(func, out, kMiiValue);
    return value ? static_cast<int>(*value & 0xFFFF) : kReadFailed;
}

void write_register(const char *func, int port, int reg, int value)
{
    const unsigned int v = static_cast<unsigned int>(value);
    if (reg == MII_BMCR)
        cmd::run(func, "/sbin/mii_mgr -s -p %d -r 0 -v %x", port, v);
    else if (reg == MII_ADVERTISE)
        cmd::run(func, "/sbin/mii_mgr -s -p %d -r 4 -v %x", port, v);
    else
        cmd::run(func, "/sbin/mii_mgr -s -p %d -r 9 -v %x", port, v);
}

// What each speed mode advertises, and what it sets in the GMAC's word.
struct speed_mode {
    int advertise;
    int gig_control;
    unsigned int gmac_set;
    unsigned int gmac_clear;
};
constexpr unsigned int kGmacForce = 0x8000;
constexpr speed_mode kSpeedModes[] = {
    {ADVERTISE_ALL, ADVERTISE_1000FULL, 0x20000000, kGmacForce},
    {ADVERTISE_10HALF, 0, 0, 0},
    {ADVERTISE_10FULL, 0, 0x1000, 0},
    {ADVERTISE_100HALF, 0, 0x2000, 0},
    {ADVERTISE_100FULL, 0, 0x3000, 0},
    {0, ADVERTISE_1000FULL, 0x5000, 0},
};
constexpr unsigned int kSpeedModeCount = sizeof kSpeedModes / sizeof kSpeedModes[0];
static_assert(ADVERTISE_ALL == 0x01E0);

bool wrong_speed(const char *func, unsigned int mode)
{
    if (mode < kSpeedModeCount)
        return false;
    T_PRINTF("Wrong speed input (%d) in function %s!\n", static_cast<int>(mode), func);
    return true;
}

constexpr int kPauseBits = ADVERTISE_PAUSE_CAP | ADVERTISE_PAUSE_ASYM;
static_assert(kPauseBits == 0x0C00);

// The GMAC's word and its base for the reg tool.
constexpr unsigned int kGmacMask = 0xDFFF0DFF;
int gmac_offset(int port) { return port == 2 ? 0x18 : 0x4; }

// MDI mode bits of register 0x145 of MMD device 0x1E.
constexpr int kMdiBits = 0x18;
constexpr unsigned int kMdiModes[] = {0, 0x10, 0x18};

} // namespace

extern "C" {

int vesk_mii_set_led(void) { return 0; }

int vesk_mii_set_phy_ability(void) { return 1; }

int vesk_mii_set_power(int port, int on)
{
    int control = read_register(__func__, port, MII_BMCR);
    if (control < 0)
        return kReadFailed;
    control = on ? control & ~BMCR_PDOWN : control | BMCR_PDOWN;
    write_register(__func__, port, MII_BMCR, control);
    return 0;
}

int vesk_mii_set_flow_control(int enable, int port)
{
    int advertise = read_register(__func__, port, MII_ADVERTISE);
    if (advertise < 0)
        return kReadFailed;
    advertise = enable ? advertise | kPauseBits : advertise & ~kPauseBits;
    write_register(__func__, port, MII_ADVERTISE, advertise);
    return 0;
}

int vesk_mii_set_port_link_speed(unsigned int mode, int port)
{
    int regs[3] = {MII_BMCR, MII_ADVERTISE, MII_CTRL1000}, values[3];
    for (int i = 0; i < 3; i++)
        if ((values[i] = read_register(__func__, port, regs[i])) < 0)
            return kReadFailed;
    if (wrong_speed(__func__, mode))
        return 0;
    // Only what is advertised changes: autonegotiation stays on and restarts.
    values[0] |= BMCR_ANENABLE | BMCR_ANRESTART;
    values[1] = (values[1] & ~ADVERTISE_ALL) | kSpeedModes[mode].advertise;
    values[2] = (values[2] & ~ADVERTISE_1000FULL) | kSpeedModes[mode].gig_control;
    for (int i : {1, 2, 0})
        write_register(__func__, port, regs[i], values[i]);
    return 0;
}

int vesk_mii_set_gmac_link_speed(unsigned int mode, int port)
{
    const int offset = gmac_offset(port);
    char out[kCapture] = {};
    cmd::run(__func__, "reg s b0100000");
    cmd::capture(__func__, std::span(out), "reg p 0x%x", offset);
    const std::optional<unsigned int> read = scanned(__func__, out, "0x%x");
    if (!read)
        return kReadFailed;
    if (wrong_speed(__func__, mode))
        return 0;
    unsigned int word = (*read & kGmacMask) | kGmacForce;
    word = (word | kSpeedModes[mode].gmac_set) & ~kSpeedModes[mode].gmac_clear;
    cmd::run(__func__, "reg w 0x%x 0x%x", offset, word);
    return 0;
}

int vesk_mii_set_port_mdi_mode(int mode, int port)
{
    cmd::run(__func__, "mii_mgr -s -p %d -r 13 -v 1e", port);
    cmd::run(__func__, "mii_mgr -s -p %d -r 14 -v 145", port);
    cmd::run(__func__, "mii_mgr -s -p %d -r 13 -v 401e", port);
    char out[kMdiCapture] = {};
    cmd::capture(__func__, std::span(out), "mii_mgr -g -p %d -r 14", port);
    const std::optional<unsigned int> read = scanned(__func__, out, kMiiValue);
    if (!read)
        return kReadFailed;
    unsigned int value = *read & ~static_cast<unsigned int>(kMdiBits);
    if (mode >= 0 && mode < 3)
        value |= kMdiModes[mode];
    else
        T_PRINTF("Error mode[%d] in %s\n", mode, __func__);
    cmd::run(__func__, "mii_mgr -s -p %d -r 14 -v %x", port, value);
    return 0;
}

int vesk_mii_set_802_3_az_mode(int mode, int port)
{
    // EEE advertisement (MMD 7, register 0x3C), then register 0x805D of
    // MMD 3, each by the indirect sequence through registers 13 and 14.
    constexpr int kCtrl = MII_MMD_CTRL, kData = MII_MMD_DATA;
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x7", port, kCtrl);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x3c", port, kData);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x4007", port, kCtrl);
    if (mode == 1)
        cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x6", port, kData);
    else
        cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0", port, kData);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x3", port, kCtrl);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x805d", port, kData);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0x4003", port, kCtrl);
    cmd::run(__func__, "mii_mgr -s -p %d -r %d -v 0", port, kData);
    return 0;
}

} // extern "C"
