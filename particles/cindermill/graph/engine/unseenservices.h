#pragma once

#include "particles/cindermill/graph/engine/execservices.h"

// The program's services for an engine of whose run or export only numbers are asked: it keeps no traces, no
// policy holds for it, and it tells no artist of anything.
class TUnseenServices : public TExecServices
{
public:
    // Resources are those of `services`, which stays the caller's.
    explicit TUnseenServices(TExecServices& services) : Services(services) {}
    int GetTraceParticleSize() const override { return 0; }
    int GetTraceAttributeSize() const override { return 1; }
    int GetPolicyFlags() const override { return 0; }
    bool FindResource(const char* name, TString& path) override { return Services.FindResource(name, path); }
    bool LoadTexture(const char* path, TRenderTextureInstance& texture) override
    {
        return Services.LoadTexture(path, texture);
    }
    void Warn(const char* text) override { (void)text; }

private:
    TExecServices& Services;
};
