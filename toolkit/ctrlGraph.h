// The ground that graphs share: two axes, their cursors, and the frame of labels, ticks and grid around the
// plot box.
//
// Threads: ranges, extents, origins and units may be set on any thread; cursors are added, moved and removed,
// and links attached, on the interface thread. Lock guards the axes and the traces, and is held while they
// are painted; no handler runs under it. A cursor is changed only with the locks of all graphs of its link.
//
// Graphs on one link have its cursors in common; each has a range of its own. A link, or a group of cursors,
// dies with its last graph, unless it is told to stay; then its owner deletes it, before or after its graphs.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Creation flag of graphs.
enum : uint32_t {
    graphUpright = 0x100,  // samples run along the vertical axis
};

// Style bits of graphs.
enum : uint32_t {
    graphCursorsFree = 0x200,  // does not limit where cursors may stand, nor move them with its X range
    graphSmooth = 0x800,
    graphLog = 0x4000,          // samples are shown as DbFactor times their decimal logarithm
    graphExp = 0x8000,          // the way back; with both, samples show as they came
    graphLines = 0x10000,       // samples are joined by lines
    graphPoints = 0x20000,      // samples are points, where these have a width
    graphStems = 0x40000,       // samples stand on the lower end of their axis
    graphDifference = 0x80000,  // samples show as what they differ by from the one before
    graphSteps = 0x100000,      // a sample holds until the next; with graphLines
};

// State bits of graphs.
enum : uint32_t {
    stateRedrawFrame = 0x8000,
    stateRedrawTraces = 0x10000,
};

// Bits of ctrlGraph::Axis::Flags.
enum : uint32_t {
    axisInside = 1,    // labels stand in the plot
    axisLabels = 2,    // there are labels
    axisPrefixes = 4,  // labels have SI prefixes
};

// Bits of the flags of links and groups.
enum : uint32_t {
    linkVertical = 1,
    linkKeep = 2,  // stays alive without graphs
};

// Bits of ctrlGraph::Cursor::Flags.
enum : uint32_t {
    cursorHidden = 1,
    cursorValue = 2,  // the label shows the position
    cursorFixed = 8,  // the mouse does not move it
};

class ctrlGraph : public ctrlWindow
{
public:
    struct Axis {
        double Maximum = 0;
        double Minimum = 0;
        std::string Unit;
        uint32_t Flags = 0;
        double FullExtent = 0;  // the length of the axis when the view is not zoomed
        double Origin = 0;      // where the samples begin
    };

    struct Cursor {
        double Position = 0;
        uint32_t Id = 0;
        colour Colour = colourDefault;
        std::string Label;
        uint32_t Flags = 0;

        // Gives the label's text, and may give a colour. Runs on the interface thread, before the paint takes
        // any lock, and may do anything.
        std::function<void(const Cursor& cursor, std::string& text, colour& shade)> OnText;
    };

    // One axis of one or more graphs, with the cursors that stand on it.
    class AxisLink
    {
    public:
        explicit AxisLink(uint32_t flags) : Flags(flags) {}
        AxisLink(const AxisLink&) = delete;
        AxisLink& operator=(const AxisLink&) = delete;
        ~AxisLink();  // gives graphs that are left a link of their own

        // At the beginning of the first graph's range, in its colour. Belongs to the link.
        Cursor* AddCursor(bool repaint);

        // Into the union of the ranges of the graphs that limit it. A position that is no finite number, and
        // cannot be brought into such a range, moves nothing; nor does one that is no number.
        void MoveCursor(Cursor* cursor, double position, bool repaint);
        void RemoveCursor(Cursor* cursor, bool repaint);
        bool Has(const Cursor* cursor) const;

        std::vector<std::unique_ptr<Cursor>> Cursors;  // by position
        std::vector<ctrlGraph*> Graphs;
        const uint32_t Flags;

    private:
        friend class ctrlGraph;
        bool IsVertical() const { return (Flags & linkVertical) != 0; }
        double Limited(double position) const;
        void Limit();  // all cursors
        void Sort();
        void Repaint() const;
        void EndIfLeft();
        bool Dying = false;
    };

    // Graphs whose cursors have ids of one count.
    class CursorGroup
    {
    public:
        explicit CursorGroup(uint32_t flags) : Flags(flags) {}
        CursorGroup(const CursorGroup&) = delete;
        CursorGroup& operator=(const CursorGroup&) = delete;
        ~CursorGroup();

        std::vector<ctrlGraph*> Graphs;
        const uint32_t Flags;
        uint32_t LastId = 0;

    private:
        friend class ctrlGraph;
        bool Dying = false;
    };

    struct Series;

    ctrlGraph(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);
    ~ctrlGraph() override;

    // Draws all traces again. Any thread.
    virtual void Invalidate();
    virtual Series* SeriesById(unsigned id);

    // A range that is reversed is a fatal fault; one without length becomes one wider on both sides; one that
    // is not of finite numbers, or not of a finite length, changes nothing.
    virtual void SetRangeX(double min, double max);

