#pragma once

#include "particles/effectgraph/schedule/effectschedule.h"

// Whether two schedules agree in all that an engine relies on while it runs. What room its particles have it
// has settled at its start.
class TScheduleComparison
{
public:
    TScheduleComparison(const TEffectSchedule& first, const TEffectSchedule& second)
        : First(first), Second(second)
    {
    }
    bool HaveSameShape() const;

private:
    bool HaveSameNodes() const;
    bool HaveSameGroups() const;
    static bool AreSameTiedNodes(const vector<TTiedNode>& a, const vector<TTiedNode>& b);
    static bool AreSameAttributes(const vector<TGroupAttribute>& a, const vector<TGroupAttribute>& b);

    const TEffectSchedule& First;
    const TEffectSchedule& Second;
};
