// A calendar date: day, month and year.
#pragma once

#include "toolkit/ctrlEdit_Digits.h"

class ctrlEdit_Date : public ctrlEdit_Digits
{
public:
    ctrlEdit_Date(ctrlWindow* parent, uint32_t flags);  // 20 by 18, at the origin; today in UTC
    ~ctrlEdit_Date() override;

    void Commit() override;
    void Cancel() override;
    void DoOnMouseWheelSteps(int64_t steps) override;
    void DoOnSpinSteps(int64_t steps) override;

    // A Julian day number, at most that of 31 December 9999. Years before 0 are shown as 0. OnChange does not
    // hear of it.
    void Value(uint32_t day);
    uint32_t Value() const { return Value_; }
    void Date(uint32_t year, uint32_t month, uint32_t day);

protected:
    bool Fits(std::string& text, uint64_t position, char digit) const override;

private:
    std::string TextOf(uint32_t day) const;
    void Change(uint32_t day);

    uint32_t Value_ = 0;
};
