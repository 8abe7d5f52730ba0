#include "platform/linux/registryText.h"

#include "platform/linux/registryWords.h"

#include <algorithm>

namespace {

// Walks through the lines of a content.
class lineCursor
{
public:
    explicit lineCursor(std::string_view text) : Text(text) {}

    bool Next();

    size_t Begin = 0;       // of the line
    size_t End = 0;         // behind its line end
    std::string_view Line;  // without its end and the blanks around it
    bool IsHeader = false;
    std::string_view Section;  // the path that the line belongs to; empty where there is none

private:
    std::string_view Text;
};

bool lineCursor::Next()
{
    if (End >= Text.size())
        return false;
    Begin = End;
    const size_t newLine = Text.find('\n', Begin);
    End = newLine == std::string_view::npos ? Text.size() : newLine + 1;
    std::string_view line = Text.substr(Begin, End - Begin);
    // Some editors put it at the start of a file.
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    if (Begin == 0 && line.starts_with(ByteOrderMark))
        line.remove_prefix(ByteOrderMark.size());
    Line = registryTrim(line);
    IsHeader = Line.starts_with('[');
    // A damaged header ends the section before it too, lest that one takes over the values of another.
    if (IsHeader)
        Section = Line.ends_with(']') ? Line.substr(1, Line.size() - 2) : std::string_view();
    return true;
}

bool IsComment(std::string_view line)
{
    return line.starts_with('#') || line.starts_with(';');
}

char Lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

bool Same(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

// Whether `path` is that of the key `above` or of one below it.
bool IsWithin(std::string_view path, std::string_view above)
{
    return path.size() >= above.size() && Same(path.substr(0, above.size()), above) &&
           (path.size() == above.size() || path[above.size()] == '\\');
}

std::string_view ParentOf(std::string_view path)
{
    const size_t last = path.rfind('\\');
    return last == std::string_view::npos ? std::string_view() : path.substr(0, last);
}

struct valueLine {
    std::string Name;
    std::string_view Value;
};

// "Server port" = dword 4003
std::optional<valueLine> SplitValue(std::string_view line)
{
    std::optional<std::string> name = registryUnquote(line);
    if (!name || !line.starts_with('='))
        return std::nullopt;
    return valueLine{std::move(*name), registryTrim(line.substr(1))};
}

bool Holds(const lineCursor& cursor, std::string_view path, std::string_view name)
{
    if (cursor.IsHeader || !Same(cursor.Section, path))
        return false;
    const std::optional<valueLine> split = SplitValue(cursor.Line);
    return split && Same(split->Name, name);
}

}  // namespace

bool registryIsPath(std::string_view path)
{
    const auto isControl = [](char character) {
        const uint8_t byte = static_cast<uint8_t>(character);
        return byte < 0x20 || byte == 0x7F;
    };
    return !path.empty() && !path.starts_with('\\') && !path.ends_with('\\') &&
           path.find("\\\\") == std::string_view::npos && std::none_of(path.begin(), path.end(), isControl) &&
           registryIsUTF8(path);
}

bool registryText::HasKey(std::string_view path) const
{
    for (lineCursor cursor(Bytes_); cursor.Next();) {
        if (cursor.IsHeader && IsWithin(cursor.Section, path))
            return true;
    }
    return false;
}

std::optional<registryValue> registryText::Find(std::string_view path, std::string_view name) const
{
    for (lineCursor cursor(Bytes_); cursor.Next();) {
        if (!Holds(cursor, path, name))
            continue;
        // A line that a person spoiled does not hide a good one behind it.
        if (std::optional<registryValue> value = registryParse(SplitValue(cursor.Line)->Value))
            return value;
    }
    return std::nullopt;
}

void registryText::AddKey(const std::string& path)
{
    if (!HasKey(path))
        AppendSection(WithKnownCase(path));
}

// The path with those of its parts that exist already in the case of their first writing.
std::string registryText::WithKnownCase(const std::string& path) const
{
    for (std::string_view above = path; !above.empty(); above = ParentOf(above)) {
        for (lineCursor cursor(Bytes_); cursor.Next();) {
            if (cursor.IsHeader && IsWithin(cursor.Section, above))
                return std::string(cursor.Section.substr(0, above.size())) + path.substr(above.size());
        }
    }
    return path;
}

void registryText::AppendSection(const std::string& path)
{
    if (!Bytes_.empty() && !Bytes_.ends_with('\n'))
        Bytes_ += '\n';
    if (!Bytes_.empty())
        Bytes_ += '\n';
    Bytes_ += '[' + path + "]\n";
}

void registryText::Set(const std::string& path, const std::string& name, const registryValue& value)
{
    size_t insertAt = std::string::npos;
    for (lineCursor cursor(Bytes_); cursor.Next();) {
        if (Holds(cursor, path, name)) {
            const std::string known = SplitValue(cursor.Line)->Name;
            const std::string line = registryQuote(known) + " = " + registryFormat(value);
            const size_t begin = static_cast<size_t>(cursor.Line.data() - Bytes_.data());
            Bytes_.replace(begin, cursor.Line.size(), line);
            return;
        }
        // Behind the last value, so that a comment over the next header stays there.
        if (Same(cursor.Section, path) && (cursor.IsHeader || SplitValue(cursor.Line)))
            insertAt = cursor.End;
    }
    if (insertAt == std::string::npos) {
        AppendSection(WithKnownCase(path));
        insertAt = Bytes_.size();
    }
    std::string line = registryQuote(name) + " = " + registryFormat(value) + '\n';
    if (Bytes_[insertAt - 1] != '\n')
        line.insert(line.begin(), '\n');
    Bytes_.insert(insertAt, line);
}

bool registryText::Remove(std::string_view path, std::string_view name)
{
    std::string kept;
    for (lineCursor cursor(Bytes_); cursor.Next();) {
        if (!Holds(cursor, path, name))
            kept.append(Bytes_, cursor.Begin, cursor.End - cursor.Begin);
    }
    if (kept.size() == Bytes_.size())
        return false;
    Bytes_ = std::move(kept);
    return true;
}

bool registryText::RemoveTree(std::string_view path)
{
    const std::string parent(ParentOf(path));
    const std::string parentAsWritten = WithKnownCase(parent);
    std::string kept;
    bool removing = false;
    bool removed = false;
    size_t commentsBegin = 0;
    for (lineCursor cursor(Bytes_); cursor.Next();) {
        if (cursor.IsHeader) {
            // Comments right over a header that stays belong to it.
            const bool within = IsWithin(cursor.Section, path);
            if (removing && !within)
                kept.append(Bytes_, commentsBegin, cursor.Begin - commentsBegin);
            removing = within;
            removed = removed || within;
        }
        if (!IsComment(cursor.Line))
            commentsBegin = cursor.End;
        if (!removing)
            kept.append(Bytes_, cursor.Begin, cursor.End - cursor.Begin);
    }
    if (!removed)
        return false;
    Bytes_ = std::move(kept);
    if (!parent.empty())
        AddKey(parentAsWritten);
    return true;
}