    using ctrlWindow::Invalidate;
    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    colour BackColour() const override;

    void SetRangeY(double min, double max);

    // With `keepView` a range that ended with the old extent ends with the new one.
    void SetExtentX(double extent, bool keepView);
    void SetOriginX(double origin);
    void SetUnit(Axis& axis, const std::string& unit);
    void SetAxisFlags(Axis& axis, bool labels, bool prefixes, bool inside);
    void SetLabelColour(colour value);
    void SetGridColour(colour value);
    void SetCursorColour(colour value);
    void SetDbFactor(float value);   // of what is pushed from now on
    void SetSmoothCut(float value);  // in turns per sample
    void SetStyle(uint32_t bits);

    // Leaves the former link or group. A link of the wrong direction is a fatal fault.
    void AttachX(AxisLink* link);
    void AttachY(AxisLink* link);
    void AttachCursors(CursorGroup* group);

    // The text of a value on an axis whose values are `step` apart; a step of 0 means six decimals.
    static std::string AxisLabel(const Axis& axis, double value, double step);
    static bool IsMajorTick(double position, double step);

    // The power of ten in which a value can be read off the vertical axis.
    double VerticalStep() const;

    AxisLink* AxisLinkX = nullptr;
    AxisLink* AxisLinkY = nullptr;
    float PlotHeight = 1.0F;  // pixels from the plot's lowest row to its highest
    uint32_t PlotWidth = 1;   // the same across
    colour LabelColour = colourDefault;
    Axis AxisX;
    Axis AxisY;
    CursorGroup* Cursors = nullptr;
    mutable thrSpin Lock;
    colour GridColour = colourDefault;
    float DbFactor = 20.0F;
    colour CursorColour = colourDefault;
    float SmoothCut = 1000.0F;

protected:
    struct tickRoom {
        uint32_t Gap;    // the least distance of ticks, and between labels, in pixels before scaling
        uint32_t Major;  // the length of a tick
        uint32_t Minor;
    };

    // Sets bits, and asks for a paint if one of them is new.
    void Redraw(uint32_t bits);
    void RedrawAxis(const Axis& axis);
    bool HasLabels(const Axis& axis) const;

    // --- For Paint, under Lock

    // What handlers say of cursors, asked for before the lock is taken. False when one of them deleted the
    // graph.
    bool AskCursors();
    bool IsFrameStale(uint32_t bits) const;
    void BuildFrame(const tickRoom& across, const tickRoom& up);
    void DrawPlot();
    void DrawLabels();
    void DrawCursors();
    rect Box{};  // the plot, within the control

private:
    struct tick {
        int32_t At = 0;  // the pixel, across or down
        bool Major = false;
        std::string Text;
        rect Area{};  // of the text
    };
    struct answer {
        uint32_t Id;
        std::string Text;
        colour Shade;
    };
    struct frame {
        uint32_t Width = 0, Height = 0;
        float Scale = 0;
        rect Area{};  // inside the border
        std::vector<tick> Across;
        std::vector<tick> Up;
        uint32_t TextHeight = 0;
    };

    bool Prepare(double& min, double& max, const char* reversed) const;
    void SetRange(AxisLink* const ctrlGraph::*link, Axis ctrlGraph::*axis, double min, double max);
    void AttachOwnX();  // of no other graph
    void AttachOwnY();
    void AttachOwnCursors();
    void Attach(AxisLink* ctrlGraph::*place, AxisLink* link);
    void Detach(AxisLink* ctrlGraph::*place);
    void Leave(AxisLink& link);  // under both locks
    void SetShade(colour& place, colour value);
    static colour Shade(colour wanted, colour otherwise) { return wanted < 0 ? otherwise : wanted; }

    int32_t PixelX(double value) const;
    int32_t PixelY(double value) const;
    std::vector<tick> Ticks(const Axis& axis, const tickRoom& room, bool up);
    double LabelStep(const Axis& axis, const tickRoom& room, bool up);
    bool LabelsFit(const Axis& axis, double step, const tickRoom& room, bool up);
    void ReserveUp();
    void PlaceLabelsUp();
    void PlaceLabelsAcross();
    void DropPushed();
    void DropCrowded();
    void DrawGrid(const std::vector<tick>& ticks, bool up);
    void DrawTicks(const std::vector<tick>& ticks, const tickRoom& room, bool up);
    void DrawLabel(const tick& one, bool inside);

    void DrawCursor(const Cursor& cursor, bool up, std::vector<rect>& taken);
    std::string CursorText(const Cursor& cursor, bool up, colour& shade) const;
    rect CursorLabelArea(int32_t at, bool up, const textSize& size, const std::vector<rect>& taken) const;
    Cursor* CursorAt(int32_t x, int32_t y, bool& up) const;
    void DragTo(int32_t x, int32_t y);

    frame Kept{};  // what was measured for the last frame
    tickRoom RoomAcross{};
    tickRoom RoomUp{};
    std::vector<answer> Answers;
    Cursor* Held = nullptr;  // by the mouse
    bool HeldUp = false;     // on the vertical link
};
