#pragma once

class TEffectGraph;
class TLintReport;
class TNodeTypeLibrary;

// Tells of nodes whose types are not those of the library.
void LintNodeTypes(const TEffectGraph& graph, const TNodeTypeLibrary& library, TLintReport& report);
