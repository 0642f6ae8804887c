#include "particles/cindermill/graph/replay/commandplaces.h"

#include "library/containers/nametocrc.h"

#include <initializer_list>

namespace {

struct TDrawingClass
{
    const char* ClassName;
    const char* Command;
};

constexpr const char* RandomClass = "TRandomEmitter";

const TDrawingClass DrawingClasses[] = {
    {RandomClass, "IdRandomEmitter"},
    {"TVelocityCone", "IdConeEmitter"},
    {"TSphereSurface", "IdSphereSurfaceEmitter"},
    {"TTurbulence", "IdTurbulence"},
    {"TEmitter", "IdEmissionTrigger"},
};

// A command for each component of what comes in.
int CountCommands(const TEffectSchedule& schedule, int group, int tied, const TNodeType& type)
{
    if (!type.IsOfClass(RandomClass))
        return 1;
    const int attrib = schedule.GetTiedNodeInput(group, tied, 0);
    return GetTypeFloats(attrib != -1 ? schedule.GetAttributeType(group, attrib) : type.GetInputType(0));
}

} // namespace

TCommandPlaces::TCommandPlaces(const TEffectSchedule& schedule, int group, bool isEmission)
{
    for (int tied = 0; tied < schedule.GetNumTiedNodes(group); ++tied)
        if ((schedule.GetNodeUsage(schedule.GetTiedNode(group, tied)) == TU_EMITTER) == isEmission)
            AddNode(schedule, group, tied);
}

void TCommandPlaces::AddNode(const TEffectSchedule& schedule, int group, int tied)
{
    const TNodeType& type = *schedule.GetNode(schedule.GetTiedNode(group, tied))->GetNodeType();
    if (type.IsBypassed())
        return;
    for (const TDrawingClass& drawing : DrawingClasses) {
        if (!type.IsOfClass(drawing.ClassName))
            continue;
        const int count = CountCommands(schedule, group, tied, type);
        for (int draw = 0; draw < count; ++draw) {
            Places.push_back(TPlace{NameToCrc(drawing.Command), tied, draw});
            Taken.push_back(false);
        }
    }
}

int TCommandPlaces::Take(uint32_t nameId, int& draw)
{
    for (int i = 0; i < Places.size(); ++i) {
        if (Taken[i] || Places[i].NameId != nameId)
            continue;
        Taken[i] = true;
        draw = Places[i].Draw;
        return Places[i].Tied;
    }
    return -1;
}
