#include "particles/cindermill/batch/runtable.h"

#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/effectgraph/valuetype.h"

#include <cmath>

namespace {

void WriteNumber(std::FILE* out, float value)
{
    if (std::isnan(value))
        std::fputs("nan", out);
    else
        std::fprintf(out, "%.9g", static_cast<double>(value));
}

} // namespace

void TRunTable::WriteHeader()
{
    std::fputs("frame,time,group,particle,global,attribute,type,v0,v1,v2,v3,v4,v5\n", Out);
}

void TRunTable::WriteFrame(int frame)
{
    Frame = frame;
    const TEffectSchedule& schedule = Engine.GetSchedule();
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib)
            WriteAttribute(group, attrib);
}

void TRunTable::WriteAttribute(int group, int attrib)
{
    const int usage = Engine.GetSchedule().GetAttributeUsage(group, attrib);
    if (usage == TU_TRIGGER || usage == TU_EMITTER) {
        WriteRow(group, attrib, -1, -1, 0);
        return;
    }
    const TParticleBuffer& buffer = *Engine.GetGroup(group);
    for (int index = 0; index < buffer.GetNumParticles(); ++index)
        WriteRow(group, attrib, index, buffer.GetGlobalParticle(index, usage), index);
}

void TRunTable::WriteRow(int group, int attrib, int particle, int global, int index)
{
    const TEffectSchedule& schedule = Engine.GetSchedule();
    const int type = schedule.GetAttributeType(group, attrib);
    std::fprintf(Out, "%d,", Frame);
    WriteNumber(Out, Engine.GetTime());
    std::fprintf(Out, ",%d,%d,%d,%d,%s", group, particle, global, attrib, GetTypeName(type));
    const float* value =
        Engine.GetGroup(group)->GetAttribute(attrib, schedule.GetAttributeUsage(group, attrib), index);
    for (int i = 0; i < MaxValueFloats; ++i) {
        std::fputc(',', Out);
        if (i < GetTypeFloats(type))
            WriteNumber(Out, value[i]);
    }
    std::fputc('\n', Out);
}
