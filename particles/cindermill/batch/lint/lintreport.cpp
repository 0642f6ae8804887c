#include "particles/cindermill/batch/lint/lintreport.h"

#include "particles/cindermill/batch/findings/findingreport.h"
#include "particles/cindermill/batch/findings/nodeplace.h"
#include "particles/cindermill/graph/replay/birthsource.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/schedule/effectschedule.h"
#include "particles/effectgraph/xmltext.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

TFinding& TLintReport::AddText(const char* kind, const char* format, va_list args)
{
    constexpr int MaxMessage = 2048;
    char text[MaxMessage];
    std::vsnprintf(text, sizeof text, format, args);
    const TFinding finding = MakeFinding(kind, File, text);
    Findings.Add(finding);
    return Findings[Findings.size() - 1];
}

TFinding& TLintReport::Add(const char* kind, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    TFinding& finding = AddText(kind, format, args);
    va_end(args);
    return finding;
}

TFinding& TLintReport::AddNode(const char* kind, const TEffectNode& node, int group, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    TFinding& finding = AddText(kind, format, args);
    va_end(args);
    SetNodePlace(node, group != -1 ? group : FindGroup(node), finding.Place);
    return finding;
}

TFinding& TLintReport::AddGroup(const char* kind, int group, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    TFinding& finding = AddText(kind, format, args);
    va_end(args);
    finding.Place.Group = group;
    if (const TEffectNode* source = FindSource(group))
        SetNodePlace(*source, group, finding.Place);
    return finding;
}

void TLintReport::AddError(const char* kind, const TError& error)
{
    const TErrorSource& source = error.GetSource();
    TFinding& finding = Add(kind, "%s", error.GetMessage().Print());
    finding.Place.Group = source.Group;
    const TEffectNode* node = Graph != nullptr ? Graph->FindNodeOf(source.Type) : nullptr;
    if (node != nullptr)
        SetNodePlace(*node, source.Group != -1 ? source.Group : FindGroup(*node), finding.Place);
}

int TLintReport::FindGroup(const TEffectNode& node) const
{
    return Schedule != nullptr ? Schedule->FindGroupOf(node) : -1;
}

bool TLintReport::HasFinding(const TEffectNode& node, const char* const* kinds) const
{
    for (int i = FirstFinding; i < Findings.size(); ++i) {
        const TFinding& finding = Findings[i];
        if (finding.Place.Type.IsEmpty() || finding.Place.Id != node.ChunkIdx)
            continue;
        for (const char* const* kind = kinds; *kind != nullptr; ++kind)
            if (std::strcmp(finding.Id, *kind) == 0)
                return true;
    }
    return false;
}

const TEffectNode* TLintReport::FindSource(int group) const
{
    return Schedule != nullptr ? FindBirthNode(*Schedule, group) : nullptr;
}

TString GetShownName(const TString& name)
{
    constexpr int MaxName = 80;
    return QuoteText(name, MaxName);
}

TString GetNodeName(const TEffectNode& node)
{
    return GetShownName(node.GetNodeType()->Name);
}

bool IsClass(const TEffectNode& node, const char* className)
{
    return node.GetNodeType()->IsOfClass(className);
}
