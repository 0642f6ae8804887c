#pragma once

#include "library/wimp/gl/device/graphicsdevice.h"

// The graphics device over OpenGL. InitGl makes the one of the run.
class TGlDevice : public TGraphicsDevice
{
public:
    bool IsCurrent() const override;
    bool HasVendorPrograms() const override;
    bool CanDrawInstances() const override;
    void CheckError() override;

    void UploadTexture(unsigned& name, TTextureFormat format, int width, int height,
                       uint8_t* pixels) override;
    void BindTexture(int unit, unsigned name) override;
    void DeleteTexture(unsigned name) override;

    unsigned AssembleProgram(TArbTarget target, const char* text) override;
    void BindProgram(TArbTarget target, unsigned name) override;
    void DisableProgram(TArbTarget target) override;
    void SetLocal(TArbTarget target, int slot, const float* value) override;
    void SetEnv(TArbTarget target, int slot, const float* value) override;
    void DeleteProgram(unsigned name) override;

    void UploadBuffer(unsigned& name, const void* data, size_t size) override;
    void DeleteBuffer(unsigned name) override;
    void SetAttributeArray(unsigned attribute, const TVertexArray& array) override;
    void SetAttributeValue(unsigned attribute, const float* value) override;
    void Draw(int primitive, int numVertices) override;
    void DrawInstances(int primitive, int numVertices, int numItems) override;
    void ResetAttributes(unsigned numAttributes) override;

    void SetStates(const TDrawStates& states) override;
    void ClearStates(const TDrawStates& states) override;

    // Frees what was given up while no context was current. Only with a current context.
    void FlushDeletions();

private:
    vector<unsigned> DeadTextures;
    vector<unsigned> DeadPrograms;
    vector<unsigned> DeadBuffers;
};
