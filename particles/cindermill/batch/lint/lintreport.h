#pragma once

#include "particles/cindermill/batch/findings/finding.h"
#include "particles/cindermill/batch/lint/lintkinds.h"

#include <cstdarg>

class TEffectGraph;
class TEffectNode;
class TEffectSchedule;
class TError;

// Makes the findings of one file: gives each its severity and says where in the effect it is.
class TLintReport
{
public:
    // Refers to the list.
    TLintReport(TFindingList& findings, const char* file)
        : Findings(findings), FirstFinding(findings.size()), File(file)
    {
    }
    // Where the nodes of errors are looked for. It stays the caller's.
    void SetGraph(const TEffectGraph* graph) { Graph = graph; }
    // Where the groups of nodes are looked for from then on; null for nowhere. It stays the caller's.
    void SetSchedule(const TEffectSchedule* schedule) { Schedule = schedule; }

    // One of the whole file. The finding may be completed until the next is added.
    TFinding& Add(const char* kind, const char* format, ...) CINDERMILL_PRINTF(3, 4);
    // One of a node; of a group where `group` is not -1, otherwise of the first that the node is in.
    TFinding& AddNode(const char* kind, const TEffectNode& node, int group, const char* format, ...)
        CINDERMILL_PRINTF(5, 6);
    // One of a group, which is told by the node that its particles start at.
    TFinding& AddGroup(const char* kind, int group, const char* format, ...) CINDERMILL_PRINTF(4, 5);

    // At the node that it is about.
    void AddError(const char* kind, const TError& error);

    // Whether a finding of one of the kinds, which end with null, tells of the node.
    bool HasFinding(const TEffectNode& node, const char* const* kinds) const;
    // The node that a group's particles start at; null for a group without one.
    const TEffectNode* FindSource(int group) const;
    // -1 for a node that is in none.
    int FindGroup(const TEffectNode& node) const;

private:
    TFinding& AddText(const char* kind, const char* format, va_list args);

    TFindingList& Findings;
    const int FirstFinding;
    TString File;
    const TEffectGraph* Graph = nullptr;
    const TEffectSchedule* Schedule = nullptr;
};

// A name as messages tell it: in its line, and no longer than it takes to know it.
TString GetShownName(const TString& name);
TString GetNodeName(const TEffectNode& node);
// Whether the node runs as that class.
bool IsClass(const TEffectNode& node, const char* className);
