#pragma once

#include "library/containers/string.h"

#include <cstdio>

class TReplayReport;
struct TReplayDifference;

// The differences between a preview and a replay as comma-separated values.
class TReplayTable
{
public:
    explicit TReplayTable(std::FILE* out) : Out(out) {}
    void Write(const TReplayReport& report);

private:
    void WriteDifference(const TReplayDifference& difference);
    void WriteText(const TString& text);

    std::FILE* Out;
};

// A number as a table holds it: what is none as "nan", without a sign.
void WriteTableNumber(std::FILE* out, double value);
