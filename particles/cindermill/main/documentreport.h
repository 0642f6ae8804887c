#pragma once

#include "library/containers/string.h"

class TChunkFile;
class TEffectGraph;
class TEffectSchedule;

// The text of the File Properties dialog, written part by part.
class TDocumentReport
{
public:
    explicit TDocumentReport(TString& text) : Text(text) {}

    void AddFile(const TString& path, bool modified);
    void AddGraph(TChunkFile& chunks, const TEffectGraph& graph);
    void AddSchedule(bool created, const TEffectSchedule& schedule);
    void AddExport(bool valid, int size);

private:
    void AddHeading(const char* heading);
    void AddLine(const char* format, ...) CINDERMILL_PRINTF(2, 3);

    TString& Text;
};
