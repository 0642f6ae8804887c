#include "particles/cindermill/main/documentreport.h"

#include "library/system/path.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/schedule/effectschedule.h"

#include <cstdarg>
#include <cstdio>

void TDocumentReport::AddLine(const char* format, ...)
{
    char line[8192];
    va_list args;
    va_start(args, format);
    vsnprintf(line, sizeof(line), format, args);
    va_end(args);
    Text += line;
}

void TDocumentReport::AddHeading(const char* heading)
{
    if (!Text.IsEmpty())
        AddLine("\r\n");
    AddLine("%s:\r\n------------\r\n\r\n", heading);
}

void TDocumentReport::AddFile(const TString& path, bool modified)
{
    AddHeading("Effect File");
    AddLine("Save path: %s\r\n", path.IsEmpty() ? "<none>" : GetShownPath(path).Print());
    AddLine("Modified: %s\r\n", modified ? "yes" : "no");
}

void TDocumentReport::AddGraph(TChunkFile& chunks, const TEffectGraph& graph)
{
    AddLine("Size on disc: %d bytes\r\n", chunks.GetFileSize());
    AddLine("Chunks in file: %d\r\n", chunks.GetNumChunks());
    AddLine("Graph nodes: %d\r\n", graph.GetNumNodes());
    AddLine("Graph edges: %d\r\n", graph.GetNumEdges());
}

void TDocumentReport::AddSchedule(bool created, const TEffectSchedule& schedule)
{
    AddHeading("Schedule");
    if (!created) {
        AddLine("Graph does not create valid schedule\r\n");
        return;
    }
    AddLine("Graph creates valid schedule\r\n");
    AddLine("Groups in schedule: %d\r\n", schedule.GetNumGroups());
    AddLine("Nodes in schedule: %d\r\n", schedule.GetNumNodes());
    for (int i = 0; i < schedule.GetNumGroups(); ++i)
        AddLine("Tied nodes in group %d: %d\r\n", i, schedule.GetNumTiedNodes(i));
}

void TDocumentReport::AddExport(bool valid, int size)
{
    AddHeading("Efx File");
    if (!valid) {
        AddLine("Schedule does not create valid efx file\r\n");
        return;
    }
    AddLine("Schedule creates valid efx file\r\n");
    AddLine("Size on disc: %d bytes\r\n", size);
}
