// The Ethernet ports' driver: MII register reads (SIOCGMIIPHY, SIOCGMIIREG
// and the driver's private read 0x89FE) from one register file per PHY
// address, /run/vdev/mii/PHY/regs, which the mii_mgr stand-in writes; and
// the driver's private LAN-state request 0x89FD, which it takes and logs.
// The ports that have this driver are listed in /run/vdev/mii/ports.
#include <errno.h>
#include <net/if.h> // ahead of the kernel's headers, which then leave its names alone
#include <linux/mii.h>
#include <linux/sockios.h>
#include <stdio.h>

#include "model.hpp"

namespace vdev_model {
namespace {

static_assert(sizeof(mii_ioctl_data) == 8);
static_assert(offsetof(mii_ioctl_data, reg_num) == 2 && offsetof(mii_ioctl_data, val_out) == 6);
static_assert(offsetof(ifreq, ifr_ifru) == kNameSize); // the MII record lies in the request itself

constexpr unsigned kNoPhy = 0xFFFF; // what an MDIO bus reads where no PHY answers
constexpr unsigned kStatus = 1, kLinkUp = 0x0004;

unsigned read_register(unsigned phy, unsigned reg)
{
    phy &= 0x1F;
    reg &= 0x1F;
    state_text text;
    if (!read_state(text, "mii/%u/regs", phy))
        return kNoPhy;
    unsigned value = 0;
    each_line(text.view(), [&](std::string_view line) {
        unsigned n, v;
        char copy[64];
        snprintf(copy, sizeof copy, "%.*s", static_cast<int>(line.size()), line.data());
        if (sscanf(copy, "%u %x", &n, &v) == 2 && n == reg)
            value = v & 0xFFFF;
    });
    return value;
}

mii_ioctl_data &mii_record(const request &r) { return *reinterpret_cast<mii_ioctl_data *>(&static_cast<ifreq *>(r.arg)->ifr_ifru); }

} // namespace

bool is_mii_port(const char *ifname, int *fixed_phy)
{
    state_text text;
    bool found = false;
    *fixed_phy = -1;
    if (read_state(text, "mii/ports"))
        each_line(text.view(), [&](std::string_view line) {
            field f;
            if (found || !next_field(line, f) || f.key != ifname)
                return;
            found = true;
            while (next_field(line, f))
                if (f.key == "phy")
                    *fixed_phy = static_cast<int>(number(f));
        });
    return found;
}

answer mii(const request &r)
{
    int fixed_phy;
    if (!is_mii_port(r.ifname, &fixed_phy))
        return kernel(r);
    mii_ioctl_data &mii = mii_record(r);
    bool phy_request = r.number == SIOCGMIIPHY;
    if (int err = opening(r, phy_request ? "miiphy" : "miireg", "phy=%u reg=%u", mii.phy_id, mii.reg_num))
        return -err;
    // A port wired to one PHY names it; the generic MII code then reads on.
    if (phy_request && fixed_phy >= 0)
        mii.phy_id = static_cast<uint16_t>(fixed_phy);
    mii.val_out = static_cast<uint16_t>(read_register(mii.phy_id, mii.reg_num));
    return 0;
}

answer mii_private(const request &r)
{
    auto &req = *static_cast<ifreq *>(r.arg);
    if (r.number == SIOCDEVPRIVATE + 13) {
        int32_t state = 0;
        if (req.ifr_data)
            memcpy(&state, req.ifr_data, sizeof state);
        if (int err = opening(r, "lanstate", "state=%d", static_cast<int>(state)))
            return -err;
        return req.ifr_data ? 0 : -EFAULT;
    }
    mii_ioctl_data &mii = mii_record(r);
    if (int err = opening(r, "mdio", "phy=%u reg=%u", mii.phy_id, mii.reg_num))
        return -err;
    // The driver's own read answers the link state for register 0.
    if ((mii.reg_num & 0x1F) == 0)
        mii.val_out = (read_register(mii.phy_id, kStatus) & kLinkUp) ? 1 : 0;
    else
        mii.val_out = static_cast<uint16_t>(read_register(mii.phy_id, mii.reg_num));
    return 0;
}

} // namespace vdev_model
