/* The two radios behind one face. Radio index 0 is the Ralink radio (main
 * interface "ra0", SSID i on "ra<i>"), radio index 1 the QCA radio ("ath0",
 * "ath<i>"); "wds<n>" links count as QCA. Store keys take the radio number,
 * which is the index plus 1. The interface name alone picks the family: names
 * beginning with "ra" go to the Ralink functions, "ath" and "wds" to the QCA
 * ones; anything else is refused by the dispatchers.
 *
 * The records below are what the drivers fill and the store holds: their
 * sizes and offsets are fixed, multi-byte fields in the device's
 * little-endian order. */
#ifndef VESK_WLAN_H
#define VESK_WLAN_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* ---- Records ------------------------------------------------------------- */

/* One neighbouring network: 100 bytes, as the Ralink driver writes it. */
typedef struct vesk_site_survey_record {
    unsigned char bssid[6];   /* 0: the access point's MAC */
    unsigned char channel;    /* 6: 0 ends a list */
    char ssid[33];            /* 7 */
    char security[32];        /* 40: "NONE", "WEP", "WPA2PSK/AES", ... */
    unsigned char rssi;       /* 72: signal in percent */
    char wireless_type[8];    /* 73: "11b/g/n", "11a", "11ac", ... */
    char ex_channel[11];      /* 81: "ABOVE", "BELOW", "NONE" or "unknow" */
    int32_t dbm;              /* 92 */
    unsigned char hidden;     /* 96: 1 when the network hides its SSID */
    unsigned char reserved[3];
} vesk_site_survey_record;

/* Records in a survey buffer: 64 on a Ralink interface, 256 on a QCA one. */
#define VESK_SURVEY_RECORDS_RALINK 64
#define VESK_SURVEY_RECORDS_QCA 256

/* One associated station: 40 bytes. */
typedef struct vesk_sta_record {
    unsigned char index;       /* 0: number of the SSID interface */
    unsigned char mac[6];      /* 1 */
    unsigned char reserved1;
    uint32_t counters[4];      /* 8: as the driver gives them */
    unsigned char reserved2[3];
    unsigned char percent;     /* 27: signal in percent */
    uint32_t stat_value;       /* 28 */
    int32_t rank_value;        /* 32 */
    signed char rssi;          /* 36: the driver's raw signal byte */
    unsigned char reserved3[3];
} vesk_sta_record;

#define VESK_STA_RECORDS 51

/* The stations of one interface: 2048 bytes, owned by the caller. */
typedef struct vesk_sta_table {
    unsigned char count;       /* records that follow, at most 51 */
    unsigned char reserved[7];
    vesk_sta_record records[VESK_STA_RECORDS];
} vesk_sta_table;

/* The channels an interface occupies. */
typedef struct vesk_wlan_ch_info {
    uint32_t primary_channel;
    uint32_t channels[3];
} vesk_wlan_ch_info;

/* What iwconfig says of an interface. */
typedef struct vesk_wlan_info {
    int linkQuality;
    int signalLevel;
    int noiseLevel;
    int isLevelinDbm;
    int bitRate;
    char Mac[20];
    int channel;
    int frequency;
} vesk_wlan_info;

/* Store record "wlif_info": the radio schedule's state, 34 bytes with no
 * padding. Its 32-bit masks lie at unaligned offsets and are kept as bytes,
 * little-endian. */
typedef struct vesk_wlif_info {
    uint8_t radio_down[2];      /* 0: 1 when the schedule turned the radio off */
    uint8_t down_mask[2][4];    /* 2: bit i: SSID i is to be down now */
    uint8_t slot_mask[2][3][4]; /* 10: stored masks per radio */
} vesk_wlif_info;

/* Store record "wl%dbasic" (radio number): 11 bytes. */
typedef struct vesk_wl_basic {
    uint8_t enable;     /* non-zero when the radio is enabled */
    uint8_t ssid_count; /* SSIDs of the radio */
    uint8_t rest[9];
} vesk_wl_basic;

