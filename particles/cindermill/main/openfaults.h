#pragma once

#include "library/containers/string.h"

// Gathers why files could not be opened, so that a drop of many files brings one message and not one for
// each.
class TOpenFaults
{
public:
    // Without a reason the person knows already.
    void Add(const TString& path, const TString& fault);
    void Tell() const;

private:
    TString Lines;
    int NumFaults = 0;
};
