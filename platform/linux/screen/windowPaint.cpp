// Who is asked to paint, and when.
#include "platform/linux/screen/windowBackend.h"

#include <algorithm>

// The windows take turns, so that one which never says that it is painted hides no other.
bool windowBackend::TakePaint(windowMessage& message)
{
    const auto isDue = [](const auto& entry) {
        return entry.second->PaintAsked && entry.second->Visible && !entry.second->Minimised;
    };
    const auto next = Records.upper_bound(LastPainted);
    auto found = std::find_if(next, Records.end(), isDue);
    if (found == Records.end()) {
        found = std::find_if(Records.begin(), next, isDue);
        if (found == next)
            return false;
    }
    LastPainted = found->first;
    message = MessageOf(found->first, msgPaint, 0, 0);
    return true;
}

void windowBackend::AskPaint(windowId window)
{
    {
        const std::lock_guard lock(RecordsMutex);
        windowRecord* const record = Find(window);
        if (record == nullptr)
            return;
        record->PaintAsked = true;
        if (std::this_thread::get_id() == Interface)
            return;
    }
    Queue.Wake();
}

void windowBackend::PaintDone(windowId window)
{
    if (windowRecord* const record = Find(window))
        record->PaintAsked = false;
}

void windowBackend::PaintNow(windowId window)
{
    const windowRecord* const record = Find(window);
    if (record != nullptr && record->PaintAsked && record->Visible && !record->Minimised)
        Tell(window, msgPaint, 0, 0);
}
