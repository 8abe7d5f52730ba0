// The one base of everything visible: a native window, or a child control that paints into a surface of its
// own, which is composed onto its parent's.
//
// Threads: all of it belongs to the interface thread, but for Show, Hide, Caption, Name, Invalidate,
// StyleSet, StyleClear and the tests of flags, style and state, which any thread may call on a control that
// is not being deleted meanwhile.
//
// Who deletes what:
// - A parent deletes its child controls, and asks the native windows that it owns to go, in its destructor.
//   Nobody else deletes them but by Destroy, or by deleting a child control outright where no message of it
//   is being handled.
// - A native window is deleted by the pump, when the message that Destroy posted comes and neither a message
//   of that window nor a modal run of it is going on; by the end of Modal, without ctrlKeep; or with the
//   toolkit.
// - Destroy on a child control deletes it at once, also from a handler of its own; but where a window that
//   it owns is in a message, at the end of that message. A handler, and every override, may delete any
//   control: after a call that can run one (OnNotify, OnDoubleClick, KeyEvent, MouseEvent, Focused, Layout,
//   Move, Show, Hide, Modal, the pumps), a control that goes on must first ask a ctrlLife that it took
//   before. This class does so everywhere.
// - Closures on their way to the interface thread name a control by its ctrlLife; those of one that is gone
//   do nothing.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "platform/windowMessages.h"
#include "toolkit/Canvas.h"
#include "toolkit/ctrlCursors.h"
#include "toolkit/ctrlToolkit.h"
#include "toolkit/ctrlWindowBits.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

class ctrlWindow;
class settings;

// Values of colours that are no colours.
constexpr colour colourDefault = -1;
constexpr colour colourParent = -2;
constexpr colour colourParentToo = -3;
constexpr colour colourList = -5;

// Tells whether a control still lives. Taken from it on any thread, asked on the interface thread.
class ctrlLife
{
public:
    explicit ctrlLife(const ctrlWindow* window);
    ctrlWindow* Window() const { return *Life; }  // null when it is gone
    explicit operator bool() const { return *Life != nullptr; }

private:
    std::shared_ptr<ctrlWindow*> Life;
};

class ctrlWindow : public Canvas
{
public:
    // Position and size are those of the client area. A native window stays hidden until Show; when the
    // system refuses it, the debugger is told, and the object lives without a handle.
    ctrlWindow(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);
    ctrlWindow(ctrlWindow* parent, uint32_t flags);  // 10 by 10 at the origin

    // --- The table of virtual operations

    void BrushSelect(drawBrush* brush) override;
    void FontSelect(const std::shared_ptr<drawTextFormat>& format) override;
    ~ctrlWindow() override;
    void Colour(colour value) override;
    void DeviceRelease() override;
    void Text(const rect& area, const char* text, unsigned flags, size_t length = 0,
              const rect* clip = nullptr) override;
    std::string FontName() const override;

    virtual void Activated(bool active);

    // The user closes the frame.
    virtual void CloseRequest();
    virtual void GestureBegin() {}
    virtual void GestureEnd() {}
    virtual void GesturePan(bool first, uint32_t id);
    virtual void Moved() {}
    virtual void StateChanged() {}
    virtual bool Notify(unsigned code);

    // The position is Toolkit().MouseX and MouseY, in this control's coordinates.
    virtual void MouseEvent(MouseEv event, unsigned keys, int delta);
    virtual void Paint();
    virtual void Resize(uint32_t width, uint32_t height);
    virtual int64_t WindowProc(uint32_t message, uint64_t first, int64_t second);
    virtual colour BackColour() const;
    virtual colour ChildBackColour() const { return BackColour(); }

    // Arranges the children; runs at the end of a paint, when they have measured themselves.
    virtual void Layout() {}
    virtual void Enable(bool on);
    virtual void Focused(bool on);
    virtual colour BorderColour() const;
    virtual void BorderWidth(uint32_t width);

    // True when the key was used.
    virtual bool KeyEvent(KeyEv event, uint32_t key);
    virtual void Show();
    virtual void Width(uint32_t width);

    // --- Life

    // Asks for the end of this window: at once for a child control, by the pump for a native window.
    void Destroy();
    void Hide();

    // Runs the window modally and gives the result; with `reset` the result is 0 first. At the end a window
    // without ctrlKeep deletes itself.
    int32_t Modal(bool reset);

    // Ends the run that is going on, when not 0.
    void ModalResult(int32_t result);
    int32_t ModalResult() const { return ModalResult_; }

    // --- Looks

    void Caption(const std::string& text);
    std::string Name() const;
    void Invalidate(bool self);
    void InvalidateTree(bool self);
    void InvalidateLayout();
    void SetBackColour(colour value);
    void SetBorderColour(colour value);
    void BorderStyle(ctrlBorder style);
    void Fade(uint32_t percent);
    void Transparency(float value);

    // --- Place

