#include "library/wimp/gl/texturerevision.h"

namespace {
constexpr unsigned NumRevisions = 256;
unsigned Revisions[NumRevisions];
} // namespace

void TouchGlTexture(unsigned name)
{
    ++Revisions[name % NumRevisions];
}

unsigned GetGlTextureRevision(unsigned name)
{
    return Revisions[name % NumRevisions];
}
