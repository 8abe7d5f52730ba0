#include "platform/draw.h"

#include "platform/win32/screen/drawBitmap.h"
#include "platform/win32/screen/drawTarget.h"
#include "platform/win32/screen/drawText.h"

namespace {

// The thread's right to use objects of the system.
class apartment
{
public:
    apartment() : Result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~apartment()
    {
        if (IsOpen())
            CoUninitialize();
    }
    apartment(const apartment&) = delete;
    apartment& operator=(const apartment&) = delete;

    bool IsOpen() const { return SUCCEEDED(Result); }

private:
    HRESULT Result;
};

class directSystem final : public drawSystem
{
public:
    bool Make() { return Apartment.IsOpen() && Tools.Make(); }

    std::unique_ptr<drawTarget> MakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                 bool hardware, uint32_t& error) override
    {
        const D2D1_RENDER_TARGET_PROPERTIES properties = {hardware ? D2D1_RENDER_TARGET_TYPE_HARDWARE
                                                                   : D2D1_RENDER_TARGET_TYPE_DEFAULT,
                                                          {DXGI_FORMAT_UNKNOWN, D2D1_ALPHA_MODE_UNKNOWN},
                                                          0,
                                                          0,
                                                          D2D1_RENDER_TARGET_USAGE_NONE,
                                                          D2D1_FEATURE_LEVEL_DEFAULT};
        const D2D1_HWND_RENDER_TARGET_PROPERTIES place = {
            reinterpret_cast<HWND>(window), {width, height}, D2D1_PRESENT_OPTIONS_RETAIN_CONTENTS};
        comPointer<ID2D1HwndRenderTarget> target;
        const HRESULT result = Tools.Drawing->CreateHwndRenderTarget(&properties, &place, target.Put());
        if (FAILED(result)) {
            error = drawCode(result);
            return nullptr;
        }
        return std::make_unique<directTarget>(Tools, target);
    }

    std::unique_ptr<drawImage> MakeImage(uint32_t width, uint32_t height) override
    {
        return drawMakeImage(Tools, width, height);
    }

    std::unique_ptr<drawTarget> MakeImageTarget(drawImage& image) override
    {
        constexpr D2D1_RENDER_TARGET_PROPERTIES Properties = {};
        comPointer<ID2D1RenderTarget> target;
        const HRESULT result = Tools.Drawing->CreateWicBitmapRenderTarget(
            static_cast<directImage&>(image).Bitmap.Get(), &Properties, target.Put());
        return SUCCEEDED(result) ? std::make_unique<directTarget>(Tools, std::move(target)) : nullptr;
    }

    std::shared_ptr<drawTextFormat> MakeTextFormat(std::string_view font, bool bold, bool italic,
                                                   float size) override
    {
        return drawMakeFormat(Tools, font, bold, italic, size);
    }

    std::unique_ptr<drawTextLayout> MakeTextLayout(std::string_view text, const drawTextFormat& format,
                                                   float width, float height) override
    {
        return drawMakeLayout(Tools, text, static_cast<const directFormat&>(format), width, height);
    }

private:
    apartment Apartment;  // ends last
    drawTools Tools;
};

}  // namespace

std::unique_ptr<drawSystem> drawSystemMake()
{
    auto system = std::make_unique<directSystem>();
    return system->Make() ? std::move(system) : nullptr;
}