    using Canvas::Colour;
    using Canvas::Height;
    using Canvas::Width;
    int32_t X() const { return X_; }
    int32_t Y() const { return Y_; }
    void Move(int32_t x, int32_t y, uint32_t width, uint32_t height, bool force = false);
    void Height(uint32_t height);
    void HeightRange(uint32_t least, uint32_t most);  // 0 as the most is no limit
    void WidthRange(uint32_t least, uint32_t most);
    uint32_t LeastWidth() const { return WidthLeast; }
    uint32_t LeastHeight() const { return HeightLeast; }
    uint32_t ClampWidth(uint32_t width) const;  // into its range
    uint32_t ClampHeight(uint32_t height) const;
    void Centre();
    void ChildOrder(ctrlWindow* child, unsigned index);
    bool ScreenPoint(int32_t& x, int32_t& y, windowArea& area) const;
    void PlacementLoad(settings& store);
    void PlacementSave(settings& store);
    uint32_t PreferredWidth() const { return PreferredWidth_; }
    uint32_t PreferredHeight() const { return PreferredHeight_; }

    // --- Frame, style, state

    void FrameStyle(uint8_t set, uint8_t clear);
    uint8_t Frame() const { return Frame_; }
    void StyleSet(uint32_t bits);
    void StyleClear(uint32_t bits);
    bool HasStyle(uint32_t bits) const { return (Style_.load() & bits) != 0; }
    bool HasState(uint32_t bits) const { return (State_.load() & bits) != 0; }
    bool HasFlag(uint32_t bits) const { return (Flags & bits) != 0; }
    bool IsActive() const { return Active; }
    bool IsEnabled() const;
    bool IsVisible() const;

    // --- Input

    void Focus();
    bool HasFocus() const { return Toolkit().Focused == this; }
    void TabNext();
    void TabOrder(uint32_t order) { TabOrder_ = order; }
    void CaptureTake();
    void CaptureRelease();
    bool CaptureHeld() const;
    bool CaptureHeldBelow() const;  // by this control, or by one in it
    static void Cursor(uint8_t id);

    // --- Tree

    ctrlWindow* Root();
    const ctrlWindow* Root() const;
    ctrlWindow* Parent() const { return Parent_; }
    ctrlWindow* FirstChild() const { return FirstChild_; }
    ctrlWindow* NextSibling() const { return NextSibling_; }
    windowId Handle() const { return Handle_; }

    std::function<bool(unsigned code)> OnNotify;
    std::function<void()> OnDoubleClick;

    // --- For the toolkit

    static int64_t Receive(const windowMessage& message);

    // Gives a mouse event, with its position in this control's coordinates, to the control that it is for. A
    // press comes after a move where that control has not heard of the mouse.
    void Route(MouseEv event, unsigned keys, int32_t x, int32_t y, int delta);
    bool IsPaintOverdue(int64_t askedBefore) const;
    void PaintOverdue();
    bool MayBeDeleted() const;

protected:
    // Sets bits, or clears them; what was there before.
    uint32_t StateSet(uint32_t bits) { return State_.fetch_or(bits); }
    uint32_t StateClear(uint32_t bits) { return State_.fetch_and(~bits); }

    // Stores style bits without a repaint.
    void StyleStore(uint32_t set, uint32_t clear)
    {
        Style_.fetch_or(set);
        Style_.fetch_and(~clear);
    }
    bool IsShown() const { return HasState(stateVisible); }

    // --- For Paint

    // Draws a border inside of `area` and takes it off.
    void Border(ctrlBorder style, uint32_t width, colour value, rect& area);
    void RectFillClipped(const rect& area);
    void RectFillClippedF(float left, float top, float right, float bottom);
    void DropArrow();
    void ColourEnabled(colour value, bool mindEnabled);

    // What the border takes on each side.
    uint32_t BorderThickness() const;

    rect PaintRect;  // what is still free to paint in
    uint32_t PreferredHeight_ = 0;
    uint32_t PreferredWidth_ = 0;
    const uint32_t Flags;
    ctrlBorder BorderStyle_ = ctrlBorder::None;
    uint32_t BorderWidth_ = 1;
    colour BackColour_ = colourDefault;
    colour BorderColour_ = colourDefault;

private:
    friend class ctrlLife;

    bool IsChild() const { return Parent_ && !HasFlag(ctrlFloating); }

    // --- Life (ctrlWindow.cpp)

    void MakeNative(uint32_t width, uint32_t height, const void* caller);
    void PlaceFirst(uint32_t width, uint32_t height);
    void LinkChild();
    void Unlink();
    void ForgetInput();
    bool EndOwnedRuns();
    void RunEnded();
    static void Close(ctrlWindow* window);
    void PostToSelf(void (*action)(ctrlWindow& window));
    uint32_t FrameDPI() const;
    windowExtent FrameThickness() const;

    // --- Showing (ctrlWindowShow.cpp)

    void ShowNative();
    void ShowChild();
    void MaximiseFirst();
    void ModalBegin();
    void ModalEnd();
    void EnableOthers(bool on) const;

    // --- Place (ctrlWindowPlace.cpp)

