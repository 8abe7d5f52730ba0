#include "platform/draw.h"

#include "tests/fakes/drawObjects.h"
#include "tests/fakes/drawTarget.h"
#include "tests/fakes/fakeDraws.h"

namespace fakes {

namespace {

class recordingDrawing final : public drawSystem
{
public:
    std::unique_ptr<drawTarget> MakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                 bool hardware, uint32_t& error) override
    {
        if (drawFails("drawMakeWindowTarget")) {
            error = fakeDrawError;
            return nullptr;
        }
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        return drawTargetMake(drawTargetKind::Window,
                              "on " + std::to_string(window) + " " + size + (hardware ? " hardware" : ""))
            .Target;
    }
    std::unique_ptr<drawImage> MakeImage(uint32_t width, uint32_t height) override
    {
        if (drawFails("drawMakeImage") || width == 0 || height == 0)
            return nullptr;
        return std::make_unique<fakeImage>(width, height);
    }
    std::unique_ptr<drawTarget> MakeImageTarget(drawImage& image) override
    {
        if (drawFails("drawMakeImageTarget"))
            return nullptr;
        auto& own = static_cast<fakeImage&>(image);
        drawTargetMade made = drawTargetMake(drawTargetKind::Image,
                                             std::to_string(own.Width) + "x" + std::to_string(own.Height));
        own.Target = made.Number;
        return std::move(made.Target);
    }
    std::shared_ptr<drawTextFormat> MakeTextFormat(std::string_view /*font*/, bool bold, bool italic,
                                                   float size) override
    {
        if (drawFails("drawMakeTextFormat"))
            return nullptr;
        ++drawn().Formats;
        return std::make_shared<fakeFormat>(bold, italic, size);
    }
    std::unique_ptr<drawTextLayout> MakeTextLayout(std::string_view text, const drawTextFormat& format,
                                                   float width, float height) override
    {
        if (drawFails("drawMakeTextLayout"))
            return nullptr;
        return std::make_unique<fakeLayout>(text, static_cast<const fakeFormat&>(format), width, height);
    }
};

}  // namespace

}  // namespace fakes

std::unique_ptr<drawSystem> drawSystemMake()
{
    return std::make_unique<fakes::recordingDrawing>();
}
