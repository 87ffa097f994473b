// PHY status through MII requests: link state and the abilities that the
// link partner and this side advertise.
#include "vesk_mii.h"

#include <errno.h>
#include <linux/mii.h>
#include <linux/sockios.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>

#include "core/ifreq.hpp"
#include "sysapi.h"

// The kernel's MII record in the request's data area.
static_assert(sizeof(mii_ioctl_data) == 8 && offsetof(mii_ioctl_data, phy_id) == 0);
static_assert(offsetof(mii_ioctl_data, reg_num) == 2 && offsetof(mii_ioctl_data, val_in) == 4);
static_assert(offsetof(mii_ioctl_data, val_out) == 6 && sizeof(ifreq::ifr_ifru) >= sizeof(mii_ioctl_data));

namespace {

// The Ethernet driver's private register read.
constexpr unsigned long kPrivateRead = SIOCDEVPRIVATE + 14;
static_assert(kPrivateRead == 0x89FE);

constexpr char kLanPort[] = "eth2";

// The one request, shared by every query; it keeps the last name and PHY
// address between calls.
ifreq mii_ifr;

mii_ioctl_data *mii() { return reinterpret_cast<mii_ioctl_data *>(&mii_ifr.ifr_ifru); }

// The register's 16-bit value, or -1 after a message.
int mdio_read(int skfd, int location, int standard)
{
    mii()->reg_num = static_cast<__u16>(location);
    if (ioctl(skfd, standard ? SIOCGMIIREG : kPrivateRead, &mii_ifr) < 0) {
        fprintf(stderr, "mdio_read(): SIOCGMIIREG on %s failed: %s\n", mii_ifr.ifr_name, strerror(errno));
        return -1;
    }
    return mii()->val_out;
}

enum class opened { ok, no_socket, failed };

// The opening of every query: a socket, the request addressed to the PHY,
// and SIOCGMIIPHY. A driver without it (ENODEV) still answers reads.
opened open_phy(const char *func, vesk::unique_fd &sock, const char *ifname, int phy_id, int location)
{
    sock = vesk::open_socket(vesk::kInetDgram);
    if (!sock) {
        T_PRINTF("%s: socket error!\n", func);
        return opened::no_socket;
    }
    const bool named = vesk::make_ifreq(mii_ifr, ifname);
    mii()->reg_num = static_cast<__u16>(location);
    mii()->phy_id = static_cast<__u16>(phy_id);
    if (named && (ioctl(sock.get(), SIOCGMIIPHY, &mii_ifr) == 0 || errno == ENODEV))
        return opened::ok;
    T_PRINTF("%s: SIOCGMIIPHY on '%s' failed: %s\n", func, ifname, strerror(errno));
    return opened::failed;
}

// Reads the registers in order by the driver's request; false when one
// could not be read.
template <size_t N> bool read_private(int skfd, const int (&regs)[N], int (&values)[N])
{
    for (size_t i = 0; i < N; i++)
        if ((values[i] = mdio_read(skfd, regs[i], 0)) < 0)
            return false;
    return true;
}

constexpr int kStatus = MII_BMSR, kAdvertise = MII_ADVERTISE, kPartner = MII_LPA;
constexpr int kGigControl = MII_CTRL1000, kGigStatus = MII_STAT1000;

int phy_of(const unsigned char *port) { return *port ? 1 : 0; }

// Codes in order of preference: the best common ability wins.
struct preference {
    bool gigabit;
    unsigned int bit;
    unsigned int code;
};
constexpr preference kPreference[] = {
    {true, LPA_1000FULL, VESK_MII_1000_FULL},  {true, LPA_1000HALF, VESK_MII_1000_HALF},
    {false, LPA_100FULL, VESK_MII_100_FULL},   {false, LPA_100HALF, VESK_MII_100_HALF},
    {false, LPA_10FULL, VESK_MII_10_FULL},     {false, LPA_10HALF, VESK_MII_10_HALF},
};

// The partner's bits of register 5 in the order they are tested, with what
// each adds and the duplex it leaves.
struct partner_bit {
    unsigned int bits;
    unsigned int ability;
    unsigned int full_duplex;
};
constexpr partner_bit kPartnerBits[] = {
    {LPA_100FULL | LPA_100BASE4, 2, 1}, {LPA_10FULL, 1, 1}, {LPA_100HALF, 0x10, 0},
    {LPA_10HALF, 8, 0},                 {LPA_PAUSE_CAP, 4, 0}, {LPA_PAUSE_ASYM, 0x20, 1},
};

} // namespace

