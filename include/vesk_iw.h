/* Wireless Extensions as the QCA driver speaks them: its range data and the
 * packed event stream of its scan results.
 *
 * The structures carry the kernel's names and layouts, declared here rather
 * than taken from <linux/wireless.h>: the device's iw_range is 588 bytes (the
 * kernel header's is 568), and <linux/wireless.h> drags in <linux/if.h>, which
 * clashes with <net/if.h>. Use this header instead of the kernel's, not beside
 * it. iw_point (and so iw_event) follows the program's pointer size, as in the
 * kernel. */
#ifndef VESK_IW_H
#define VESK_IW_H

#include <stdint.h>
#include <sys/socket.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Requests and events that the library issues or reads. */
#define SIOCGIWFREQ 0x8B05
#define SIOCGIWMODE 0x8B07
#define SIOCGIWRANGE 0x8B0B
#define SIOCGIWAP 0x8B15
#define SIOCSIWSCAN 0x8B18
#define SIOCGIWSCAN 0x8B19
#define SIOCGIWESSID 0x8B1B
#define SIOCGIWENCODE 0x8B2B
#define SIOCIWFIRSTPRIV 0x8BE0 /* a driver's first private request */
#define IWEVQUAL 0x8C01
#define IWEVGENIE 0x8C05
/* The QCA driver's PHY mode of a scanned cell, carried in a param. */
#define IWEV_PHY_MODE 0x8C0A

#define IW_MODE_ADHOC 1
#define IW_ENCODE_DISABLED 0x8000
#define IW_MAX_FREQUENCIES 32

struct iw_param {
    int32_t value;
    uint8_t fixed;
    uint8_t disabled;
    uint16_t flags;
};

struct iw_point {
    void *pointer;
    uint16_t length;
    uint16_t flags;
};

struct iw_freq {
    int32_t m;
    int16_t e;
    uint8_t i;
    uint8_t flags;
};

struct iw_quality {
    uint8_t qual;
    uint8_t level;
    uint8_t noise;
    uint8_t updated;
};

union iwreq_data {
    char name[16];
    struct iw_point essid;
    struct iw_param nwid;
    struct iw_freq freq;
    struct iw_param sens;
    struct iw_param bitrate;
    struct iw_param txpower;
    struct iw_param rts;
    struct iw_param frag;
    uint32_t mode;
    struct iw_param retry;
    struct iw_point encoding;
    struct iw_param power;
    struct iw_quality qual;
    struct sockaddr ap_addr;
    struct sockaddr addr;
    struct iw_param param;
    struct iw_point data;
};

/* One event as the reader hands it out: the union at its natural alignment. */
struct iw_event {
    uint16_t len;
    uint16_t cmd;
    union iwreq_data u;
};

/* The range data in the device's 588-byte layout. */
struct iw_range {
    uint32_t throughput;
    uint32_t min_nwid;
    uint32_t max_nwid;
    uint16_t old_num_channels;
    uint8_t old_num_frequency;
    uint8_t scan_capa;
    uint32_t event_capa[6];
    int32_t sensitivity;
    struct iw_quality max_qual;
    struct iw_quality avg_qual;
    uint8_t num_bitrates;
    int32_t bitrate[32];
    int32_t min_rts;
    int32_t max_rts;
    int32_t min_frag;
    int32_t max_frag;
    int32_t min_pmp;
    int32_t max_pmp;
    int32_t min_pmt;
    int32_t max_pmt;
    uint16_t pmp_flags;
    uint16_t pmt_flags;
    uint16_t pm_capa;
    uint16_t encoding_size[8];
    uint8_t num_encoding_sizes;
    uint8_t max_encoding_tokens;
    uint8_t encoding_login_index;
    uint16_t txpower_capa;
    uint8_t num_txpower;
    int32_t txpower[8];
    uint8_t we_version_compiled;
    uint8_t we_version_source;
    uint16_t retry_capa;
    uint16_t retry_flags;
    uint16_t r_time_flags;
    int32_t min_retry;
    int32_t max_retry;
    int32_t min_r_time;
    int32_t max_r_time;
    uint16_t num_channels;
    uint8_t num_frequency;
    struct iw_freq freq[IW_MAX_FREQUENCIES];
    uint32_t enc_capa;
    uint8_t device_private[20]; /* the device driver's own, not read */
};

typedef struct iw_param iw_param;
typedef struct iw_point iw_point;
typedef struct iw_freq iw_freq;
typedef struct iw_quality iw_quality;
typedef struct iw_event iw_event;
typedef struct iw_range iw_range;

/* A reader over one stream of events. */
typedef struct vesk_iw_stream {
    char *end;     /* one past the last byte */
    char *current; /* the event being read */
    char *value;   /* next value inside the current event, or null */
} vesk_iw_stream;

/* Reads the driver's range data of ifname through skfd into range, moving
 * the fields of drivers older than version 16 to their present places; a
 * driver that answers fewer than 300 bytes reads as version 9. 0, or -1 when
 * the request failed. Prints nothing. */
VESK_API int iw_get_range_info(int skfd, const char *ifname, iw_range *range);

/* Starts stream on the len bytes at data. */
VESK_API void iw_init_event_stream(vesk_iw_stream *stream, char *data, int len);

/* Reads the next event of stream into iwe, for a driver of extension version
 * we_version (19 and up: no pointer field in the stream). 1 an event is in
 * iwe (test u.data.pointer before reading a variable payload: it is null when
 * the payload fails its checks); 2 an unknown event was passed over (only len
 * and cmd are set); 0 the stream has ended; -1 an invalid event; -2 an event
 * cut off by the stream's end, already passed over. */
VESK_API int iw_extract_event_stream(vesk_iw_stream *stream, iw_event *iwe, int we_version);

/* The frequency m * 10^e; an exponent of 0 or less gives m. */
VESK_API double iw_freq2float(const iw_freq *in);

/* The channel (the i field) of the first of range's frequencies that equals
 * freq exactly, or 0 when none does. */
VESK_API int iw_freq_to_channel(double freq, const iw_range *range);

/* Writes the six bytes at mac as "%02X:%02X:%02X:%02X:%02X:%02X" into buf
 * (18 bytes); the length written. */
VESK_API int iw_ether_ntop(const unsigned char *mac, char *buf);

VESK_END_DECLS

#endif
