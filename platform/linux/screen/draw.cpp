#include "platform/draw.h"

#include "platform/linux/screen/drawTarget.h"
#include "platform/linux/screen/drawText.h"
#include "platform/linux/screen/drawWindow.h"

#include <cmath>
#include <map>
#include <tuple>

namespace {

constexpr size_t MostFormats = 64;

class cairoSystem final : public drawSystem
{
public:
    explicit cairoSystem(std::shared_ptr<drawFonts> fonts) : Fonts(std::move(fonts)) {}

    // All drawing is done by the processor: the graphics card could win nothing for so few pixels.
    std::unique_ptr<drawTarget> MakeWindowTarget(windowId window, uint32_t width, uint32_t height, bool,
                                                 uint32_t& error) override
    {
        return drawMakeWindowTarget(window, width, height, error);
    }

    std::unique_ptr<drawImage> MakeImage(uint32_t width, uint32_t height) override
    {
        if (width == 0 || height == 0)
            return nullptr;
        cairoOwned<cairo_surface_t> surface = drawMakeSurface(CAIRO_FORMAT_RGB24, width, height);
        return surface ? std::make_unique<cairoImage>(std::move(surface)) : nullptr;
    }

    std::unique_ptr<drawTarget> MakeImageTarget(drawImage& image) override
    {
        cairo_surface_t* surface = static_cast<cairoImage&>(image).Get();
        return std::make_unique<cairoTarget>(cairoOwned<cairo_surface_t>(cairo_surface_reference(surface)));
    }

    std::shared_ptr<drawTextFormat> MakeTextFormat(std::string_view font, bool bold, bool italic,
                                                   float size) override
    {
        if (!(size > 0) || !std::isfinite(size))
            return nullptr;
        const formatKey key = {std::string(font), bold, italic, size};
        if (Formats.size() >= MostFormats && !Formats.contains(key))
            Formats.clear();
        std::shared_ptr<drawTextFormat>& kept = Formats[key];
        if (!kept)
            kept = std::make_shared<pangoFormat>(Fonts, font, bold, italic, size);
        return kept;
    }

    std::unique_ptr<drawTextLayout> MakeTextLayout(std::string_view text, const drawTextFormat& format,
                                                   float width, float height) override
    {
        if (!(width >= 0 && height >= 0))
            return nullptr;
        return std::make_unique<pangoText>(text, static_cast<const pangoFormat&>(format), width, height);
    }

private:
    using formatKey = std::tuple<std::string, bool, bool, float>;

    std::shared_ptr<drawFonts> Fonts;
    // Each control asks for one in each paint, and nobody changes one.
    std::map<formatKey, std::shared_ptr<drawTextFormat>> Formats;
};

}  // namespace

std::unique_ptr<drawSystem> drawSystemMake()
{
    std::shared_ptr<drawFonts> fonts = drawFontsMake();
    return fonts ? std::make_unique<cairoSystem>(std::move(fonts)) : nullptr;
}
