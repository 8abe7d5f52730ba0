// A latitude or a longitude: degrees, minutes, seconds and the letter of the hemisphere.
#pragma once

#include "toolkit/ctrlEdit_Digits.h"

// Creation flags of an angle.
enum : uint32_t {
    ctrlEditLatitude = 0x200,  // up to 90 degrees, else a longitude, up to 180
};

class ctrlEdit_Angle : public ctrlEdit_Digits
{
public:
    ctrlEdit_Angle(ctrlWindow* parent, uint32_t flags);  // 50 by 20, at the origin
    ~ctrlEdit_Angle() override;

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    bool KeyEvent(KeyEv event, uint32_t key) override;
    void Commit() override;
    void Cancel() override;
    void DoOnMouseWheelSteps(int64_t steps) override;
    void DoOnSpinSteps(int64_t steps) override;

    // Degrees, north and east above 0; kept within the limits. What is no number is ignored. OnChange does
    // not hear of it.
    void Value(double degrees);
    double Value() const { return Value_; }

    void Decimals(int32_t count);  // of the seconds, 0 to 9

protected:
    void PaintText() override;
    bool Fits(std::string& text, uint64_t position, char digit) const override;

private:
    double Limit() const;
    char Letter(bool isNegative) const;
    std::string TextOf(double degrees) const;
    double MagnitudeTyped() const;
    void Turn(bool isNegative);
    void Change(double degrees);

    double Value_ = 0.0;
    int32_t Decimals_ = 0;
    int32_t LetterWidth = 0;  // pixels, at the last paint
};
