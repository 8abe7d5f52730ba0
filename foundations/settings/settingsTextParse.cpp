#include "foundations/settings/settingsText.h"

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view LineEnd = "\r\n";
constexpr std::string_view Blanks = " \t";
constexpr std::string_view QuotedCharacters = "\t\r\n=\"\\";

bool isLineEnd(char character)
{
    return character == '\r' || character == '\n';
}

// Whether a pair of brackets makes a line a header. What stands before, between and behind them does not
// matter, but a bracket too many does.
bool isHeader(std::string_view line)
{
    const size_t open = line.find('[');
    if (open == std::string_view::npos)
        return false;
    const size_t close = line.find(']');
    return close != std::string_view::npos && open < close &&
           line.find('[', open + 1) == std::string_view::npos &&
           line.find(']', close + 1) == std::string_view::npos;
}

settingsText::Section makeSection(std::string_view header)
{
    const size_t open = header.find('[');
    const size_t close = header.find(']', open);
    return {std::string(header), {}, std::string(header.substr(open + 1, close - open - 1))};
}

size_t findLineStop(std::string_view bytes, size_t at)
{
    while (at < bytes.size() && bytes[at] != '\0' && !isLineEnd(bytes[at]))
        ++at;
    return at;
}

// How many bytes of a line's end stand at `at`: none before a NUL and at the end of the file.
size_t lineEndLength(std::string_view bytes, size_t at)
{
    if (at >= bytes.size() || !isLineEnd(bytes[at]))
        return 0;
    const bool pair = at + 1 < bytes.size() && isLineEnd(bytes[at + 1]) && bytes[at + 1] != bytes[at];
    return pair ? 2 : 1;
}

std::string_view skipBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(Blanks);
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

// What stands between the quotes of a\=\"b\": a backslash gives n, r and t their meaning and protects others.
std::string undoEscapes(std::string_view quoted)
{
    std::string text;
    for (size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] != '\\' || i + 1 == quoted.size()) {
            text += quoted[i];
            continue;
        }
        ++i;
        switch (quoted[i]) {
        case 'n':
            text += '\n';
            break;
        case 'r':
            text += '\r';
            break;
        case 't':
            text += '\t';
            break;
        default:
            text += quoted[i];
            break;
        }
    }
    return text;
}

bool needsQuotes(const std::string& text)
{
    if (text.empty())
        return false;
    return text.front() == ' ' || text.back() == ' ' ||
           text.find_first_of(QuotedCharacters) != std::string::npos;
}

std::string quote(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        switch (character) {
        case '\t':
            quoted += "\\t";
            break;
        case '\n':
            quoted += "\\n";
            break;
        case '\r':
            quoted += "\\r";
            break;
        case '"':
        case '=':
        case '\\':
            quoted += '\\';
            [[fallthrough]];
        default:
            quoted += character;
            break;
        }
    }
    quoted += '"';
    return quoted;
}

}  // namespace

std::vector<settingsText::Section> settingsText::Parse(std::string_view bytes)
{
    std::vector<Section> sections;
    if (bytes.starts_with(ByteOrderMark))
        bytes.remove_prefix(ByteOrderMark.size());
    size_t at = 0;
    while (at < bytes.size()) {
        if (bytes[at] == '\0') {
            ++at;
            continue;
        }
        const size_t end = findLineStop(bytes, at);
        const std::string_view line = bytes.substr(at, end - at);
        at = end + lineEndLength(bytes, end);
        if (isHeader(line)) {
            sections.push_back(makeSection(line));
            continue;
        }
        if (sections.empty())
            sections.emplace_back();
        sections.back().Rows.push_back(KeyValueRow::Parse(line));
    }
    return sections;
}

std::string settingsText::Compose(const std::vector<Section>& sections)
{
    std::string bytes;
    for (const Section& section : sections) {
        if (!section.Text.empty())
            bytes.append(section.Text).append(LineEnd);
        for (const KeyValueRow& row : section.Rows)
            bytes.append(row.Text).append(LineEnd);
    }
    return bytes;
}

// Key = "a\tquoted \"value\""
settingsText::KeyValueRow settingsText::KeyValueRow::Parse(std::string_view line)
{
    KeyValueRow row;
    row.Text = line;
    const std::string_view content = skipBlanks(line);
    const size_t equals = content.find('=');
    if (content.starts_with('#') || content.starts_with(';') || equals == std::string_view::npos)
        return row;
    row.Key = content.substr(0, equals);
    const std::string_view value = skipBlanks(content.substr(equals + 1));
    const bool quoted = value.size() >= 2 && value.starts_with('"') && value.ends_with('"');
    row.Value_ = quoted ? undoEscapes(value.substr(1, value.size() - 2)) : std::string(value);
    return row;
}

void settingsText::KeyValueRow::Value(const std::string& text)
{
    Value_ = text;
    Text = Key + "=" + (needsQuotes(Value_) ? quote(Value_) : Value_);
}
