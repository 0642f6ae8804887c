#pragma once

#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/gl/wheelsteps.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/controls/updown.h"

// A number that can be typed and stepped: by the arrows, by the keys Up and Down, and by the wheel over it
// while it has the focus; Shift makes ten steps of one, Ctrl a tenth. RE_VALUECHANGED goes to the parent for
// each change that a person makes, and for none that the program makes. What a person enters is clamped; a
// value that is set is shown as it is, and only held to the range by SetValue's own clamp where the owner
// asks for it.
class TNumberInput : public TRegistered<TNumberInput, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNumberInput";
    static constexpr double FloatLimit = 1000000.0;
    // The arrows, and what the edit leaves for them.
    static constexpr float ArrowWidth = 14.0f;
    static constexpr float ArrowRoom = 16.0f;

    explicit TNumberInput(TControlHost& host);

    // A float with four decimals and a step of 0.1, or a whole number of 32 bits.
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
    // The same for a value of the document, which is kept and shown as it is, out of range too. The value
    // that is there already leaves what is being typed alone.
    void ShowValue(double value);
    // Whole numbers are held exactly; floats as they were set or typed.
    double GetValue() const { return Value; }
    int GetInt() const { return static_cast<int>(Value); }
    // So many steps, or ten times as many, up or down, as a person's change; `fine` a tenth of one. What was
    // typed and not yet ended is where they begin.
    void StepBy(int steps, bool coarse, bool fine);
    TTextEdit& GetEdit() { return Edit; }

    bool Event(const TRenderEvent& event) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Describe(TAccessibleTraits& traits) override;
    bool EnterValue(const char* text) override;
    void TakeKeys(TRenderer* renderer) override { Edit.TakeKeys(renderer); }

private:
    bool OnWheel(const TRenderEvent& event);
    void TakeText();
    void EndTyping();
    void Redisplay();
    bool HasPointer();
    double GetStepped(double value, double delta) const;
    void NotifyIfChanged(double before);

    TTextEdit Edit;
    TUpDown Arrows;
    double Min = -FloatLimit;
    double Max = FloatLimit;
    double Step = 0.1;
    double Value = 0;
    bool Float = true;
    const char* Format = "%.4f";
    // Of a wheel that tells parts of a notch.
    TWheelSteps Wheel = TWheelSteps(1);
};
