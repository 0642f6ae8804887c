#include "particles/cindermill/interface/controls/rampmodel.h"

#include <cmath>

void TRampModel::Build(int componentCount, bool linear)
{
    ASSERT(componentCount >= 1 && componentCount <= MaxComponents);
    ComponentCount = componentCount;
    Linear = linear;
}

void TRampModel::SetLocks(const int* locks)
{
    for (int i = 0; i < MaxComponents; ++i)
        Locks[i] = locks[i];
}

// One step, as the parameter's own evaluation takes.
int TRampModel::GetSource(int component) const
{
    const int lock = Locks[component];
    return lock >= 0 && lock < MaxComponents ? lock : component;
}

bool TRampModel::IsShown(int source) const
{
    for (int i = 0; i < ComponentCount; ++i)
        if (Visible[i] && GetSource(i) == source)
            return true;
    return false;
}

bool TRampModel::HasLocks() const
{
    for (int i = 0; i < ComponentCount; ++i)
        if (GetSource(i) != i)
            return true;
    return false;
}

bool TRampModel::CanLock() const
{
    int visible = 0;
    for (int i = 0; i < ComponentCount; ++i)
        visible += Visible[i] ? 1 : 0;
    return visible >= 2;
}

void TRampModel::GetToggledLocks(int* locks) const
{
    for (int i = 0; i < MaxComponents; ++i)
        locks[i] = TNodeRampParameter::IsLock(Locks[i]) ? Locks[i] : -1;
    const bool frees = HasLocks();
    int first = -1;
    for (int i = 0; i < ComponentCount; ++i) {
        if (frees)
            locks[i] = -1;
        else if (Visible[i] && first == -1)
            first = i;
        else if (Visible[i])
            locks[i] = first;
    }
    // Components that are not shown may have followed one that is a follower now.
    for (int i = 0; i < MaxComponents; ++i)
        if (locks[i] != -1 && locks[locks[i]] != -1)
            locks[i] = locks[locks[i]];
}

bool TRampModel::IsSelectable(int source, int point) const
{
    return IsShown(source) && point >= 0 && point < Curves[source].GetNumPoints() &&
           (!Linear || TRampCurve::IsAnchor(point));
}

float TRampModel::GetMaxTime() const
{
    float max = 0;
    for (int i = 0; i < ComponentCount; ++i) {
        const float last = Curves[GetSource(i)].GetLastTime();
        if (last > max)
            max = last;
    }
    return max >= LeastTime && std::isfinite(max) ? max : 1.0f;
}

void TRampModel::GetValueRange(float& min, float& range) const
{
    bool any = false;
    float low = 0;
    float high = 0;
    for (int source = 0; source < MaxComponents; ++source) {
        if (!IsShown(source))
            continue;
        const TRampCurve& curve = Curves[source];
        for (int i = 0; i < curve.GetNumPoints(); i += Linear ? 3 : 1) {
            const float value = curve.GetPoint(i).Y;
            if (!std::isfinite(value))
                continue;
            low = !any || value < low ? value : low;
            high = !any || value > high ? value : high;
            any = true;
        }
    }
    min = low;
    range = static_cast<float>(double(high) - low);
    if (!std::isfinite(range))
        range = high;
    if (!(range >= LeastRange))
        range = LeastRange;
}

float TRampModel::Evaluate(int component, float time) const
{
    ASSERT(component >= 0 && component < MaxComponents);
    return Curves[GetSource(component)].Evaluate(time, Linear);
}

void TRampModel::Sample(float samples[NumSamples][MaxComponents]) const
{
    const float maxTime = GetMaxTime();
    for (int i = 0; i < NumSamples; ++i) {
        const float time = static_cast<float>(i * double(maxTime) / (NumSamples - 1));
        for (int k = 0; k < MaxComponents; ++k)
            samples[i][k] = k < ComponentCount ? Evaluate(k, time) : 0.0f;
    }
}
