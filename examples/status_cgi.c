/* A CGI status page: the web server runs it with the request in its
 * environment and sends what it prints. The library's text answers come
 * from static buffers, so each is copied (or printed) before the next call
 * of the same function. */
#include <stdio.h>
#include <string.h>
#include <vesk.h>

/* The library's placeholders mean "no answer": show them as such. */
static const char *shown(const char *text)
{
    if (!text || !*text || !strcmp(text, "---") || !strcmp(text, "0.0.0.0") || !strcmp(text, "unknown"))
        return "not available";
    return text;
}

static void row(const char *name, const char *value)
{
    /* The values are the device's own (addresses, versions): no markup. */
    printf("<tr><th>%s</th><td>%s</td></tr>\n", name, shown(value));
}

int main(void)
{
    const char *lan = "br0";
    unsigned char mac[6];
    char mac_text[18] = "";
    char ip[16], uptime[64];

    if (vesk_if_get_hw_addr(lan, mac))
        vesk_mac_bin_2_str(mac_text, mac);
    snprintf(ip, sizeof ip, "%s", vesk_if_get_ip(lan));
    snprintf(uptime, sizeof uptime, "%s", vesk_transfer_time_format(vesk_get_x_time(), 0));

    printf("Content-Type: text/html; charset=utf-8\r\n\r\n");
    printf("<!DOCTYPE html>\n<html><head><title>%s status</title></head><body>\n<table>\n",
           shown(vesk_product_get_model_name()));
    row("Firmware", vesk_product_get_fw_version());
    row("LAN address", ip);
    row("LAN netmask", vesk_if_get_mask(lan));
    row("LAN MAC", mac_text);
    row("Gateway", vesk_if_get_default_gateway());
    row("Uptime", uptime);
    printf("</table>\n</body></html>\n");
    return 0;
}
