#include "particles/cindermill/batch/replaytable.h"

#include "library/containers/shortentext.h"
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

void TReplayTable::WriteHeader()
{
    if (HasHeader)
        return;
    HasHeader = true;
    std::fputs(
        "frame,time,group,particle,global,attribute,name,type,component,kind,preview,replay,times,worst,node",
        Out);
    std::fputs(IsOfSeveral ? ",file\n" : "\n", Out);
}

void TReplayTable::Write(const TReplayReport& report, const char* file)
{
    WriteHeader();
    for (const TReplayDifference& difference : report.GetDifferences()) {
        WriteDifference(difference);
        if (IsOfSeveral) {
            std::fputc(',', Out);
            WriteText(file);
        }
        std::fputc('\n', Out);
    }
}

// In quotes where it would not be one field otherwise; a row stays one line.
void TReplayTable::WriteText(const char* text)
{
    const TString line = OneLineText(text);
    if (std::strpbrk(line.Print(), ",\"") == nullptr) {
        std::fputs(line.Print(), Out);
        return;
    }
    std::fputc('"', Out);
    for (const char* p = line.Print(); *p != 0; ++p) {
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
}
