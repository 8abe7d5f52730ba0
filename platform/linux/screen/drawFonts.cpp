#include "platform/linux/screen/drawFonts.h"

#include <algorithm>
#include <iterator>
#include <pango/pangocairo.h>
#include <string_view>

namespace {

// Fonts that other systems have, and what looks like them here.
struct replacementRow {
    std::string_view Font;
    std::string_view Instead;
};

constexpr replacementRow Replacements[] = {
    {"Segoe UI", "Open Sans,sans-serif"},
};

// The first font of the list that the system has is taken.
std::string familyList(std::string_view font)
{
    const auto at = std::ranges::find(Replacements, font, &replacementRow::Font);
    std::string list(font);
    list += ',';
    list += at == std::end(Replacements) ? "sans-serif" : at->Instead;
    return list;
}

}  // namespace

int drawUnitsOf(float pixels)
{
    constexpr double MostUnits = 1 << 20;  // pixels
    return pango_units_from_double(std::clamp(static_cast<double>(pixels), 0.0, MostUnits));
}

std::shared_ptr<drawFonts> drawFontsMake()
{
    auto fonts = std::make_shared<drawFonts>();
    fonts->Map.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    if (!fonts->Map)
        return nullptr;
    fonts->Context.reset(pango_font_map_create_context(fonts->Map.get()));
    // Widths are those of the font at any size, so a text is as wide here as it is elsewhere; only heights
    // are fitted to pixels.
    const cairoOwned<cairo_font_options_t> options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(fonts->Context.get(), options.get());
    pango_cairo_context_set_resolution(fonts->Context.get(), 96);
    pango_context_set_round_glyph_positions(fonts->Context.get(), FALSE);
    fonts->Scratch.reset(pango_layout_new(fonts->Context.get()));
    PangoLayout* layout = fonts->Scratch.get();
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_auto_dir(layout, FALSE);
    // A word that is cut shows no sign of it.
    const pangoOwned<PangoAttrList> attributes(pango_attr_list_new());
    pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
    pango_layout_set_attributes(layout, attributes.get());
    return fonts;
}

pangoFormat::pangoFormat(std::shared_ptr<drawFonts> fonts, std::string_view font, bool bold, bool italic,
                         float size)
    : Fonts_(std::move(fonts)),
      Font(pangoOwned<PangoFontDescription>(pango_font_description_new())),
      Tabs(pangoOwned<PangoTabArray>(pango_tab_array_new(1, FALSE)))
{
    constexpr int TabEms = 4;
    pango_font_description_set_family(Font.get(), familyList(font).c_str());
    pango_font_description_set_weight(Font.get(), bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(Font.get(), italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(Font.get(), drawUnitsOf(size));
    pango_tab_array_set_tab(Tabs.get(), 0, PANGO_TAB_LEFT, drawUnitsOf(TabEms * size));
    const std::unique_ptr<char, void (*)(void*)> described(pango_font_description_to_string(Font.get()),
                                                           g_free);
    Key_ = described.get();
}

PangoLayout* pangoFormat::Layout() const
{
    PangoLayout* layout = Fonts_->Scratch.get();
    pango_layout_set_font_description(layout, Font.get());
    pango_layout_set_tabs(layout, Tabs.get());
    return layout;
}
