#pragma once

#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/controls/updown.h"

// A number that can be typed and stepped. RE_VALUECHANGED goes to the parent for each change that a person
// makes, and for none that the program makes. What a person enters is clamped; a value that is set is shown
// as it is, and only held to the range by SetValue's own clamp where the owner asks for it.
class TNumberInput : public TRegistered<TNumberInput, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNumberInput";
    static constexpr double FloatLimit = 1000000.0;

    explicit TNumberInput(TControlHost& host);

    // A float with four places and a step of 0.1, or a whole number of 32 bits.
    void Build(const TVector2& size, bool isFloat, float fontSize = 10.0f);
    void SetRange(double min, double max);
    double GetMin() const { return Min; }
    double GetMax() const { return Max; }
    // 0.1 for floats and 1 for whole numbers unless told.
    void SetStep(double step) { Step = step; }
    // How a float is shown, "%.4f" unless told. Not copied.
    void SetFormat(const char* format);
    // Shows nothing but its value and takes no input.
    void SetReadOnly(bool readOnly);

    // Sends nothing, drops what was typed, and is clamped.
    void SetValue(double value);
    // The same for a value of the document, which is kept and shown as it is, out of range too.
    void ShowValue(double value);
    // Whole numbers are held exactly; floats as they were set or typed.
    double GetValue() const { return Value; }
    int GetInt() const { return static_cast<int>(Value); }
    // One step or ten of them, up or down, as a person's change; `fine` a tenth of one.
    void StepBy(int steps, bool coarse, bool fine);
    TTextEdit& GetEdit() { return Edit; }

    bool Event(const TRenderEvent& event) override;
    TRenderObject* HitTest(const TVector2& point) override;

private:
    void EndTyping();
    void Redisplay();

    TTextEdit Edit;
    TUpDown Arrows;
    double Min = -FloatLimit;
    double Max = FloatLimit;
    double Step = 0.1;
    double Value = 0;
    bool Float = true;
    const char* Format = "%.4f";
};