    rect Area() const;     // in the parent's coordinates
    rect Surface() const;  // from 0, 0
    void PlaceNative(const windowEdges& client);
    void StoreSize(uint32_t width, uint32_t height);
    void FollowParent(int32_t widthChange, int32_t heightChange);

    // --- Marks (ctrlWindowInvalidate.cpp)

    ctrlWindow* InvalidateWalk(bool self);
    bool CoverTest();
    void CoverTestLater();
    rect CoverArea() const;
    bool IsShownInShown() const;
    void AskPaint();

    // --- Painting (ctrlWindowPaint.cpp, ctrlWindowBorder.cpp)

    int64_t OnPaint();
    void PaintTree();
    void PaintFailed();
    void PaintLater();
    bool MakeTarget();
    void MakeWindowTarget();
    uint32_t FadeInherited() const;
    void PaintSelf();
    bool PaintChildren(bool all);
    void PaintEnd();
    void Compose();
    void FillIn(const rect& clip, const rect& area);
    void BorderRings(uint32_t width, colour value, rect& area, const rect& clip, bool raised);
    void BorderFlat(uint32_t width, colour value, rect& area, const rect& clip);

    // --- Messages (ctrlWindowMessages.cpp)

    int64_t Default(uint32_t message, uint64_t first, int64_t second);
    int64_t OnMove(uint64_t first, int64_t second);
    int64_t OnSize(uint64_t first, int64_t second);
    int64_t OnActivate(uint64_t first, int64_t second);
    int64_t OnSetFocus();
    int64_t OnKillFocus();
    int64_t OnShowWindow(uint64_t first, int64_t second);
    int64_t OnSizeLimits(int64_t second);
    int64_t OnPosChanging(uint64_t first, int64_t second);
    int64_t OnFrameMove(uint64_t first, int64_t second);
    int64_t OnKey(KeyEv event, uint32_t message, uint64_t first, int64_t second);
    int64_t OnChar(uint64_t first, int64_t second);
    int64_t OnSysCommand(uint64_t first, int64_t second);
    int64_t OnGesture(uint64_t first, int64_t second);
    int64_t OnMouseMove(uint64_t first, int64_t second);
    int64_t OnFrameOrInput(uint32_t message, uint64_t first, int64_t second);
    int64_t OnButton(uint32_t message, uint64_t first, int64_t second);
    int64_t OnMouse(MouseEv event, uint64_t first, int64_t second);
    int64_t OnLeftDouble(uint64_t first, int64_t second);
    int64_t OnWheel(uint64_t first, int64_t second);
    int64_t OnSizing(uint64_t first, int64_t second);
    int64_t OnScaledSize(int64_t second);

    // --- Mouse, focus, capture (ctrlWindowInput.cpp)

    bool DeliverKey(KeyEv event, uint32_t key);
    ctrlWindow* HitTest(int32_t& x, int32_t& y);
    ctrlWindow* RouteTarget(int32_t& x, int32_t& y);
    static void Deliver(ctrlWindow* target, MouseEv event, unsigned keys, int32_t x, int32_t y, int delta);
    void FocusByPress(ctrlWindow* target);
    bool IsBelow(const ctrlWindow* ancestor) const;
    bool IsStop() const;

    std::atomic<int64_t> InvalidateTime{0};  // when a paint was asked for, of the steady clock
    std::atomic<bool> PaintAgain{false};     // the last paint failed, and another is to be tried
    bool InPaint = false;                    // a paint of this native window is going on
    bool DestroyWaits = false;               // for the end of modal runs
    ctrlWindow* GestureTarget = nullptr;     // of a native window
    ctrlWindow* CaptureHolder = nullptr;     // of a native window
    uint32_t InheritedFade = 0;              // percent
    int32_t ModalResult_ = -1;
    std::atomic<uint32_t> Style_{0};
    uint8_t Frame_ = 0;
    bool Active = false;
    std::atomic<bool> Enabled{true};
    uint32_t Fade_ = 0;  // percent
    uint32_t HeightMost = 0;
    uint32_t HeightLeast = 0;
    int32_t X_ = 0;
    uint32_t RestoredHeight = 0;
    int32_t RestoredX = 0;
    int32_t RestoredY = 0;
    uint32_t RestoredWidth = 0;
    std::atomic<uint32_t> State_{stateDirty | stateLayout | stateNeverShown};
    uint32_t TabOrder_ = 0;  // 0 is no stop
    int32_t Y_ = 0;
    float Transparency_ = 0.0F;
    uint32_t WidthMost = 0;
    uint32_t WidthLeast = 0;
    ctrlWindow* FirstChild_ = nullptr;
    ctrlWindow* NextSibling_ = nullptr;
    ctrlWindow* FirstOwned = nullptr;
    ctrlWindow* const Parent_;
    std::string Name_ = "Untitled";  // under NameLock: other threads set it
    mutable thrSpin NameLock;
    windowId Handle_ = 0;
    std::shared_ptr<ctrlWindow*> Life;
};
