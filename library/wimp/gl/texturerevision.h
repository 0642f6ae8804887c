#pragma once

// Who keeps a picture that a texture was drawn in asks whether the texture is still the same: its name may
// have been given to another since, and its texels may have been replaced.

// To be called by whoever uploads texels or changes how they are read.
void TouchGlTexture(unsigned name);
// Another one after each change. That of a texture changes at times without one.
unsigned GetGlTextureRevision(unsigned name);
