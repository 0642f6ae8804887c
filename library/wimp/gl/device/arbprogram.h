#pragma once

#include "library/wimp/gl/device/graphicsdevice.h"

// One assembled program. Needs a graphics device from Assemble on.
class TArbProgram
{
public:
    explicit TArbProgram(TArbTarget target) : Target(target) {}
    ~TArbProgram();
    TArbProgram(const TArbProgram&) = delete;
    TArbProgram& operator=(const TArbProgram&) = delete;

    // Gives the text to the driver. On a refusal logs the text and
    // "opengl arb shader assemble error at position %d\n%s\n", and returns false.
    bool Assemble(const char* text);
    bool IsAssembled() const { return Name != 0; }
    // Binds and enables the program, and disables its target.
    void Bind() const;
    void Unbind() const;
    // For the bound program: four floats.
    void SetLocal(int slot, const float* value) const;
    void SetEnv(int slot, const float* value) const;

private:
    void Delete();

    TArbTarget Target;
    unsigned Name = 0;
};
