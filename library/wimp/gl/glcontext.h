#pragma once

// The OpenGL of the run. No header of this library shows OpenGL's own: names and codes are plain integers.

// Looks the entry points up with the current context, once for the process. False if there is no context or
// if it lacks the vertex and fragment program extensions or frame buffer objects; GetGlFault then tells what.
// From the first success on there is a graphics device.
bool InitGl();
// Whether InitGl has succeeded: objects may be made.
bool IsGlReady();
const char* GetGlFault();
// Whether the driver takes programs with the vendor's options.
bool HasVendorPrograms();

// Whether the processor draws, as there is no graphics card: pictures then lie in the program's own memory.
bool DoesProcessorDraw();

// Textures and targets of drawing have at most so many pixels across and down. Needs a ready OpenGL.
int GetMaxTextureSide();

// Whether a context is current at the moment, after InitGl has succeeded.
bool IsGlCurrent();
// Frees a texture's name now or, when no context is current, as soon as one is. 0 is passed over.
void DeleteGlTexture(unsigned name);
// Frees what was given up while no context was current.
void FlushGlDeletions();

// Forgets the errors that others have left in the current context.
void DropGlErrors();
// Asserts "err == GL_NO_ERROR || err == GL_INVALID_OPERATION", with the error in the log.
void CheckGlError();
