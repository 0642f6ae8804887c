#include "library/wimp/gl/device/arbprogram.h"

TArbProgram::~TArbProgram()
{
    Delete();
}

void TArbProgram::Delete()
{
    if (Name != 0)
        GetGraphicsDevice()->DeleteProgram(Name);
    Name = 0;
}

bool TArbProgram::Assemble(const char* text)
{
    Delete();
    Name = GetGraphicsDevice()->AssembleProgram(Target, text);
    return IsAssembled();
}

void TArbProgram::Bind() const
{
    GetGraphicsDevice()->BindProgram(Target, Name);
}

void TArbProgram::Unbind() const
{
    GetGraphicsDevice()->DisableProgram(Target);
}

void TArbProgram::SetLocal(int slot, const float* value) const
{
    GetGraphicsDevice()->SetLocal(Target, slot, value);
}

void TArbProgram::SetEnv(int slot, const float* value) const
{
    GetGraphicsDevice()->SetEnv(Target, slot, value);
}