extern "C" {

int vesk_mii_check_link_ex(const char *ifname, int *link, int standard, int phy_id)
{
    if (!ifname || !link)
        return 0;
    vesk::unique_fd sock;
    switch (open_phy(__func__, sock, ifname, phy_id, kStatus)) {
    case opened::no_socket:
        return 0;
    case opened::failed:
        *link = 0;
        return 0;
    case opened::ok:
        break;
    }
    const int value = standard ? mdio_read(sock.get(), kStatus, 1) : mdio_read(sock.get(), MII_BMCR, 0);
    // A failed read is no link, not a value of all ones.
    *link = value < 0 ? 0 : standard ? (value & BMSR_LSTATUS) != 0 : value;
    return value >= 0;
}

int vesk_mii_check_link(const unsigned char *port, int *link, int standard)
{
    return port && link ? vesk_mii_check_link_ex(kLanPort, link, standard, phy_of(port)) : 0;
}

int vesk_mii_get_link_partner_speed_ex(const char *ifname, unsigned int *speed, int phy_id)
{
    if (!speed)
        return 0;
    *speed = 0;
    vesk::unique_fd sock;
    int r[4];
    if (!ifname || open_phy(__func__, sock, ifname, phy_id, kPartner) != opened::ok ||
        !read_private(sock.get(), {kPartner, kAdvertise, kGigStatus, kGigControl}, r))
        return 0;
    // Register 9's own bits shifted onto register 10's partner bits.
    const unsigned int common = static_cast<unsigned int>(r[0] & r[1]);
    const unsigned int gigabit = static_cast<unsigned int>((r[3] << 2) & r[2]);
    for (const preference &p : kPreference) {
        if ((p.gigabit ? gigabit : common) & p.bit) {
            *speed = p.code;
            break;
        }
    }
    return 1;
}

int vesk_mii_get_link_partner_speed(const unsigned char *port, unsigned int *speed)
{
    if (!port || !speed)
        return 0;
    const int result = vesk_mii_get_link_partner_speed_ex(kLanPort, speed, phy_of(port));
    constexpr struct { unsigned int codes, speed_class; } kClasses[] = {
        {VESK_MII_1000_FULL | VESK_MII_1000_HALF, VESK_MII_1000_FULL},
        {VESK_MII_100_FULL | VESK_MII_100_HALF, VESK_MII_100_FULL},
        {VESK_MII_10_FULL | VESK_MII_10_HALF, VESK_MII_10_FULL},
    };
    unsigned int reduced = 0;
    for (const auto &c : kClasses)
        if (*speed & c.codes)
            reduced = c.speed_class;
    *speed = reduced;
    return result;
}

int vesk_mii_get_link_partner_info(const char *ifname, unsigned int *abilities, unsigned int *full_duplex, int phy_id)
{
    if (!abilities || !full_duplex)
        return 0;
    *abilities = 0;
    vesk::unique_fd sock;
    int r[1];
    if (!ifname || open_phy(__func__, sock, ifname, phy_id, kPartner) != opened::ok ||
        !read_private(sock.get(), {kPartner}, r))
        return 0;
    for (const partner_bit &b : kPartnerBits) {
        if (static_cast<unsigned int>(r[0]) & b.bits) {
            *abilities |= b.ability;
            *full_duplex = b.full_duplex;
        }
    }
    return 1;
}

} // extern "C"
