#pragma once

#include "particles/cindermill/graph/engine/execservices.h"

class TResourceLocator;
class TSettings;

// Gives the engine the program's settings, resources and message forms.
class TAppServices : public TExecServices
{
public:
    TAppServices(const TSettings& settings, TResourceLocator& locator) : Settings(settings), Locator(locator)
    {
    }
    int GetTraceParticleSize() const override;
    int GetTraceAttributeSize() const override;
    int GetPolicyFlags() const override;
    bool FindResource(const char* name, TString& path) override;
    bool LoadTexture(const char* path, TRenderTextureInstance& texture) override;
    void Warn(const char* text) override;

private:
    const TSettings& Settings;
    TResourceLocator& Locator;
};
