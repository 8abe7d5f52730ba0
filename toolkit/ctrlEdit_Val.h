// A number with a unit: floating point, or an integer. Large and small ones are shown with a prefix of the
// unit.
#pragma once

#include "toolkit/ctrlEdit_Spin.h"

#include <cstdint>
#include <string>
#include <vector>

// Creation flags of a value.
enum : uint32_t {
    ctrlEditInteger = 0x200,
};

// Style bits of a value.
enum : uint32_t {
    styleValSnap = 0x400,        // to a multiple of the step
    styleValUnclamped = 0x800,   // while the value is set
    styleValGrouped = 0x1000,    // a blank between thousands
    styleValPoint = 0x4000,      // a decimal point may be typed
    styleValWrap = 0x8000,       // around inside the range
    styleValGeneral = 0x10000,   // significant digits in place of decimals
    styleValAnyRange = 0x20000,  // not clamped, and a minus sign may always be typed
    styleValPlain = 0x40000,     // without a prefix
};

class ctrlEdit_Val : public ctrlEdit_Spin
{
public:
    ctrlEdit_Val(ctrlWindow* parent, uint32_t flags);  // 20 by 20, at the origin
    ~ctrlEdit_Val() override;

    void Paint() override;
    bool KeyEvent(KeyEv event, uint32_t key) override;
    void Commit() override;
    void Cancel() override;
    void DoOnDropDown() override;
    void DoOnMouseWheelSteps(int64_t steps) override;
    void DoOnSpinSteps(int64_t steps) override;

    // Snapped, wrapped and clamped as the style asks for. What is no number, and for an integer what is not
    // between -9.2e18 and 9.2e18, is ignored. OnChange does not hear of it.
    void Value(double value);
    void Value(int64_t value);
    void Value(int value) { Value(int64_t{value}); }
    double ValueGetF() const;
    int64_t ValueGetI() const;  // truncated, and at most what fits

    // Ignored when the first is above the second, or one is no number.
    void Range(double minimum, double maximum);
    void Range(int64_t minimum, int64_t maximum);
    void Range(int minimum, int maximum) { Range(int64_t{minimum}, int64_t{maximum}); }

    // What a spin adds. One that is no number is ignored.
    void Step(double step);
    void Step(int64_t step);
    void Step(int step) { Step(int64_t{step}); }

    // The rows of the drop-down.
    void Presets(const std::vector<double>& values);
    void Presets(const std::vector<int64_t>& values);

    void Unit(const std::string& text);
    const std::string& Unit() const { return Unit_; }
    const std::string& Prefix() const { return Prefix_; }

    // Digits behind the point, in the general form significant ones, and of an integer the fewest.
    void Decimals(int32_t count);

    // The power of ten of the smallest digit, which limits the prefix.
    void ExponentFloor(int32_t power);

    void ValStyleSet(uint32_t bits);
    void ValStyleClear(uint32_t bits);

    struct valueText {
        std::string Text;
        std::string Prefix;
        double Divisor = 1.0;
    };
    valueText ValueText(double value) const;
    valueText ValueText(int64_t value) const;

private:
    union number {
        double F;
        int64_t I;
    };
    struct scale {
        const char* Prefix;
        double Divisor;
        int32_t Exponent;
    };

    bool IsInteger() const { return HasFlag(ctrlEditInteger); }
    bool IsRangeSmall() const;
    bool IsClamped() const { return !HasStyle(styleValUnclamped | styleValAnyRange); }
    bool IsMinusUsed() const;
    double Fitted(double value) const;
    int64_t Fitted(int64_t value) const;
    number NumberOf(double value) const;
    number NumberOf(int64_t value) const;
    double FloatOf(number value) const;

    void RangeStore(number minimum, number maximum);
    bool Differs(number one, number other) const;
    void RaiseIfChanged(number before);
    void Take(number value);

    scale ScaleOf(double magnitude) const;
    scale SmallScaleOf(double magnitude) const;
    valueText TextOf(number value) const;

    void DropDownClicked(class ctrlListSel* list);

    bool Typed(uint32_t character);
    bool TypeMinus();
    bool TypePoint(uint32_t character);
    bool TypePrefix(uint32_t character);
    void Multiply(const char* prefix, double factor);
    double DigitWeight() const;

    number Step_{};
    number Maximum{};
    number Minimum{};
    double Multiplier = 1.0;
    number Value_{};
    std::vector<number> Presets_;
    std::string Prefix_;
    std::string Unit_;
    int32_t Decimals_ = 0;
    int32_t ExponentFloor_ = 0;
};
