// A web page's product getters: thirty of them, on a board whose hardware
// ID matches no row (each getter asks board_config) and then on the
// product's own board (the row is chosen once; the getters run nothing).
// Runs inside the emulated device.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include "vesk_product.h"

namespace {

constexpr const char *(*kPage[])(void) = {
    vesk_product_get_vendor_name,           vesk_product_get_vendor_mode,
    vesk_product_get_model_name,            vesk_product_get_domain_name,
    vesk_product_get_web_title_name,        vesk_product_get_web_copy_right,
    vesk_product_get_web_hyper_link,        vesk_product_get_vendor_logo,
    vesk_product_get_title_logo,            vesk_product_get_banner_logo,
    vesk_product_get_menu_title_font_color, vesk_product_get_submenu_font_color,
    vesk_product_get_submenu_hover_color,   vesk_product_get_submenu_select_color,
    vesk_product_get_submenu_bg_color,      vesk_product_get_menu_bg_color,
    vesk_product_get_html_bg_color,         vesk_product_get_top_font_color,
    vesk_product_get_top_hover_color,       vesk_product_get_topmenu_font_color,
    vesk_product_get_topmenu_hover_color,   vesk_product_get_topmenu_select_color,
    vesk_product_get_frame_title_font_color, vesk_product_get_description_font_color,
    vesk_product_get_heading_font_color,    vesk_product_get_label_font_color,
    vesk_product_get_label_bg_color,        vesk_product_get_content_font_color,
    vesk_product_get_content_bg_color,      vesk_product_get_footer_font_color,
};
static_assert(std::size(kPage) == 30);

void page(benchmark::State &state, const char *hw_id)
{
    char line[64];
    snprintf(line, sizeof line, "board_config set hw_id %s", hw_id);
    if (system(line) != 0) {
        state.SkipWithError("board_config set failed");
        return;
    }
    for (auto _ : state)
        for (auto get : kPage)
            benchmark::DoNotOptimize(get());
    state.SetItemsProcessed(state.iterations() * std::size(kPage));
}

// Registered in this order: once the row is chosen, it stays for the process.
void BM_ProductPageNoRow(benchmark::State &state) { page(state, "00000001"); }
void BM_ProductPageChosenRow(benchmark::State &state) { page(state, "010E0012"); }

} // namespace

BENCHMARK(BM_ProductPageNoRow)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ProductPageChosenRow)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
