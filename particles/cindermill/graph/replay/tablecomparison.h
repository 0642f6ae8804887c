#pragma once

class TEffectExec;
class TEffectReplay;
class TReplayReport;

// Holds the data of commands against what their nodes have: the tables of curves, entry by entry, and what no
// frame may show.
void CompareTables(TEffectExec& engine, const TEffectReplay& replay, TReplayReport& report);
