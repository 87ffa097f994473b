/* Prints the networks a radio hears, strongest first:
 *   survey [IFNAME [CHANNEL]]     (ra0 and every channel by default)
 * The records are the driver's layout; text fields need not be
 * terminated, so they are printed with their widths. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vesk.h>

/* Room for either chipset's list (the QCA one is the longer). */
static vesk_site_survey_record records[VESK_SURVEY_RECORDS_QCA];

static int stronger(const void *a, const void *b)
{
    const vesk_site_survey_record *x = a, *y = b;
    return (int)y->rssi - (int)x->rssi;
}

int main(int argc, char **argv)
{
    const char *ifname = argc > 1 ? argv[1] : "ra0";
    uint32_t channel = argc > 2 ? (uint32_t)strtoul(argv[2], NULL, 10) : 0;
    size_t n = 0;

    memset(records, 0, sizeof records);
    memcpy(records, &channel, sizeof channel); /* the channel to survey */
    if (vesk_wlan_get_site_survey(ifname, records, 30) < 0) {
        fprintf(stderr, "survey: no survey of %s\n", ifname);
        return 1;
    }
    while (n < sizeof records / sizeof records[0] && records[n].channel)
        n++;
    qsort(records, n, sizeof records[0], stronger);
    printf("%-17s %3s %4s %5s  %-24s %s\n", "BSSID", "CH", "SIG%", "DBM", "SECURITY", "SSID");
    for (size_t i = 0; i < n; i++) {
        const vesk_site_survey_record *r = &records[i];
        char bssid[18];
        vesk_mac_bin_2_str(bssid, r->bssid);
        printf("%-17s %3u %4u %5d  %-24.*s %.*s\n", bssid, r->channel, r->rssi, (int)r->dbm,
               (int)sizeof r->security, r->security, (int)sizeof r->ssid, r->hidden ? "(hidden)" : r->ssid);
    }
    return 0;
}
