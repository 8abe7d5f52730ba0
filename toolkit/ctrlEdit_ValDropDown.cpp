// The list of presets below a value.
#include "toolkit/ctrlEdit_Val.h"

#include "foundations/text/utfEdit.h"
#include "toolkit/ctrlList.h"

#include <algorithm>

namespace {

constexpr uint32_t mostRows = 8;

}  // namespace

void ctrlEdit_Val::DoOnDropDown()
{
    if (Presets_.empty())
        return;
    const uint32_t border = BorderThickness();
    const uint32_t rowHeight = std::max(Height(), 2 * border + 1) - 2 * border;
    const auto rows = static_cast<uint32_t>(std::min<size_t>(Presets_.size(), mostRows));
    ctrlListSel* list = ctrlListSel::DropDown(this, rows * rowHeight + 2 * border);
    list->RowHeight(rowHeight);
    uint64_t selected = ctrlList::None;
    for (size_t row = 0; row < Presets_.size(); ++row) {
        const valueText shown = TextOf(Presets_[row]);
        std::string text = shown.Text;
        list->RowAdd(text << ' ' << shown.Prefix << Unit_);
        if (!Differs(Presets_[row], Value_))
            selected = row;
    }
    list->Selected = selected;
    list->OnClick = [life = ctrlLife(this), listLife = ctrlLife(list), this] {
        if (life && listLife)
            DropDownClicked(static_cast<ctrlListSel*>(listLife.Window()));
    };
    list->Show();
    Toolkit().PumpPending();
}

void ctrlEdit_Val::DropDownClicked(ctrlListSel* list)
{
    const uint64_t row = list->Selected;
    Toolkit().Post(
        [life = ctrlLife(list)] {
            if (life)
                life.Window()->Destroy();
        },
        true);
    if (row >= Presets_.size())
        return;
    const number before = Value_;
    Take(IsInteger() ? NumberOf(Fitted(Presets_[row].I)) : NumberOf(Fitted(Presets_[row].F)));
    RaiseIfChanged(before);
}
