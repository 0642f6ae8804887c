#pragma once

#include "particles/effectgraph/export/exportresult.h"

class TErrorList;

enum TPolicyFlags
{
    PF_PREVENTEXPORT = 1,
    PF_MUSTHAVEBOUNDS = 2,
    PF_NOMIXEDBOUNDS = 4
};

// Holds an export against what the artist wants of every effect, a set of TPolicyFlags. False when a policy
// is broken.
bool CheckExportPolicies(const TExportResult& result, int flags, TErrorList& errors);
