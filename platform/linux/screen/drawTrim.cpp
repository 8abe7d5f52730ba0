#include "platform/linux/screen/drawTrim.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view Ellipsis = "\u2026";

// What rounding may add to a text that just fits.
constexpr double Slack = 1.0 / 64;

double measure(PangoLayout* scratch, const std::string& text)
{
    pango_layout_set_text(scratch, text.data(), static_cast<int>(text.size()));
    return drawInkWidth(pango_layout_get_line_readonly(scratch, 0));
}

// Where the text of a line may be cut, in bytes from its begin, the begin among them.
std::vector<size_t> cutsOf(PangoLayout* scratch, const std::string& text)
{
    pango_layout_set_text(scratch, text.data(), static_cast<int>(text.size()));
    int count = 0;
    const PangoLogAttr* attributes = pango_layout_get_log_attrs_readonly(scratch, &count);
    std::vector<size_t> cuts;
    const char* at = text.data();
    for (int index = 0; index < count && at < text.data() + text.size(); ++index) {
        if (attributes[index].is_cursor_position)
            cuts.push_back(static_cast<size_t>(at - text.data()));
        at = g_utf8_next_char(at);
    }
    if (cuts.empty())
        cuts.push_back(0);
    return cuts;
}

// From the last delimiter to the end; empty without one.
std::string tailOf(std::string_view text, char delimiter)
{
    const size_t at = delimiter == 0 ? std::string_view::npos : text.rfind(delimiter);
    return at == std::string_view::npos || at == 0 ? std::string() : std::string(text.substr(at));
}

std::string trimmedLine(PangoLayout* scratch, const std::string& text, double width, char delimiter)
{
    std::string end = std::string(Ellipsis) + tailOf(text, delimiter);
    if (measure(scratch, end) > width)
        end = Ellipsis;
    const std::vector<size_t> cuts = cutsOf(scratch, text);
    const auto fits = [&](size_t cut) { return measure(scratch, text.substr(0, cut) + end) <= width; };
    // The first cut leaves nothing, and stands when nothing fits.
    const auto tooFar = std::partition_point(cuts.begin() + 1, cuts.end(), fits);
    return text.substr(0, *(tooFar - 1)) + end;
}

}  // namespace

double drawInkWidth(PangoLayoutLine* line)
{
    PangoRectangle box;
    pango_layout_line_get_extents(line, nullptr, &box);
    const std::string_view text(pango_layout_get_text(line->layout) + line->start_index,
                                static_cast<size_t>(line->length));
    const size_t last = text.find_last_not_of(" \t");
    const size_t end = last == std::string_view::npos ? 0 : last + 1;
    if (end == text.size() || pango_layout_line_get_resolved_direction(line) == PANGO_DIRECTION_RTL)
        return pango_units_to_double(box.width);
    int x = 0;
    pango_layout_line_index_to_x(line, line->start_index + static_cast<int>(end), 0, &x);
    return pango_units_to_double(std::min(x, box.width));
}

std::string drawTrimmed(PangoLayout* layout, PangoLayout* scratch, double width, char delimiter)
{
    const std::string text = pango_layout_get_text(layout);
    std::string trimmed;
    size_t done = 0;
    for (GSList* at = pango_layout_get_lines_readonly(layout); at != nullptr; at = at->next) {
        PangoLayoutLine* line = static_cast<PangoLayoutLine*>(at->data);
        const size_t begin = static_cast<size_t>(line->start_index);
        const size_t length = static_cast<size_t>(line->length);
        if (drawInkWidth(line) <= width + Slack)
            continue;
        trimmed.append(text, done, begin - done);
        trimmed += trimmedLine(scratch, text.substr(begin, length), width + Slack, delimiter);
        done = begin + length;
    }
    return trimmed.append(text, done);
}
