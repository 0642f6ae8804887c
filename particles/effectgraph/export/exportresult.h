#pragma once

#include "particles/effectgraph/export/exportgroup.h"

struct TSharedData
{
    TString Name;
    TDataBlock Data;
};

// What an export comes to: all that the file tells. It refers to the nodes of the schedule that it was made
// from.
struct TExportResult
{
    vector<TExportGroup> Groups;
    vector<TSharedData> SharedData;
    TCommandTable Table;
    // One for each group once it is built.
    vector<TGroupRecord> GroupData;
    bool Built = false;
};
