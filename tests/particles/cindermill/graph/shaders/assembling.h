#pragma once

#include <GL/glew.h>

#include <string>

// What the driver has against a program's text, empty if it takes it.
inline std::string ComplaintOf(GLenum target, const std::string& text)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    std::string complaint;
    if (glGetError() != GL_NO_ERROR) {
        const GLubyte* told = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
        complaint = "refused: " + std::string(told != nullptr ? reinterpret_cast<const char*>(told) : "");
    }
    glBindProgramARB(target, 0);
    glDeleteProgramsARB(1, &name);
    return complaint;
}
