#pragma once

#include "library/containers/string.h"

#include <cstdio>

class TReplayReport;
struct TReplayDifference;

// The differences between a preview and a replay as comma-separated values.
class TReplayTable
{
public:
    // Where the table is of several files, each row ends with its own.
    TReplayTable(std::FILE* out, bool isOfSeveral) : Out(out), IsOfSeveral(isOfSeveral) {}
    void Write(const TReplayReport& report, const char* file);

private:
    void WriteHeader();
    void WriteDifference(const TReplayDifference& difference);
    void WriteText(const char* text);

    std::FILE* Out;
    const bool IsOfSeveral;
    bool HasHeader = false;
};

// A number as a table holds it: what is none as "nan", without a sign.
void WriteTableNumber(std::FILE* out, double value);
