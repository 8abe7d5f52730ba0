#include "platform/linux/screen/drawText.h"

#include "platform/linux/screen/drawTrim.h"

#include <algorithm>
#include <cmath>
#include <pango/pangocairo.h>

namespace {

constexpr size_t MostShaped = 1024;  // texts

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

}  // namespace

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
    pango_layout_set_width(layout, Wraps ? drawUnitsOf(Width) : -1);
    if (Trims)
        Trim(layout);
    return drawLinesOf(layout);
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
        drawTextLine(context, plain ? &Format.Fonts()->Glyphs : nullptr, one, x + LineLeft(one),
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
