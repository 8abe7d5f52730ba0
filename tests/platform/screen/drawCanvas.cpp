#include "tests/platform/screen/drawCanvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

drawSystem& drawContractSystem()
{
    static const std::unique_ptr<drawSystem> system = drawSystemMake();
    return *system;
}

std::string drawCanvasName(const testing::TestParamInfo<canvasKind>& kind)
{
    return kind.param == canvasKind::Image ? "Image" : "Compatible";
}

drawCanvas::drawCanvas(canvasKind kind, uint32_t width, uint32_t height)
    : Width_(width),
      Height_(height),
      Image(drawContractSystem().MakeImage(width, height)),
      Base(drawContractSystem().MakeImageTarget(*Image)),
      Target(Base.get())
{
    if (kind == canvasKind::Compatible) {
        uint32_t error = 0;
        Surface = Base->MakeCompatible(static_cast<float>(width), static_cast<float>(height), error);
        Target = Surface.get();
    }
    Resume();
    if (Surface)
        Fill({0, 0, static_cast<float>(width), static_cast<float>(height)}, Black);
}

void drawCanvas::Resume()
{
    for (drawTarget* target : {Base.get(), Surface.get()}) {
        if (target == nullptr)
            continue;
        target->SetDPI(96, 96);
        target->SetTransform({});
        target->SetGrayscaleText();
        target->Begin();
    }
}

std::unique_ptr<drawBrush> drawCanvas::Brush(uint32_t colour, float alpha)
{
    const auto channel = [&](int shift) { return static_cast<float>(colour >> shift & 0xFF) / 255; };
    return Target->MakeBrush({channel(16), channel(8), channel(0), alpha});
}

void drawCanvas::Fill(const drawRect& rect, uint32_t colour, float alpha)
{
    Target->FillRectangle(rect, Brush(colour, alpha).get());
}

void drawCanvas::Finish()
{
    if (Surface) {
        EXPECT_EQ(Surface->End(), 0u);
        const drawRect whole = {0, 0, static_cast<float>(Width_), static_cast<float>(Height_)};
        Base->DrawBitmap(Surface->Content().get(), whole, 1, whole);
    }
    EXPECT_EQ(Base->End(), 0u);
    Pixels_.resize(size_t{Width_} * Height_);
    EXPECT_TRUE(Image->Read(Pixels_));
    for (uint32_t& pixel : Pixels_)
        pixel &= 0xFFFFFF;
}

uint32_t drawCanvas::At(int x, int y) const
{
    return Pixels_.at(static_cast<size_t>(y) * Width_ + static_cast<size_t>(x));
}

inkBox drawCanvas::Ink() const
{
    return Ink({0, 0, Width(), Height()});
}

inkBox drawCanvas::Ink(const inkBox& within) const
{
    inkBox box = {Width(), Height(), 0, 0};
    for (int y = within.Top; y < within.Bottom; ++y) {
        for (int x = within.Left; x < within.Right; ++x) {
            if (At(x, y) != Black)
                box = {std::min(box.Left, x), std::min(box.Top, y), std::max(box.Right, x + 1),
                       std::max(box.Bottom, y + 1)};
        }
    }
    return box;
}

drawMatrix drawTurn(int eighths, float x, float y)
{
    const float angle = static_cast<float>(eighths) * std::numbers::pi_v<float> / 4;
    return {std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), x, y};
}

std::shared_ptr<drawTextFormat> drawTestFormat(float size, bool bold, bool italic)
{
    return drawContractSystem().MakeTextFormat("Open Sans", bold, italic, size);
}

std::unique_ptr<drawTextLayout> drawTestText(std::string_view text, const drawTextFormat& format, float width,
                                             float height)
{
    std::unique_ptr<drawTextLayout> layout = drawContractSystem().MakeTextLayout(text, format, width, height);
    layout->SetNoWrap();
    return layout;
}
