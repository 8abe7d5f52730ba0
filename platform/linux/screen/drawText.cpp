#include "platform/linux/screen/drawText.h"

#include "platform/linux/screen/drawTrim.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <pango/pangocairo.h>

namespace {

constexpr double MostUnits = 1 << 20;  // pixels that Pango's units can hold
constexpr size_t MostShaped = 1024;    // texts

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

int unitsOf(float pixels)
{
    return pango_units_from_double(std::clamp(static_cast<double>(pixels), 0.0, MostUnits));
}

double shareOf(drawAlign align)
{
    constexpr double Shares[] = {0, 1, 0.5};
    return Shares[static_cast<uint8_t>(align)];
}

bool isPlain(const cairo_matrix_t& matrix)
{
    return matrix.xx == 1 && matrix.yy == 1 && matrix.xy == 0 && matrix.yx == 0;
}

// How many bytes from `at` on are replaced as one: a sequence that ends too early, or a byte that begins
// none.
size_t faultAt(std::string_view text, size_t at)
{
    const auto byteAt = [&](size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned first = byteAt(at);
    const size_t expected = first < 0xC2 || first > 0xF4 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    size_t count = 1;
    while (count < expected && at + count < text.size() && (byteAt(at + count) & 0xC0) == 0x80)
        ++count;
    return count;
}

// Replacement characters stand for bytes that are no text, and for NULs.
std::string validText(std::string_view text)
{
    std::string valid;
    for (size_t at = 0;;) {
        const char* first = text.data() + at;
        const char* fault = nullptr;
        if (g_utf8_validate(first, static_cast<gssize>(text.size() - at), &fault) != 0)
            return valid.append(first, text.size() - at);
        valid.append(first, fault).append("\uFFFD");
        at = static_cast<size_t>(fault - text.data());
        at += faultAt(text, at);
    }
}

bool hasAllGlyphs(const PangoLayoutRun& run)
{
    const std::span<const PangoGlyphInfo> glyphs(run.glyphs->glyphs,
                                                 static_cast<size_t>(run.glyphs->num_glyphs));
    return run.item->analysis.font != nullptr &&
           std::ranges::none_of(glyphs, [](const PangoGlyphInfo& glyph) {
               return glyph.glyph != PANGO_GLYPH_EMPTY && (glyph.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0;
           });
}

// They outlive the layout that they were made in.
std::vector<glyphRun> runsOf(const PangoLayoutLine& line)
{
    std::vector<glyphRun> runs;
    double x = 0;
    for (GSList* at = line.runs; at != nullptr; at = at->next) {
        const PangoLayoutRun* piece = static_cast<PangoLayoutRun*>(at->data);
        PangoFont* font = piece->item->analysis.font;
        runs.push_back({pangoOwned<PangoFont>(font ? PANGO_FONT(g_object_ref(font)) : nullptr),
                        pangoOwned<PangoGlyphString>(pango_glyph_string_copy(piece->glyphs)), x,
                        hasAllGlyphs(*piece)});
        x += pango_units_to_double(pango_glyph_string_get_width(piece->glyphs));
    }
    return runs;
}

void drawRunOnPixels(cairo_t* context, drawGlyphs& masks, const glyphRun& run, double left, int baseline)
{
    std::vector<drawGlyph> glyphs;
    glyphs.reserve(static_cast<size_t>(run.Glyphs->num_glyphs));
    double x = left + run.X;
    for (int index = 0; index < run.Glyphs->num_glyphs; ++index) {
        const PangoGlyphInfo& glyph = run.Glyphs->glyphs[index];
        const PangoGlyphGeometry& place = glyph.geometry;
        if (glyph.glyph != PANGO_GLYPH_EMPTY)
            glyphs.push_back({glyph.glyph, x + pango_units_to_double(place.x_offset),
                              baseline + PANGO_PIXELS(place.y_offset)});
        x += pango_units_to_double(place.width);
    }
    masks.Draw(context, pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(run.Font.get())), glyphs);
}

// Outlines stand anywhere; glyphs of a bitmap snap to pixels and dance along a slope.
void drawRunAsPath(cairo_t* context, const glyphRun& run, double left, double baseline)
{
    cairo_move_to(context, left + run.X, baseline);
    pango_cairo_glyph_string_path(context, run.Font.get(), run.Glyphs.get());
    cairo_fill(context);
}

// From pixel to pixel when there are masks.
void drawLine(cairo_t* context, drawGlyphs* masks, const textLine& line, double left, double baseline)
{
    for (const glyphRun& run : line.Runs) {
        if (!run.IsWhole) {
            cairo_move_to(context, left + run.X, baseline);
            pango_cairo_show_glyph_string(context, run.Font.get(), run.Glyphs.get());
        } else if (masks != nullptr) {
            drawRunOnPixels(context, *masks, run, left, static_cast<int>(baseline));
        } else {
            drawRunAsPath(context, run, left, baseline);
        }
    }
}

}  // namespace

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
    pango_font_description_set_absolute_size(Font.get(), unitsOf(size));
    pango_tab_array_set_tab(Tabs.get(), 0, PANGO_TAB_LEFT, unitsOf(TabEms * size));
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

pangoText::pangoText(std::string_view text, const pangoFormat& format, float width, float height)
    : Format(format), Text(validText(text)), Width(width), Height(height)
{}

void pangoText::SetAlign(drawAlign horizontal, drawAlign vertical)
{
    Horizontal = horizontal;
    Vertical = vertical;
}

void pangoText::SetNoWrap()
{
    Wraps = false;
    Arranged = nullptr;
}

void pangoText::SetTrimming(char delimiter)
{
    Trims = true;
    Delimiter = delimiter;
    Arranged = nullptr;
}

void pangoText::Trim(PangoLayout* layout) const
{
    const pangoOwned<PangoLayout> scratch(pango_layout_copy(layout));
    pango_layout_set_width(scratch.get(), -1);
    const std::string trimmed = drawTrimmed(layout, scratch.get(), static_cast<double>(Width), Delimiter);
    if (trimmed != Text)
        pango_layout_set_text(layout, trimmed.data(), static_cast<int>(trimmed.size()));
}

// All that the lines depend on.
std::string pangoText::Key() const
{
    std::string key = Format.Key();
    key += Wraps ? '\2' : '\1';
    if (Trims)
        key.append({'\1', Delimiter});
    if (Wraps || Trims)
        key += std::to_string(Width);
    key += '\0';
    return key += Text;
}

void pangoText::Arrange() const
{
    if (Arranged)
        return;
    auto& shaped = Format.Fonts()->Shaped;
    const std::string key = Key();
    const auto known = shaped.find(key);
    if (known != shaped.end()) {
        Arranged = known->second;
        return;
    }
    Arranged = Shape();
    if (shaped.size() >= MostShaped)
        shaped.clear();
    shaped.emplace(key, Arranged);
}

std::shared_ptr<const textLines> pangoText::Shape() const
{
    PangoLayout* layout = Format.Layout();
    pango_layout_set_text(layout, Text.data(), static_cast<int>(Text.size()));
    pango_layout_set_width(layout, Wraps ? unitsOf(Width) : -1);
    if (Trims)
        Trim(layout);
    auto made = std::make_shared<textLines>();
    double top = 0;
    for (GSList* at = pango_layout_get_lines_readonly(layout); at != nullptr; at = at->next) {
        PangoLayoutLine* one = static_cast<PangoLayoutLine*>(at->data);
        PangoRectangle box;
        pango_layout_line_get_extents(one, nullptr, &box);
        const double height = pango_units_to_double(box.height);
        made->push_back({runsOf(*one), top, -pango_units_to_double(box.y), drawInkWidth(one),
                         pango_units_to_double(box.width), height});
        top += height;
    }
    return made;
}

drawTextSize pangoText::Size() const
{
    if (Text.empty())
        return {};
    Arrange();
    double width = 0;
    for (const textLine& one : *Arranged)
        width = std::max(width, one.FullWidth);
    const textLine& last = Arranged->back();
    return {static_cast<float>(width), static_cast<float>(last.Top + last.Height)};
}

double pangoText::LineLeft(const textLine& one) const
{
    return shareOf(Horizontal) * (static_cast<double>(Width) - one.Width);
}

double pangoText::TextTop() const
{
    return shareOf(Vertical) * static_cast<double>(Height - Size().Height);
}

void pangoText::Draw(cairo_t* context, drawPoint origin) const
{
    if (Text.empty())
        return;
    Arrange();
    cairo_matrix_t matrix;
    cairo_get_matrix(context, &matrix);
    const bool plain = isPlain(matrix);
    double x = drawCoordinate(origin.X);
    double y = drawCoordinate(origin.Y) + TextTop();
    if (plain) {
        cairo_identity_matrix(context);
        x += matrix.x0;
        y += matrix.y0;
    }
    for (const textLine& one : *Arranged) {
        const double baseline = y + one.Top + one.Baseline;
        // Feet that stand between two rows of pixels look dirty.
        drawLine(context, plain ? &Format.Fonts()->Glyphs : nullptr, one, x + LineLeft(one),
                 plain ? std::floor(baseline + 0.5) : baseline);
    }
    cairo_set_matrix(context, &matrix);
}

drawRect pangoText::Reach() const
{
    if (Text.empty())
        return {};
    const drawTextSize size = Size();
    drawRect reach = {INFINITY, static_cast<float>(TextTop()), -INFINITY, 0};
    for (const textLine& one : *Arranged) {
        reach.Left = std::min(reach.Left, static_cast<float>(LineLeft(one)));
        reach.Right = std::max(reach.Right, static_cast<float>(LineLeft(one) + one.FullWidth));
    }
    reach.Bottom = reach.Top + size.Height;
    // Letters lean and accents rise out of their boxes.
    const float beyond = static_cast<float>(Arranged->front().Height);
    return {reach.Left - beyond, reach.Top - beyond, reach.Right + beyond, reach.Bottom + beyond};
}
