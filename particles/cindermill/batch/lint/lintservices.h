#pragma once

#include "particles/cindermill/graph/engine/execservices.h"

// What an engine needs that makes an export for a look at it: textures count as found and read, as the export
// holds their names alone.
class TLintServices : public TExecServices
{
public:
    // The others' answers come from `services`, which stays the caller's.
    explicit TLintServices(TExecServices& services) : Services(services) {}
    int GetTraceParticleSize() const override { return 1; }
    int GetTraceAttributeSize() const override { return 1; }
    // The policies are asked for by themselves.
    int GetPolicyFlags() const override { return 0; }
    bool FindResource(const char* name, TString& path) override
    {
        if (!Services.FindResource(name, path))
            path = name;
        return true;
    }
    bool LoadTexture(const char* path, TRenderTextureInstance& texture) override
    {
        (void)path;
        (void)texture;
        return true;
    }
    void Warn(const char* text) override { (void)text; }

private:
    TExecServices& Services;
};
