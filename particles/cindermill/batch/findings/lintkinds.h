#pragma once

#include "particles/cindermill/batch/findings/finding.h"

// What a lint can find, by themes. docs/lint.md tells more of each.
enum TLintKindId
{
    LK_LOADFAILED,
    LK_LOADMENDED,
    LK_SCHEDULE,
    LK_ENGINE,
    LK_EXPORT,
    LK_STOPPED,
    LK_CUTSHORT,
    LK_CAPACITYLOST,
    LK_CAPACITYFULL,
    LK_CAPACITYWASTE,
    LK_EMISSIONCUT,
    LK_EMISSIONOVER,
    LK_EMISSIONNONE,
    LK_LIFEENDLESS,
    LK_LIFEBEYOND,
    LK_NUMBERBAD,
    LK_NUMBERFIELD,
    LK_BOXLEFT,
    LK_BOXSUGGESTED,
    LK_BOXNONE,
    LK_BOXMIXED,
    LK_BUDGETOVER,
    LK_BUDGETUSED,
    LK_FILEUNNAMED,
    LK_FILEMISSING,
    LK_FILEUNREADABLE,
    LK_FILESIDES,
    LK_FILEOUTSIDE,
    LK_TYPESTALE,
    LK_TYPEMISSING,
    LK_GRAPHUNUSED,
    LK_GRAPHDROPPED,
    LK_GRAPHBYPASSED,
    LK_GRAPHCONVERTS,
    LK_GRAPHZERO,
    LK_GRAPHCURVE,
    LK_GRAPHPRIORITY,
    LK_CONSOLEGRID,
    LK_CONSOLENOTHING,
    LK_CONSOLEPLANE,
    LK_CONSOLEFIXED,
    LK_CONSOLEEVENT,
    LK_CONSOLELIFE,
    LK_CONSOLEBIRTH,
    LK_CONSOLECOUNT,
    LK_NUMKINDS
};

struct TLintKind
{
    const char* Id;
    TFindingSeverity Severity;
    // One sentence of what it means.
    const char* Description;
};

const TLintKind& GetLintKind(TLintKindId id);
