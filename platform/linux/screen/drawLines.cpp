#include "platform/linux/screen/drawLines.h"

#include "platform/linux/screen/drawTrim.h"

#include <algorithm>
#include <pango/pangocairo.h>
#include <span>

namespace {

bool hasAllGlyphs(const PangoLayoutRun& run)
{
    const std::span<const PangoGlyphInfo> glyphs(run.glyphs->glyphs,
                                                 static_cast<size_t>(run.glyphs->num_glyphs));
    return run.item->analysis.font != nullptr &&
           std::ranges::none_of(glyphs, [](const PangoGlyphInfo& glyph) {
               return glyph.glyph != PANGO_GLYPH_EMPTY && (glyph.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0;
           });
}

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

}  // namespace

std::shared_ptr<const textLines> drawLinesOf(PangoLayout* layout)
{
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

void drawTextLine(cairo_t* context, drawGlyphs* masks, const textLine& line, double left, double baseline)
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