/* Store record "wl%dwds_basic_%d" (radio and peer number): 9 bytes. */
typedef struct vesk_wds_basic {
    uint8_t enable; /* non-zero when the peer is configured */
    uint8_t rest[8];
} vesk_wds_basic;

/* ---- One face over both families ----------------------------------------- */

typedef struct vesk_wlan_ops {
    int (*get_client_num)(const char *ifname);
    int (*get_ch_info)(const char *ifname, vesk_wlan_ch_info *info);
    int (*get_site_survey)(const char *ifname, vesk_site_survey_record *records, unsigned short max_age);
    int (*get_sta_info)(const char *ifname, vesk_sta_table *table);
} vesk_wlan_ops;

VESK_API extern const vesk_wlan_ops vesk_qca_ops;
VESK_API extern const vesk_wlan_ops vesk_ralink_ops;

/* The dispatchers: each calls its slot of the family's record with the same
 * arguments and returns what the slot returned. An interface of no known
 * family prints "Unknown platform IF:[...]" and "<function>,error!!!attach
 * fail" and gives 0, leaving info, records and table untouched. */
VESK_API int vesk_get_wlan_client_num(const char *ifname);
VESK_API int vesk_get_wlan_ch_info(const char *ifname, vesk_wlan_ch_info *info);
VESK_API int vesk_wlan_get_site_survey(const char *ifname, vesk_site_survey_record *records, unsigned short max_age);
VESK_API int vesk_wlan_get_sta_info(const char *ifname, vesk_sta_table *table);

/* The board's radio layout for the SNMP index: always 4. */
VESK_API int vesk_wlan_get_board_dual_mode(int ignored);

/* ---- Site survey --------------------------------------------------------- */

/* Surveys the channel in the first 32-bit word of records (0: every
 * channel), which the caller zeroed otherwise and sized for the family (64
 * or 256 records). A single channel is answered from /tmp/survey/ch_<n>.txt
 * while that file is at most max_age seconds old (uptime); otherwise the
 * driver scans and the channel's records replace the file, hidden networks
 * with an empty SSID (in records too). A list ends at a record of channel 0.
 * Returns 1 after a scan, 0 when the records came from the file, -1 when the
 * scan failed (with a message; the file stays as it was). */
VESK_API int vesk_wlan_get_site_survey_ralink(const char *ifname, vesk_site_survey_record *records,
                                              unsigned short max_age);
VESK_API int vesk_wlan_get_site_survey_qca(const char *ifname, vesk_site_survey_record *records,
                                           unsigned short max_age);

/* ---- Stations ------------------------------------------------------------ */

/* Percent (1 to 100) of a QCA driver's signed signal byte. */
VESK_API int get_qca_percent(char rssi);

/* The Ralink driver's station table of ifname into table (2048 bytes); its
 * count is kept to the 51 records a table holds. need_clear does not change
 * the request. Returns 1, or -1 with a message when the request failed. */
VESK_API int _vesk_wlan_get_ralink_sta_info(const char *ifname, vesk_sta_table *table, int need_clear);
VESK_API int vesk_wlan_get_ralink_sta_info(const char *ifname, vesk_sta_table *table);
VESK_API int vesk_wlan_get_ralink_sta_info_need_clear(const char *ifname, vesk_sta_table *table);

/* The QCA driver's station list of ifname (need_clear goes to the driver)
 * into records 0, 1, ... of table, each with the number of "ath<n>" as its
 * index (0 for other names). Adds the stations to count, which the caller
 * zeroes first; at most 51 are kept. Returns 1 when at least one station was
 * listed, -1 for an empty list (table untouched) or a failed request (with a
 * message). */
VESK_API int _vesk_wlan_get_qca_sta_info(const char *ifname, vesk_sta_table *table, int need_clear);
VESK_API int vesk_wlan_get_qca_sta_info(const char *ifname, vesk_sta_table *table);
VESK_API int vesk_wlan_get_qca_sta_info_need_clear(const char *ifname, vesk_sta_table *table);

/* The number behind "keyword = " in what "iwpriv IFNAME stat" prints, or -1
 * when the interface is missing, the tool cannot run or no such line reads
 * (then with the message "Error in vesk_get_rt_wifi_stat"). */
