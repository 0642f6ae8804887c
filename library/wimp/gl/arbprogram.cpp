#include "library/wimp/gl/arbprogram.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>
#include <cstring>

namespace {
// The log takes less at a time than a long program has.
void LogProgram(const char* text)
{
    constexpr int piece = 4000;
    for (size_t left = strlen(text); left > 0;) {
        const size_t length = left < piece ? left : piece;
        DebugPrintf("%.*s", static_cast<int>(length), text);
        text += length;
        left -= length;
    }
}
} // namespace

TArbProgram::~TArbProgram()
{
    DeleteGlProgram(Name);
}

bool TArbProgram::Assemble(const char* text)
{
    DeleteGlProgram(Name);
    Name = 0;
    // What went wrong before is not this program's fault.
    CheckGlError();
    unsigned name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(Target, name);
    glProgramStringARB(Target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(strlen(text)), text);
    const unsigned error = glGetError();
    if (error == GL_INVALID_OPERATION) {
        GLint position = -1;
        glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
        const char* reason = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
        LogProgram(text);
        DebugPrintf("opengl arb shader assemble error at position %d\n%s\n", position,
                    reason != nullptr ? reason : "");
        DeleteGlProgram(name);
        return false;
    }
    ASSERT_TEXT(error == GL_NO_ERROR, "error == GL_NO_ERROR");
    Name = name;
    return true;
}

void TArbProgram::Bind() const
{
    glBindProgramARB(Target, Name);
    glEnable(Target);
}

void TArbProgram::Unbind() const
{
    glDisable(Target);
}

void TArbProgram::SetLocal(int slot, const float* value) const
{
    glProgramLocalParameter4fvARB(Target, static_cast<GLuint>(slot), value);
}

void TArbProgram::SetEnv(int slot, const float* value) const
{
    glProgramEnvParameter4fvARB(Target, static_cast<GLuint>(slot), value);
}
