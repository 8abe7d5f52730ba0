#include "platform/linux/screen/drawWindow.h"

#include "platform/linux/screen/drawShared.h"
#include "platform/linux/screen/drawTarget.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <unordered_map>

namespace {

// Beyond this many pieces one request for all is cheaper.
constexpr int MostParts = 16;

class windowTarget final : public cairoTarget
{
public:
    windowTarget(windowId window, std::unique_ptr<drawShared> pixels);
    ~windowTarget() override;

    void Begin() override;
    uint32_t End() override;

protected:
    void Touched(const drawRect& box) override;

private:
    static void Exposed(void* context, int x, int y, int width, int height);
    void Damage(const cairo_rectangle_int_t& part);
    void ShowDamage();

    windowId Window;
    std::unique_ptr<drawShared> Pixels;
    cairoOwned<cairo_region_t> Damaged;
};

// Which target the window's exposures go to: the one that was made last.
std::unordered_map<windowId, windowTarget*>& targets()
{
    static std::unordered_map<windowId, windowTarget*> only;
    return only;
}

cairo_rectangle_int_t pixelsOf(const drawRect& box, const cairo_rectangle_int_t& whole)
{
    const auto cut = [](float value, int limit) {
        return static_cast<int>(std::clamp(value, 0.0f, static_cast<float>(limit)));
    };
    const int left = cut(std::floor(box.Left), whole.width);
    const int top = cut(std::floor(box.Top), whole.height);
    return {left, top, cut(std::ceil(box.Right), whole.width) - left,
            cut(std::ceil(box.Bottom), whole.height) - top};
}

cairo_rectangle_int_t wholeOf(cairo_surface_t* surface)
{
    return {0, 0, cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
}

windowTarget::windowTarget(windowId window, std::unique_ptr<drawShared> pixels)
    : cairoTarget(cairoOwned<cairo_surface_t>(cairo_surface_reference(pixels->Surface()))),
      Window(window),
      Pixels(std::move(pixels)),
      Damaged(cairo_region_create())
{
    targets()[Window] = this;
    windowOnExpose(Window, Exposed, this);
    // The window has nothing of this surface yet.
    Damage(wholeOf(Surface()));
}

windowTarget::~windowTarget()
{
    const auto at = targets().find(Window);
    if (at == targets().end() || at->second != this)
        return;
    targets().erase(at);
    windowOnExpose(Window, nullptr, nullptr);
}

void windowTarget::Begin()
{
    Pixels->Await();
    cairoTarget::Begin();
}

uint32_t windowTarget::End()
{
    const uint32_t error = cairoTarget::End();
    windowSurface surface;
    if (!windowSurfaceOf(Window, surface))
        return drawTargetLost;
    ShowDamage();
    return error;
}

void windowTarget::Touched(const drawRect& box)
{
    Damage(pixelsOf(box, wholeOf(Surface())));
}

void windowTarget::Damage(const cairo_rectangle_int_t& part)
{
    if (part.width > 0 && part.height > 0)
        cairo_region_union_rectangle(Damaged.get(), &part);
}

void windowTarget::Exposed(void* context, int x, int y, int width, int height)
{
    windowTarget* target = static_cast<windowTarget*>(context);
    const drawRect box = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(x + width),
                          static_cast<float>(y + height)};
    target->Touched(box);
    if (!target->IsDrawing())
        target->ShowDamage();
}

void windowTarget::ShowDamage()
{
    const int count = cairo_region_num_rectangles(Damaged.get());
    if (count == 0)
        return;
    cairo_rectangle_int_t part;
    if (count > MostParts) {
        cairo_region_get_extents(Damaged.get(), &part);
        Pixels->Show(part);
    }
    for (int index = 0; index < count && count <= MostParts; ++index) {
        cairo_region_get_rectangle(Damaged.get(), index, &part);
        Pixels->Show(part);
    }
    Pixels->Commit();
    Damaged.reset(cairo_region_create());
}

}  // namespace

std::unique_ptr<drawTarget> drawMakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                 uint32_t& error)
{
    windowSurface surface;
    if (!windowSurfaceOf(window, surface)) {
        error = ENXIO;
        return nullptr;
    }
    std::unique_ptr<drawShared> pixels = drawShared::Make(surface, width, height);
    if (!pixels) {
        error = ENOMEM;
        return nullptr;
    }
    return std::make_unique<windowTarget>(window, std::move(pixels));
}