VESK_API int vesk_get_rt_wifi_stat(const char *ifname, const char *keyword);

/* The Ralink driver's WDS peer table of ifname into table (2048 bytes, not
 * read here). Returns 1, or -1 with a message when the request failed. */
VESK_API int vesk_wlan_get_wds_info(const char *ifname, void *table);

/* Configured WDS peers (1 to 4) of the radio number: 0 to 4. */
VESK_API int vesk_wlan_get_wds_num(unsigned char radio);

/* Radio index (0 or 1) on which the station with the 6-byte mac sits; on
 * both, the one with the smaller rank value (radio 0 when equal); -1 on
 * neither or for a null mac. */
VESK_API int vesk_get_radio_idx_by_mac(const unsigned char *mac);

/* ---- Channels and RF ----------------------------------------------------- */

/* The channels of ifname from "wlanconfig IFNAME list active": words the
 * tool does not give repeat the primary channel. Always 1; all zero when the
 * tool gives nothing. */
VESK_API int vesk_get_wlan_ch_info_qca(const char *ifname, vesk_wlan_ch_info *info);

/* The channels of ifname from the driver's statistics: the primary channel,
 * then the secondary (40 MHz) or the other three of the 80 MHz block, the
 * rest 0. Returns 1, or 0 with a message when the statistics do not tell. */
VESK_API int vesk_get_wlan_ch_info_ralink(const char *ifname, vesk_wlan_ch_info *info);

/* 1 when channel is valid in b/g/n region 0 to 7, else 0. */
VESK_API int vesk_check_bgn_valid_channel(unsigned int region, unsigned int channel);

/* The little-endian 16-bit word at offset (0 to 254) of the flash partition
 * called partition; 0 when the partition reads empty, -1 when it cannot be
 * opened or read that far, or for an offset out of range. */
VESK_API int vesk_get_rf_info_from_flash(int offset, const char *partition);

/* ---- WPS and keys -------------------------------------------------------- */

/* The Ralink driver's WPS status word of ifname; 0 when the request failed
 * (with a message). */
VESK_API int vesk_get_wps_status(const char *ifname);

/* The Ralink driver's WPS profile of ifname into profile (968 bytes).
 * Returns 0, or -1 with a message when the request failed. */
VESK_API int vesk_get_wps_profile(const char *ifname, void *profile);

/* The WPS check digit (0 to 9) of a seven-digit PIN body. */
VESK_API int vesk_compute_pin_checksum(unsigned int body);

/* The PIN of the last three bytes of the 6-byte mac (0 for a null mac). */
VESK_API unsigned int veesk_wlan_gen_wps_pincode_by_mac(const unsigned char *mac);

/* The PIN of the board's MAC ("board_config get ethaddr"), or of
 * 00:1C:2D:3E:4F:50 when the tool fails. */
VESK_API unsigned int vesk_wlan_gen_pincode_by_lan_mac(void);

/* A random eight-digit PIN (rand() freshly seeded from /dev/urandom). */
VESK_API unsigned int vesk_wlan_gen_pincode_by_random_num(void);

/* Writes len random characters from "0"-"9" and "A"-"F" into key, with no
 * terminator. Always 1. */
VESK_API int vesk_gen_random_hex_key(char *key, int len);

/* ---- Radio and SSID schedule --------------------------------------------- */
/* radio is the radio index (0 or 1) unless said otherwise; the state lives in
 * the store record "wlif_info". A radio above 1 or a slot above 2 is refused
 * with a message and changes nothing. */

/* Stores ssid_mask in the radio's slot and makes slot 1's mask the mask in
 * force when "scheduleS_en" or "scheduleS_5g_en" is on (else none). Returns
 * the mask in force. */
VESK_API unsigned int vesk_find_SSID_will_be_down(unsigned char radio, int slot, unsigned int ssid_mask);

/* Forgets the radio's schedule state. Returns what the store returned. */
VESK_API int reset_SSID_onoff_status(unsigned char radio);

