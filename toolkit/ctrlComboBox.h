// A closed field that shows one row, and opens a list under itself to choose another.
//
// All on the interface thread.
#pragma once

#include "toolkit/ctrlList.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Style bits of combo boxes.
enum : uint32_t {
    styleComboSorted = 128,  // in byte order
};

class ctrlComboBox : public ctrlList
{
public:
    ctrlComboBox(ctrlWindow* parent, uint32_t flags);  // 20 by 10
    ~ctrlComboBox() override;

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;

    void ComboAdd(const std::string& text);

    // The first row that equals the text, else that of the index; beyond the last row nothing is selected.
    void ComboSelect(const std::string& text, uint64_t index);
    void ComboIndex(uint64_t index);
    void ComboClear();

    // Shows the rows as a popup, or gives the focus back to the parent. Without rows there is no popup.
    void Opened(bool open);
    bool Opened() const;

    std::function<void()> OnChange;  // the user has chosen another row
    size_t VisibleRows = 8;          // most that the popup shows at once

private:
    void TakeName();
    void Changed();
    ctrlListSel* ListBox() const;
    void Turn(int delta);
    void Point(unsigned keys, int delta, MouseEv event);
    void OpenList();
    void CloseList();
    void ListBox_OnClick(ctrlListSel* list);

    float Scale_ = 1.0F;  // of the last paint
    int WheelRest = 0;
    std::optional<ctrlLife> List;  // the popup
};

// Fills its rows anew from a provider whenever it is made or opened.
class ctrlComboBoxDynamic : public ctrlComboBox
{
public:
    using provider = std::function<std::vector<std::string>()>;

    ctrlComboBoxDynamic(ctrlWindow* parent, uint32_t flags, provider rows);  // 50 by 20
    bool Notify(unsigned code) override;

private:
    void Refill();

    provider Provider;
};
