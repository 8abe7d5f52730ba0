#include "tools/packer/packSource.h"

#include "toolkit/pixmapDecode.h"
#include "toolkit/pixmapDyn.h"
#include "tools/packer/packBits.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr size_t BytesInLine = 21;
constexpr std::string_view StreamBegin = "constexpr uint8_t Stream[] = {\n";
constexpr std::string_view StreamEnd = "};\n";
constexpr int32_t StoredBits = -24;
constexpr std::string_view BitsField = "    .Bits = -24,\n";

std::string Hex(uint8_t byte)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    return {'0', 'x', Digits[byte >> 4], Digits[byte & 0xF], ','};
}

std::string TableOf(std::span<const uint8_t> bytes)
{
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += i % BytesInLine == 0 ? "    " : "";
        text += Hex(bytes[i]);
        text += (i + 1) % BytesInLine == 0 || i + 1 == bytes.size() ? "\n" : "";
    }
    return text;
}

std::string FieldOf(std::string_view name, std::string_view value)
{
    return "    ." + std::string(name) + " = " + std::string(value) + ",\n";
}

std::string RecordOf(const packPicture& picture, std::string_view name)
{
    return "constexpr pixmap " + std::string(name) + " = {\n" +
           FieldOf("Width", std::to_string(picture.Width)) +
           FieldOf("Height", std::to_string(picture.Height)) + std::string(BitsField) +
           FieldOf("Pixels", "Stream") + FieldOf("Size", "sizeof Stream") +
           FieldOf("Stride", std::to_string(pixmapStride(packPicture::Bits, picture.Width))) + "};\n";
}

// What stands between two texts, the first of their kind.
std::optional<std::string_view> Between(std::string_view text, std::string_view begin, std::string_view end)
{
    const size_t first = text.find(begin);
    if (first == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(first + begin.size());
    const size_t last = text.find(end);
    if (last == std::string_view::npos)
        return std::nullopt;
    return text.substr(0, last);
}

template <class Number>
std::optional<Number> NumberOf(std::string_view text, int base)
{
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

std::optional<uint32_t> FieldIn(std::string_view source, std::string_view name)
{
    const std::optional<std::string_view> text = Between(source, "    ." + std::string(name) + " = ", ",\n");
    return text ? NumberOf<uint32_t>(*text, 10) : std::nullopt;
}

std::optional<std::vector<uint8_t>> TableIn(std::string_view text)
{
    constexpr size_t EntrySize = 5;
    std::vector<uint8_t> bytes;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
        if (text.empty())
            return bytes;
        if (text.size() < EntrySize || !text.starts_with("0x") || text[EntrySize - 1] != ',')
            return std::nullopt;
        const std::optional<uint8_t> byte = NumberOf<uint8_t>(text.substr(2, 2), 16);
        if (!byte)
            return std::nullopt;
        bytes.push_back(*byte);
        text.remove_prefix(EntrySize);
    }
}

// A stream that holds more or less than the picture is damaged, though the program would show it.
bool IsWhole(const packPicture& picture, std::span<const uint8_t> stream)
{
    pixmapBytes decoded(pixmapBytesMost);
    return pixmapDecode(stream, decoded) &&
           decoded.Held().size() == pixmapStride(packPicture::Bits, picture.Width) * uint64_t{picture.Height};
}

}  // namespace

packTexts packSourceOf(const packPicture& picture, std::string_view name, std::string_view folder,
                       std::string_view origin)
{
    const std::string header = std::string(folder) + "/" + std::string(name) + ".h";
    const std::string title = "// Made by skypack from " + std::string(origin) + "; not to be edited.\n";
    packTexts texts;
    texts.Header = title + "#pragma once\n\n#include \"toolkit/pixmap.h\"\n\nextern const pixmap " +
                   std::string(name) + ";\n";
    texts.Source = title + "#include \"" + header + "\"\n\nnamespace {\n\n// clang-format off\n" +
                   std::string(StreamBegin) + TableOf(packBits(picture.Pixels)) + std::string(StreamEnd) +
                   "// clang-format on\n\n}  // namespace\n\n" + RecordOf(picture, name);
    return texts;
}

std::optional<packPicture> packPictureOf(std::string_view source)
{
    const std::optional<std::string_view> table = Between(source, StreamBegin, StreamEnd);
    const std::optional<uint32_t> width = FieldIn(source, "Width");
    const std::optional<uint32_t> height = FieldIn(source, "Height");
    if (!table || !width || !height || source.find(BitsField) == std::string_view::npos)
        return std::nullopt;
    const std::optional<std::vector<uint8_t>> stream = TableIn(*table);
    packPicture picture{*width, *height, {}};
    if (!stream || !IsWhole(picture, *stream))
        return std::nullopt;
    pixmap image;
    image.Width = *width;
    image.Height = *height;
    image.Bits = StoredBits;
    image.Pixels = stream->data();
    image.Size = static_cast<uint32_t>(stream->size());
    pixmapDyn plain;
    plain.Bits = packPicture::Bits;
    plain = image;
    picture.Pixels.assign(plain.Pixels, plain.Pixels + plain.Size);
    return picture;
}