/* What the schedule asks of the radio: 1 turn it off, 2 it is off and stays
 * off, 3 turn it on with its SSIDs, 0 nothing (also when the radio's mode,
 * or a configured WDS peer in mode 4, keeps the schedule away). */
VESK_API int vesk_SSID_get_onoff_status(unsigned char radio);

/* Does what vesk_SSID_get_onoff_status asks, for the first ssid_count SSIDs
 * (at most 32), through iwpriv and ifconfig. Returns 1 when there was a
 * decision, 0 when nothing was to be done. */
VESK_API int vesk_check_Radio_onoff(unsigned char radio, int ssid_count);

/* The operation of the radio number (0 counts as 1): 0 disabled or unknown
 * mode, 1 access point (mode 0), 2 mode 3, 3 mode 4. */
VESK_API int vesk_wlan_handle_ap_wds_mode(unsigned char radio);

/* ---- QCA scan: security words ------------------------------------------ */

/* Ciphers that one WPA or RSN element announced: 0 WEP, 1 none (or not yet
 * set), 4 TKIP, 6 CCMP, 8 TKIP and CCMP, 10/11 WEP-40/104 as group cipher. */
typedef struct vesk_cipher_set {
    uint32_t pair_cipher;     /* highest pairwise cipher seen */
    uint32_t pair_cipher_aux; /* the other one; 1 when there is just one */
    uint32_t group_cipher;
} vesk_cipher_set;

/* The security state of a scanned cell. Authentication values: 0 OPEN,
 * 1 SHARED, 2 AUTOWEP, 3 WPA, 4 WPAPSK, 5 WPANONE, 6 WPA2, 7 WPA2PSK,
 * 8 WPA1WPA2, 9 WPA1PSKWPA2PSK. */
typedef struct vesk_wlan_security {
    uint8_t infrastructure; /* 0 for an ad hoc cell */
    uint8_t privacy;        /* 1 when the driver reports encryption on */
    uint32_t auth_mode_aux; /* second authentication value, 0 for none */
    uint32_t auth_mode;     /* first authentication value, 0 for none */
    uint32_t cipher;        /* cipher of a cell without WPA or RSN */
    vesk_cipher_set wpa;
    vesk_cipher_set rsn;
} vesk_wlan_security;

/* Resets sec for a new cell: no authentication, cipher 1 (none) without
 * privacy and 0 (WEP) with it, every cipher of both sets 1. infrastructure
 * and privacy stay. */
VESK_API void init_security(vesk_wlan_security *sec);

/* The word of a cipher value ("WEP", "NONE", "TKIP", "AES", "TKIPAES" or
 * "UNKNOW") and of an authentication value ("OPEN" .. "WPA1PSKWPA2PSK",
 * "UNKNOW"); constant texts. */
VESK_API const char *ieee80211_get_enc_type(unsigned char value);
VESK_API const char *ieee80211_get_auth_mode(unsigned char value);

/* Writes the security text of sec into dst (at most 22 characters and the
 * terminator): "NONE", "WEP", or authentication "/" cipher, such as
 * "WPA2PSK/AES" or "WPA1PSKWPA2PSK/TKIPAES". */
VESK_API void get_security_str(char *dst, const vesk_wlan_security *sec);

/* ---- Wireless interface information --------------------------------------- */

/* Runs "iwconfig IFNAME>/tmp/iwconfig_result.txt" and reads the tool's text
 * (both its "=" and ":" forms) into info: link quality, levels, bit rate,
 * access point, channel, frequency in MHz. Only fields the text names are
 * written, so zero info first; isLevelinDbm is always set. 1 when the file
 * could be read, 0 when it could not or ifname is null (with a message). */
VESK_API int vesk_get_wlan_interface_info(const char *ifname, vesk_wlan_info *info);

/* Prints info to standard output, a field a line; nothing for null. */
VESK_API void vesk_dump_wlan_info(const vesk_wlan_info *info);

/* Copies key into escaped (twice key's length plus 1) with a backslash before
 * each of " \ ' ` & ( ) < > | ; and the space; null or empty key gives "". */
VESK_API void vesk_check_wep_key_using_iwconfig(const char *key, char *escaped);

VESK_END_DECLS

#endif
