#pragma once

#include "library/containers/string.h"

class TRenderTextureInstance;

// What the engine and its nodes need of the program around them: settings, resources and warnings.
class TExecServices
{
public:
    virtual ~TExecServices() = default;
    // Entries that an attribute trace keeps beyond the particle count, and per particle.
    virtual int GetTraceParticleSize() const = 0;
    virtual int GetTraceAttributeSize() const = 0;
    // TPolicyFlags.
    virtual int GetPolicyFlags() const = 0;
    // Turns a stored resource name into a real path; false if it cannot be found.
    virtual bool FindResource(const char* name, TString& path) = 0;
    // Reads and checks a texture file; on false the texture stays as it was.
    virtual bool LoadTexture(const char* path, TRenderTextureInstance& texture) = 0;
    // Tells the artist of a resource that went bad while the effect runs.
    virtual void Warn(const char* text) = 0;
};
