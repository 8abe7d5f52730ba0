// Text: aligned, trimmed, turned, thick, in several sizes and styles.
#include "tools/gallery/gallery.h"

#include <numbers>

namespace {

class textSheet final : public gallerySheet
{
public:
    textSheet(ctrlWindow* parent, int32_t x, int32_t y) : gallerySheet(parent, x, y, 320, 330, "Text") {}

private:
    void PaintSheet() override
    {
        PaintAlignments();
        PaintTrimmed();
        PaintTurned();
        PaintStyles();
    }

    void Box(const rect& box)
    {
        Colour(theme::ListBorder);
        PenWidth(1.0F);
        Rectangle(static_cast<float>(box.Left) - 0.5F, static_cast<float>(box.Top) - 0.5F,
                  static_cast<float>(box.Right) + 0.5F, static_cast<float>(box.Bottom) + 0.5F);
    }

    void Boxed(const rect& box, const char* text, unsigned flags)
    {
        Box(box);
        Colour(theme::FaceText);
        Text(box, text, flags);
    }

    void PaintAlignments()
    {
        constexpr unsigned across[] = {textLeft, 0, textRight};
        constexpr unsigned down[] = {textTop, 0, textBottom};
        constexpr int32_t width = 96;
        constexpr int32_t height = 30;
        for (int32_t row = 0; row < 3; ++row) {
            for (int32_t column = 0; column < 3; ++column) {
                const int32_t left = 8 + column * (width + 6);
                const int32_t top = 24 + row * (height + 5);
                Boxed({left, top, left + width, top + height}, "\xC2\xB5g 48\xC2\xB0",
                      across[column] | down[row]);
            }
        }
    }

    void PaintTrimmed()
    {
        Boxed({8, 132, 156, 150}, "A text that is much longer than its box", textLeft | textTrim);
        Boxed({162, 132, 310, 150}, "/records/surveyor/2026/november/antenna.ubx", textLeft | textTrim);
        Boxed({8, 156, 156, 174}, "A text that is much longer than its box", textLeft);
        Boxed({162, 156, 310, 174}, R"(C:\Records\2026/11\with\slashes\antenna.ubx)", textLeft | textTrim);
    }

    void PaintTurned()
    {
        constexpr float eighth = std::numbers::pi_v<float> / 4;
        const rect box{90, 184, 154, 284};
        const rect middle{box.Left, (box.Top + box.Bottom) / 2 - 8, box.Right + 60,
                          (box.Top + box.Bottom) / 2 + 8};
        Colour(theme::LabelTextSecond);
        for (int i = 0; i < 8; ++i) {
            TextAngle(eighth * static_cast<float>(i));
            Text(middle, "      turned", textLeft | textUnclipped);
        }
        TextAngle(0.0F);
        Boxed({230, 184, 310, 204}, "thick", textThick);
        Boxed({230, 210, 310, 230}, "thin", 0);
    }

    void PaintStyles()
    {
        struct row {
            float Size;
            uint8_t Style;
            const char* Text;
        };
        constexpr row rows[] = {
            {8, 0, "8"}, {11, 0, "11"}, {11, fontItalic, "italic"}, {16, fontBold, "16 bold"}, {24, 0, "24"},
        };
        int32_t left = 8;
        for (const row& one : rows) {
            FontSize(one.Size);
            FontStyle(one.Style);
            const auto wide = static_cast<int32_t>(TextSize(one.Text).Width);
            Colour(theme::FaceText);
            Text({left, 290, left + wide, 324}, one.Text, textLeft);
            left += wide + 14;
        }
        FontSize(canvasFontSize);
        FontStyle(0);
    }
};

}  // namespace

ctrlWindow* galleryTexts(ctrlWindow* parent, int32_t x, int32_t y)
{
    return new textSheet(parent, x, y);
}
