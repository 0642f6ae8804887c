#include "particles/cindermill/batch/replaytable.h"

#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/nodetype.h"

#include <cmath>
#include <cstring>

void WriteTableNumber(std::FILE* out, double value)
{
    if (std::isnan(value))
        std::fputs("nan", out);
    else
        std::fprintf(out, "%.9g", value);
}

void TReplayTable::Write(const TReplayReport& report)
{
    std::fputs(
        "frame,time,group,particle,global,attribute,name,type,component,kind,preview,replay,times,worst,"
        "node\n",
        Out);
    for (const TReplayDifference& difference : report.GetDifferences())
        WriteDifference(difference);
}

// In quotes where it would not be one field otherwise.
void TReplayTable::WriteText(const TString& text)
{
    if (std::strpbrk(text.Print(), ",\"\r\n") == nullptr) {
        std::fputs(text.Print(), Out);
        return;
    }
    std::fputc('"', Out);
    for (const char* p = text.Print(); *p != 0; ++p) {
        if (*p == '"')
            std::fputc('"', Out);
        std::fputc(*p, Out);
    }
    std::fputc('"', Out);
}

void TReplayTable::WriteDifference(const TReplayDifference& difference)
{
    const TReplayPlace& place = difference.Place;
    std::fprintf(Out, "%d,", place.Frame);
    WriteTableNumber(Out, place.Time);
    std::fprintf(Out, ",%d,%d,%d,%d,", place.Group, place.Particle, place.Global, place.Attribute);
    WriteText(place.Name);
    std::fprintf(Out, ",%s,%d,%s,", place.Type != -1 ? GetTypeName(place.Type) : "", place.Component,
                 GetDifferenceKindName(difference.Kind));
    WriteTableNumber(Out, difference.Preview);
    std::fputc(',', Out);
    if (difference.Kind != DK_UNDEFINED && difference.Kind != DK_UNKNOWN)
        WriteTableNumber(Out, difference.Replay);
    std::fprintf(Out, ",%lld,", static_cast<long long>(difference.Times));
    WriteTableNumber(Out, difference.Worst);
    std::fputc(',', Out);
    if (place.Node != nullptr)
        WriteText(place.Node->GetNodeType()->Name);
    std::fputc('\n', Out);
}
