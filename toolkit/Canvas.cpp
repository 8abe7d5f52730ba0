#include "toolkit/Canvas.h"

#include "foundations/fatal/crashFatal.h"
#include "foundations/text/utfField.h"
#include "toolkit/ctrlToolkit.h"
#include "toolkit/drawing.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr float colourUnit = 0.003921569F;  // 1 / 255
constexpr float pixelDPI = 96.0F;           // makes units of the target pixels

drawColour drawColourOf(colour value, float opacity)
{
    const auto bits = static_cast<uint32_t>(value);
    const auto channel = [bits](unsigned shift) {
        return static_cast<float>(bits >> shift & 0xFF) * colourUnit;
    };
    return {channel(0), channel(8), channel(16), opacity};
}

}  // namespace

Canvas::~Canvas() = default;

void Canvas::BrushSelect(drawBrush* brush)
{
    if (Brush)
        return;
    if (brush) {
        Brush = brush;
        return;
    }
    const auto found = std::find_if(BrushCache.begin(), BrushCache.end(), [this](const cachedBrush& cached) {
        return cached.Colour == Colour_ && cached.Opacity == Opacity_;
    });
    if (found != BrushCache.end()) {
        Brush = found->Brush.get();
        return;
    }
    if (!Target)
        return;
    auto made = Target->MakeBrush(drawColourOf(Colour_, Opacity_));
    if (!made)
        return;
    Brush = made.get();
    BrushCache.push_back({std::move(made), Colour_, Opacity_});
}

void Canvas::FontSelect(const std::shared_ptr<drawTextFormat>& format)
{
    if (TextFormat)
        return;
    if (format)
        TextFormat = format;
    else
        FormatMake(FontSize_);
}

void Canvas::FormatMake(float size)
{
    drawSystem* drawing = Drawing();
    if (TextFormat || !drawing)
        return;
    const bool bold = (FontStyle_ & fontBold) != 0;
    const bool italic = (FontStyle_ & fontItalic) != 0;
    TextFormat = drawing->MakeTextFormat(FontName(), bold, italic, size);
}

void Canvas::Colour(colour value)
{
    if (Colour_ == value)
        return;
    Colour_ = value;
    Brush = nullptr;
}

void Canvas::DeviceRelease()
{
    PopAllClips();
    Brush = nullptr;
    BrushCache.clear();
    TextFormat.reset();
    Target.reset();
    Image.reset();
}

std::string Canvas::FontName() const
{
    return FontName_.empty() ? std::string(canvasFontName) : FontName_;
}

void Canvas::Opacity(float value)
{
    const float kept = std::clamp(value, 0.0F, 1.0F);
    if (Opacity_ == kept)
        return;
    Opacity_ = kept;
    Brush = nullptr;
}

void Canvas::FontSize(float value)
{
    if (FontSize_ == value)
        return;
    FontSize_ = value;
    TextFormat.reset();
}

void Canvas::FontStyle(uint8_t bits)
{
    if (FontStyle_ == bits)
        return;
    FontStyle_ = bits;
    TextFormat.reset();
}

void Canvas::SetFontName(const std::string& name)
{
    if (FontName_ == name)
        return;
    FontName_ = name;
    TextFormat.reset();
}

void Canvas::FontCopy(const Canvas& other)
{
    SetFontName(other.FontName());
    FontSize(other.FontSize_);
    FontStyle(other.FontStyle_);
}

void Canvas::SurfaceSize(uint32_t width, uint32_t height)
{
    Width_ = width;
    Height_ = height;
}

void Canvas::TargetTake(std::unique_ptr<drawTarget> target, canvasTarget kind)
{
    Target = std::move(target);
    if (!Target)
        return;
    TargetKind_ = kind;
    Target->SetTransform({});
    Target->SetGrayscaleText();
}

void Canvas::TargetCreate(Canvas* parent)
{
    if (Target)
        return;
    if (parent) {
        uint32_t code = 0;
        if (parent->Target)
            TargetTake(
                parent->Target->MakeCompatible(static_cast<float>(Width_), static_cast<float>(Height_), code),
                canvasTarget::Compatible);
        if (!Target) {
            char text[128];
            std::snprintf(text, sizeof text,
                          "Can't create compatible render target!\nImage size: %ux%u\nError code: %08X",
                          Width_, Height_, code);
            Toolkit().Windows().Alert("Canvas Fatal Error", text);
        }
        return;
    }
    drawSystem* drawing = Drawing();
    if (!drawing)
        return;
    Image = drawing->MakeImage(Width_, Height_);
    if (Image)
        TargetTake(drawing->MakeImageTarget(*Image), canvasTarget::Image);
    if (!Target)
        Image.reset();
}

void Canvas::BeginDraw()
{
    if (!Target)
        return;
    Target->SetDPI(pixelDPI, pixelDPI);
    Target->SetTransform({});
    Target->Begin();
}

void Canvas::EndDraw()
{
    Brush = nullptr;
    BrushCache.clear();
    TextFormat.reset();
    if (Target && Target->End() == drawTargetLost)
        DeviceRelease();
}

bool Canvas::Read(std::vector<uint32_t>& pixels) const
{
    if (!Image)
        return false;
    pixels.resize(size_t{Width_} * Height_);
    if (!Image->Read(pixels))
        return false;
    for (uint32_t& pixel : pixels)
        pixel &= 0xFFFFFF;
    return true;
}

void Canvas::ClipPush(const rect& clip)
{
    ++ClipDepth;
    if (Target)
        Target->PushClip({static_cast<float>(clip.Left), static_cast<float>(clip.Top),
                          static_cast<float>(clip.Right), static_cast<float>(clip.Bottom)});
}

void Canvas::ClipPop()
{
    if (ClipDepth == 0) {
        crashFatal("Canvas::ClipPop - No clip to pop!");
        return;
    }
    --ClipDepth;
    if (Target)
        Target->PopClip();
}

void Canvas::PopAllClips()
{
    while (ClipDepth > 0)
        ClipPop();
}
