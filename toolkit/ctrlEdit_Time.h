// A duration or a time of day: hours, minutes and seconds, or minutes and seconds.
#pragma once

#include "toolkit/ctrlEdit_Digits.h"

// Creation flags of a time.
enum : uint32_t {
    ctrlEditMinutes = 0x200,  // without hours
};

class ctrlEdit_Time : public ctrlEdit_Digits
{
public:
    ctrlEdit_Time(ctrlWindow* parent, uint32_t flags);  // 40 by 20, at the origin; 0 to 86400
    ~ctrlEdit_Time() override;

    void Commit() override;
    void Cancel() override;
    void DoOnMouseWheelSteps(int64_t steps) override;
    void DoOnSpinSteps(int64_t steps) override;

    // Seconds, kept within the range. What is no number is ignored. OnChange does not hear of it.
    void Value(double seconds);
    double Value() const { return Value_; }

    // Ignored when the first is above the second, or one is below 0, infinite or no number.
    void Range(double minimum, double maximum);

    void Decimals(int32_t count);     // of the seconds, 0 to 9
    void FirstDigits(int32_t count);  // of the minutes while it has the focus, 1 to 9

    double Step = 1.0;  // how many units of the digit at the caret a spin adds

protected:
    bool Fits(std::string& text, uint64_t position, char digit) const override;

private:
    std::string TextOf(double seconds) const;
    uint64_t GroupsBeforeDecimals() const { return HasFlag(ctrlEditMinutes) ? 2 : 3; }
    double DigitWeight() const;
    double SecondsTyped() const;
    void Change(double seconds);

    double Maximum = 86400.0;
    double Minimum = 0.0;
    double Value_ = 0.0;
    int32_t Decimals_ = 0;
    int32_t FirstDigits_ = 2;
};
