// Axes that graphs share, and the cursors on them.
#include "toolkit/ctrlGraph.h"

#include "foundations/fatal/crashFatal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Who is on which link, and which cursors stand there. Taken before the locks of graphs, so that two links
// with graphs in common cannot wait for each other, and held while others of a link are told to repaint, so
// that they live.
constinit thrSpin linksLock;

// Holds the locks of all graphs of a link.
class graphsHold
{
public:
    explicit graphsHold(const std::vector<ctrlGraph*>& graphs) : Graphs(graphs)
    {
        for (const ctrlGraph* one : Graphs)
            one->Lock.Lock();
    }
    ~graphsHold()
    {
        for (const ctrlGraph* one : Graphs)
            one->Lock.Unlock();
    }
    graphsHold(const graphsHold&) = delete;
    graphsHold& operator=(const graphsHold&) = delete;

private:
    const std::vector<ctrlGraph*>& Graphs;
};

}  // namespace

// --- Links

ctrlGraph::AxisLink::~AxisLink()
{
    Dying = true;
    while (!Graphs.empty())
        IsVertical() ? Graphs.back()->AttachOwnY() : Graphs.back()->AttachOwnX();
}

void ctrlGraph::AxisLink::EndIfLeft()
{
    if (Graphs.empty() && !(Flags & linkKeep) && !Dying)
        delete this;
}

bool ctrlGraph::AxisLink::Has(const Cursor* cursor) const
{
    return std::any_of(Cursors.begin(), Cursors.end(),
                       [cursor](const auto& one) { return one.get() == cursor; });
}

void ctrlGraph::AxisLink::Sort()
{
    std::stable_sort(Cursors.begin(), Cursors.end(),
                     [](const auto& a, const auto& b) { return a->Position < b->Position; });
}

void ctrlGraph::AxisLink::Repaint() const
{
    for (ctrlGraph* one : Graphs)
        one->Redraw(stateRedrawTraces);
}

double ctrlGraph::AxisLink::Limited(double position) const
{
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    for (const ctrlGraph* one : Graphs) {
        if (one->HasStyle(graphCursorsFree))
            continue;
        const Axis& axis = IsVertical() ? one->AxisY : one->AxisX;
        least = std::min(least, axis.Minimum);
        most = std::max(most, axis.Maximum);
    }
    return least <= most ? std::clamp(position, least, most) : position;
}

void ctrlGraph::AxisLink::Limit()
{
    for (const auto& cursor : Cursors)
        cursor->Position = Limited(cursor->Position);
    Sort();
}

ctrlGraph::Cursor* ctrlGraph::AxisLink::AddCursor(bool repaint)
{
    auto made = std::make_unique<Cursor>();
    Cursor* cursor = made.get();
    const thrSpinHold links(linksLock);
    {
        const graphsHold hold(Graphs);
        if (!Graphs.empty()) {
            const ctrlGraph& first = *Graphs.front();
            cursor->Position = IsVertical() ? first.AxisY.Minimum : first.AxisX.Minimum;
            cursor->Colour = first.CursorColour;
            cursor->Id = ++first.Cursors->LastId;
        }
        Cursors.push_back(std::move(made));
        Sort();
    }
    if (repaint)
        Repaint();
    return cursor;
}

void ctrlGraph::AxisLink::MoveCursor(Cursor* cursor, double position, bool repaint)
{
    const thrSpinHold links(linksLock);
    if (!Has(cursor))
        return;
    {
        const graphsHold hold(Graphs);
        const double limited = Limited(position);
        if (!std::isfinite(limited) || cursor->Position == limited)
            return;
        cursor->Position = limited;
        Sort();
    }
    if (repaint)
        Repaint();
}

void ctrlGraph::AxisLink::RemoveCursor(Cursor* cursor, bool repaint)
{
    const thrSpinHold links(linksLock);
    {
        const graphsHold hold(Graphs);
        for (ctrlGraph* one : Graphs) {
            if (one->Held == cursor)
                one->Held = nullptr;
        }
        std::erase_if(Cursors, [cursor](const auto& one) { return one.get() == cursor; });
    }
    if (repaint)
        Repaint();
}

// --- Groups

ctrlGraph::CursorGroup::~CursorGroup()
{
    Dying = true;
    while (!Graphs.empty())
        Graphs.back()->AttachOwnCursors();
}

void ctrlGraph::AttachCursors(CursorGroup* group)
{
    if (Cursors == group)
        return;
    CursorGroup* former = Cursors;
    {
        const thrSpinHold links(linksLock);
        Cursors = group;
        if (group)
            group->Graphs.push_back(this);
        if (former)
            std::erase(former->Graphs, this);
    }
    if (former && former->Graphs.empty() && !(former->Flags & linkKeep) && !former->Dying)
        delete former;
}

// --- Graphs on links

void ctrlGraph::AttachOwnX()
{
    AttachX(new AxisLink(0));
}

void ctrlGraph::AttachOwnY()
{
    AttachY(new AxisLink(linkVertical));
}

void ctrlGraph::AttachOwnCursors()
{
    AttachCursors(new CursorGroup(0));
}

void ctrlGraph::AttachX(AxisLink* link)
{
    if (!link || link->IsVertical()) {
        crashFatal("ctrlGraph::AttachX - The link is not horizontal!");
        return;
    }
    Attach(&ctrlGraph::AxisLinkX, link);
}

void ctrlGraph::AttachY(AxisLink* link)
{
    if (!link || !link->IsVertical()) {
        crashFatal("ctrlGraph::AttachY - The link is not vertical!");
        return;
    }
    Attach(&ctrlGraph::AxisLinkY, link);
}

void ctrlGraph::Attach(AxisLink* ctrlGraph::*place, AxisLink* link)
{
    AxisLink* former = this->*place;
    if (former == link)
        return;
    {
        const thrSpinHold links(linksLock);
        link->Graphs.push_back(this);
        const graphsHold hold(link->Graphs);
        if (former)
            Leave(*former);
        this->*place = link;
    }
    if (former)
        former->EndIfLeft();
    Redraw(stateRedrawFrame | stateRedrawTraces);
}

void ctrlGraph::Detach(AxisLink* ctrlGraph::*place)
{
    AxisLink* link = this->*place;
    if (!link)
        return;
    {
        const thrSpinHold links(linksLock);
        const thrSpinHold hold(Lock);
        Leave(*link);
        this->*place = nullptr;
    }
    link->EndIfLeft();
}

void ctrlGraph::Leave(AxisLink& link)
{
    std::erase(link.Graphs, this);
    if (Held && link.Has(Held))
        Held = nullptr;
}

void ctrlGraph::SetRange(AxisLink* const ctrlGraph::*place, Axis ctrlGraph::*axis, double min, double max)
{
    const thrSpinHold links(linksLock);
    AxisLink& link = *(this->*place);
    {
        const graphsHold hold(link.Graphs);
        Axis& mine = this->*axis;
        if (mine.Minimum == min && mine.Maximum == max)
            return;
        mine.Minimum = min;
        mine.Maximum = max;
        if (!link.IsVertical() && !HasStyle(graphCursorsFree))
            link.Limit();
    }
    RedrawAxis(this->*axis);
    if (!link.Cursors.empty())
        link.Repaint();
}
