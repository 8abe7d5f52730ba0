// From what was marked to the screen: only what changed is drawn again.
#include "platform/clock.h"
#include "toolkit/ctrlWindow.h"
#include "toolkit/drawing.h"

#include <cinttypes>
#include <cstdio>
#include <vector>

namespace {

constexpr float scalePerDPI = 0.010416667F;  // 1 / 96
constexpr uint32_t percent = 100;

}  // namespace

int64_t ctrlWindow::OnPaint()
{
    ctrlToolkit& toolkit = Toolkit();
    toolkit.Windows().PaintDone(Handle_);
    // A handler that runs within a paint may pump, but a surface draws one picture at a time.
    if (InPaint) {
        PaintLater();
        return 0;
    }
    toolkit.Scale =
        HasFlag(ctrlPerMonitor) ? static_cast<float>(toolkit.Windows().DPI(Handle_)) * scalePerDPI : 1.0F;
    const ctrlLife life(this);
    InPaint = true;
    PaintTree();
    if (life)
        InPaint = false;
    return 0;
}

// Another paint is asked for by the pump, after a while.
void ctrlWindow::PaintLater()
{
    StateSet(statePaintAsked);
    InvalidateTime = clockSteadyNs();
    PaintAgain = true;
}

void ctrlWindow::PaintTree()
{
    if (HasState(stateClosing))
        return;
    const ctrlLife life(this);
    if (!MakeTarget()) {
        PaintFailed();
        return;
    }
    BeginDraw();
    StateClear(statePaintAsked);
    InheritedFade = FadeInherited();
    const bool dirty = (StateClear(stateDirty) & stateDirty) != 0;
    bool whole = true;
    if (dirty || HasState(stateFresh)) {
        PaintSelf();
        if (!life)
            return;
        if (Target) {
            StateClear(stateChildren | stateDirtyBelow);
            whole = PaintChildren(true);
        }
    } else if (StateClear(stateChildren | stateDirtyBelow) & (stateChildren | stateDirtyBelow)) {
        whole = PaintChildren(false);
    }
    if (!life)
        return;
    PaintEnd();
    if (life && (!Target || !whole))
        Invalidate(true);
}

bool ctrlWindow::MakeTarget()
{
    if (TargetKind_ != canvasTarget::Image)
        StateClear(stateFresh);
    if (Target)
        return true;
    if (Handle_)
        MakeWindowTarget();
    else
        TargetCreate(Parent_);
    StateSet(stateFresh);
    return Target != nullptr;
}

void ctrlWindow::MakeWindowTarget()
{
    drawSystem* drawing = Drawing();
    uint32_t code = 0;
    for (const bool hardware : {true, false}) {
        if (drawing && !Target)
            TargetTake(drawing->MakeWindowTarget(Handle_, Width(), Height(), hardware, code),
                       canvasTarget::Window);
    }
    if (Target)
        return;
    char text[512];
    std::snprintf(text, sizeof text,
                  "Can't create compatible render target bitmap for painting!\nImage size: %" PRIu32
                  "x%" PRIu32 " (with handle)\nControl name: %s\nError code: 0x%08" PRIX32,
                  Width(), Height(), Name().c_str(), code);
    Toolkit().Windows().Alert("ctrlWindow Fatal Error", text);
}

// Not by Invalidate: a system that cannot make a target now would be asked again without end.
void ctrlWindow::PaintFailed()
{
    StateSet(stateDirty);
    ctrlWindow* root = Root();
    for (ctrlWindow* at = this; at != root; at = at->Parent_)
        at->Parent_->StateSet(stateDirtyBelow);
    root->PaintLater();
}

uint32_t ctrlWindow::FadeInherited() const
{
    uint32_t fade = Fade_;
    for (const ctrlWindow* at = this; at->Parent_ && !at->HasFlag(ctrlFloating);) {
        at = at->Parent_;
        if (at->Fade_)
            fade = percent - (percent - fade) * (percent - at->Fade_) / percent;
    }
    return fade;
}

void ctrlWindow::PaintSelf()
{
    const ctrlLife life(this);
    StateSet(statePainting);
    PaintRect = Surface();
    Paint();
    if (!life)
        return;
    Notify(notifyPainted);
    if (!life)
        return;
    PopAllClips();
    StateClear(statePainting);
}

// Paints the visible children, all or those that need it and what lies over them. False when a child went
// meanwhile and the others were left out.
bool ctrlWindow::PaintChildren(bool all)
{
    const ctrlLife life(this);
    std::vector<rect> painted;
    for (ctrlWindow* child = FirstChild_; child;) {
        const rect area = child->Area();
        bool wanted = child->IsShown() && !child->HasState(stateClosing) && rectMeet(area, Surface());
        if (wanted && !all && !child->HasState(stateDirty | stateDirtyBelow)) {
            wanted = false;
            for (const rect& one : painted)
                wanted = wanted || rectMeet(one, area);
        }
        if (wanted) {
            const ctrlLife childLife(child);
            child->PaintTree();
            if (!life || !childLife)
                return false;
            if (!Target)
                return true;
            painted.push_back(area);
        }
        child = child->NextSibling_;
    }
    return true;
}

void ctrlWindow::PaintEnd()
{
    const ctrlLife life(this);
    if (Target && (StateClear(stateLayout) & stateLayout))
        Layout();
    if (!life)
        return;
    EndDraw();
    if (Target && !Handle_ && Parent_ && TargetKind_ == canvasTarget::Compatible)
        Compose();
}

void ctrlWindow::Compose()
{
    if (!Parent_->Target)
        return;
    const auto content = Target->Content();
    const auto width = static_cast<float>(Width());
    const auto height = static_cast<float>(Height());
    const auto x = static_cast<float>(X_);
    const auto y = static_cast<float>(Y_);
    Parent_->Target->DrawBitmap(content.get(), {x, y, x + width, y + height}, 1.0F - Transparency_,
                                {0, 0, width, height});
}

void ctrlWindow::BrushSelect(drawBrush* brush)
{
    if (!brush && !Brush) {
        // Targets of one native window share their brushes.
        for (const ctrlWindow* at = this; !brush && at->Parent_ && !at->Handle_;) {
            at = at->Parent_;
            if (at->Brush && at->Colour_ == Colour_ && at->Opacity_ == Opacity_)
                brush = at->Brush;
        }
    }
    Canvas::BrushSelect(brush);
}

void ctrlWindow::FontSelect(const std::shared_ptr<drawTextFormat>& format)
{
    if (TextFormat)
        return;
    if (format) {
        Canvas::FontSelect(format);
        return;
    }
    const std::string name = FontName();
    for (const ctrlWindow* at = Parent_; at; at = at->Parent_) {
        if (!at->TextFormat) {
            if (at->HasFlag(ctrlFloating))
                break;
            continue;
        }
        if (at->FontStyle_ == FontStyle_ && at->FontSize_ == FontSize_ && at->FontName() == name) {
            Canvas::FontSelect(at->TextFormat);
            return;
        }
    }
    FormatMake(FontSize_ * Toolkit().Scale);
}

std::string ctrlWindow::FontName() const
{
    if (!FontName_.empty())
        return FontName_;
    return Parent_ ? Parent_->FontName() : Canvas::FontName();
}

void ctrlWindow::DeviceRelease()
{
    for (ctrlWindow* child = FirstChild_; child; child = child->NextSibling_)
        child->DeviceRelease();
    Canvas::DeviceRelease();
}

void ctrlWindow::Text(const rect& area, const char* text, unsigned flags, size_t length, const rect* clip)
{
    Canvas::Text(area, text, flags, length, clip ? clip : &PaintRect);
}
