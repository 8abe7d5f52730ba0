// What Cairo and Pango give out, owned; and the coordinates that they can take.
#pragma once

#include "platform/draw.h"

#include <cairo.h>
#include <memory>
#include <pango/pango.h>

struct cairoRelease {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
    void operator()(cairo_region_t* region) const { cairo_region_destroy(region); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
    void operator()(cairo_scaled_font_t* font) const { cairo_scaled_font_destroy(font); }
};

template <typename type>
using cairoOwned = std::unique_ptr<type, cairoRelease>;

struct pangoRelease {
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
    void operator()(PangoTabArray* tabs) const { pango_tab_array_free(tabs); }
    void operator()(PangoContext* context) const { g_object_unref(context); }
    void operator()(PangoFontMap* map) const { g_object_unref(map); }
    void operator()(PangoLayout* layout) const { g_object_unref(layout); }
    void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
    void operator()(PangoFont* font) const { g_object_unref(font); }
    void operator()(PangoGlyphString* glyphs) const { pango_glyph_string_free(glyphs); }
};

template <typename type>
using pangoOwned = std::unique_ptr<type, pangoRelease>;

// Coordinates become fixed-point numbers that wrap: what is further out is brought to the edge of what they
// can hold, and what is no number to 0.
double drawCoordinate(float value);

inline cairo_rectangle_t drawBox(const drawRect& rect)
{
    const double left = drawCoordinate(rect.Left);
    const double top = drawCoordinate(rect.Top);
    return {left, top, drawCoordinate(rect.Right) - left, drawCoordinate(rect.Bottom) - top};
}

// The box around what `rect` becomes.
drawRect drawTransformed(const cairo_matrix_t& matrix, const drawRect& rect);
drawRect drawIntersection(const drawRect& one, const drawRect& other);
