#pragma once

#include "support/testsupport.h"

#include "particles/cindermill/graph/engine/execservices.h"

#include <string>
#include <vector>

// What a test gives the engine in place of the program around it. Resources are files of one folder.
class TFakeServices : public TExecServices
{
public:
    int GetTraceParticleSize() const override { return TraceParticles; }
    int GetTraceAttributeSize() const override { return TraceEntries; }
    int GetPolicyFlags() const override { return PolicyFlags; }
    bool FindResource(const char* name, TString& path) override
    {
        if (Folder.empty())
            return false;
        path = (Folder + "/" + name).c_str();
        return true;
    }
    bool LoadTexture(const char*, TRenderTextureInstance&) override { return TexturesLoad; }
    void Warn(const char* text) override { Warnings.push_back(text); }

    int TraceParticles = 0;
    int TraceEntries = 64;
    int PolicyFlags = 0;
    // Nothing is found while it is empty.
    std::string Folder;
    bool TexturesLoad = true;
    std::vector<std::string> Warnings;
};
