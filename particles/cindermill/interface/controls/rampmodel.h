#pragma once

#include "particles/cindermill/interface/controls/rampcurve.h"

// The curves of a ramp as its editor has them: a copy of the parameter's, of which some are shown. A locked
// component has the curve of the one that it follows; its own is kept aside.
class TRampModel
{
public:
    static constexpr int MaxComponents = TNodeRampParameter::MaxDimensions;
    static constexpr int NumSamples = 64;
    // Ramps that end sooner are shown as if they were one long.
    static constexpr double LeastTime = 0.001;
    static constexpr float LeastRange = 0.1f;

    void Build(int componentCount, bool linear);
    int GetComponentCount() const { return ComponentCount; }
    bool IsLinear() const { return Linear; }
    void SetLinear(bool linear) { Linear = linear; }
    TRampCurve& GetCurve(int component) { return Curves[component]; }
    const TRampCurve& GetCurve(int component) const { return Curves[component]; }

    bool IsVisible(int component) const { return component < ComponentCount && Visible[component]; }
    void SetVisible(int component, bool visible) { Visible[component] = visible; }

    const int* GetLocks() const { return Locks; }
    void SetLocks(const int* locks);
    // Whose curve the component has: itself, or the one it follows.
    int GetSource(int component) const;
    // Whether a component that can be seen has this curve.
    bool IsShown(int source) const;
    // Whether any of the components is locked, and whether there are two to be.
    bool HasLocks() const;
    bool CanLock() const;
    // The locks after a press of the button: with none set, the visible ones follow the first visible one;
    // otherwise all are free.
    void GetToggledLocks(int* locks) const;

    // Whether the point can be taken: of a shown curve, and in a linear ramp an anchor.
    bool IsSelectable(int source, int point) const;
    // The largest time of a last anchor, over all components.
    float GetMaxTime() const;
    // What the points of the shown curves span; handles count where there are any.
    void GetValueRange(float& min, float& range) const;
    float Evaluate(int component, float time) const;
    // Evenly over the time; zeros for components that the ramp lacks.
    void Sample(float samples[NumSamples][MaxComponents]) const;

private:
    TRampCurve Curves[MaxComponents];
    bool Visible[MaxComponents] = {true, true, true, true};
    int Locks[MaxComponents] = {-1, -1, -1, -1};
    int ComponentCount = 1;
    bool Linear = false;
};
