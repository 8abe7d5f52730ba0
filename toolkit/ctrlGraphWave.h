// A graph of sampled data, in the manner of an oscilloscope: traces that hold copies of what is pushed.
#pragma once

#include "toolkit/ctrlGraph.h"
#include "toolkit/ctrlGraphPen.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Bits of ctrlGraph::Series::Flags.
enum : uint32_t {
    seriesPairs = 1,   // one channel was split into this trace and the next
    seriesDouble = 2,  // kept; what is pushed is single precision
};

// How a trace with more samples than columns is reduced; of ColumnMode.
enum : uint8_t {
    columnsJoined = 0,  // from the smallest to the largest sample, joined with the next column
    columnsLeast = 2,
    columnsMost = 3,
    columnsFirst = 5,  // any other value is as columnsJoined without the joints
};

// Floats on the checked heap, which grow and never shrink.
class graphFloats
{
public:
    graphFloats() = default;
    graphFloats(const graphFloats&) = delete;
    graphFloats& operator=(const graphFloats&) = delete;
    ~graphFloats();

    // Room for so many, whose content is not kept.
    float* Room(uint64_t count);

private:
    float* Data = nullptr;
    uint64_t Count = 0;
};

// A trace. All of it is under the graph's lock, but for the handler, the colour and the bytes behind them,
// which belong to the interface thread.
struct ctrlGraph::Series {
    explicit Series(ctrlGraph* owner, uint32_t id) : Owner(owner), Id(id) {}
    Series(const Series&) = delete;
    Series& operator=(const Series&) = delete;
    ~Series();

    // Makes room for so many floats; their content is lost.
    void Resize(uint64_t count);

    double Extent = 0;      // of the axis, for all samples
    double Offset = 0;      // where the first sample stands
    int64_t Time = 0;       // of the last data, nanoseconds of the steady clock
    float* Data = nullptr;  // on the checked heap
    uint64_t Count = 0;
    uint32_t Flags = 0;
    ctrlGraph* const Owner;
    const uint32_t Id;
    bool Dirty = false;  // came and was not transformed yet

    // Told after each paint of the trace, on the interface thread, without a lock. May do anything.
    std::function<void(Series& series)> OnPainted;
    colour Colour = colourDefault;
    float LineWidth = 1.0F;  // pixels before scaling
    uint8_t ColumnMode = columnsJoined;
    uint8_t Frozen = 0;  // what is pushed passes it by
    uint8_t Shown = 1;
};

class ctrlGraphWave : public ctrlGraph
{
public:
    using series = ctrlGraph::Series;

    // Of 50 by 50 at the origin, with one trace. `style` are creation flags.
    ctrlGraphWave(ctrlWindow* parent, uint32_t style);
    ctrlGraphWave(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t style);
    ~ctrlGraphWave() override;

    // Brings what was pushed into the form that the style asks for. Called under Lock.
    virtual void TransformSeries();

    ctrlGraph::Series* SeriesById(unsigned id) override;
    void Paint() override;

    // Copies samples of `channels` channels, which alternate, to the traces: `total` is the number of all.
    // One channel and two traces are pairs. Any thread; waits for a paint that is going on.
    void Push(const float* data, uint64_t total, uint32_t channels);

    void SetStyleWave(uint32_t bits);
    void SetTraceColour(colour value);
    void SetTraceWidth(float value);    // half the width of points, in pixels before scaling; 0 for none
    void SetTickGapX(uint32_t pixels);  // the least distance of ticks, before scaling
    void SetTickGapY(uint32_t pixels);  // the same; 0 is 1
    void SetSeriesCount(size_t count);  // with ids from 0; interface thread

    // Runs samples through a low-pass forward and backward, which does not move them. What is no finite
    // number stays as it is and is passed over; of two samples or fewer, and at a cut that is no frequency,
    // all stay.
    static void Smooth(float* data, uint64_t count, float cut);

    colour TraceColour = colourDefault;
    float TraceWidth = 0;
    std::vector<std::unique_ptr<ctrlGraph::Series>> Traces;
    tickRoom LayoutX{16, 5, 2};
    tickRoom LayoutY{10, 5, 2};

private:
    // How the samples of a trace come to the plot. Pixels are counted along the axis of the samples.
    struct mapping {
        double First = 0;  // the pixel of sample 0
        double Each = 0;   // pixels from one sample to the next
        bool Upright = false;
    };

    void Deal(const float* data, uint64_t count, uint32_t channels, bool pairs);
    void PaintTraces();
    void TellPainted();
    void DrawSeries(const series& trace);
    mapping MappingOf(const series& trace) const;
    const float* Shown(const series& trace);
    const float* Mapped(const float* data, uint64_t count, bool upright);
    void Visible(const mapping& map, uint64_t count, uint64_t& from, uint64_t& to) const;
    void DrawSamples(const series& trace, const mapping& map, uint64_t from, uint64_t to);
    void DrawPoints(const mapping& map, const float* mapped, uint64_t from, uint64_t to);
    void DrawColumns(const series& trace, const mapping& map, uint64_t from, uint64_t to);
    graphPlot Plot(bool upright) const;

    graphFloats Scratch;  // positions in pixels
    graphFloats Work;     // samples that are shown differently from how they are kept
};
