#pragma once

#include "library/containers/sortedmap.h"
#include "library/containers/string.h"

#include <cstdint>

// The names behind the identities in exported files, as far as they are known beforehand: the console's
// commands, the patches that the exporter numbers, and the vertex attributes of the render stages.
class TEfxNames
{
public:
    TEfxNames();
    // The name, or the number in hexadecimal.
    void GetName(uint32_t id, TString& result) const;

private:
    void Add(const char* name);

    sortedmap<uint32_t, TString> Names;
};

// How an argument of a graphics method is read.
enum TStateArgument
{
    SA_NUMBER,
    SA_FLOAT,
    SA_ENUM,
    // The same or another enumerant in each half.
    SA_HALVES
};

struct TStateMethod
{
    static constexpr int MaxArguments = 2;

    uint32_t Method;
    const char* Name;
    TStateArgument Arguments[MaxArguments];
    // 0 and 1 are names here too.
    bool HasFactors;
};

// Both null for what is unknown.
const TStateMethod* FindStateMethod(uint32_t method);
const char* GetStateEnumName(uint32_t value, bool hasFactors);
