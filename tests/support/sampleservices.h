#pragma once

#include "support/fakeservices.h"

// Finds what the samples name.
class TSampleServices : public TFakeServices
{
public:
    bool FindResource(const char* name, TString& path) override
    {
        path = SourcePath(std::string("samples/animations/") + name).c_str();
        return true;
    }
};
