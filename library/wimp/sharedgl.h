#pragma once

class TWindowPeer;

// Where the processor draws, a context of its own for each window, and what the toolkit has of its own to put
// such windows together, cost megabytes for each and a copy of every frame. There the windows share one
// context, and what each has drawn is painted as any other picture is.

// Finds out at the first call whether OpenGL works. Whoever asks the toolkit for its own way gets that.
bool IsGlShared();
// False if the driver refuses.
bool MakeSharedGlCurrent();
// For a window of so many dots, with the context current; 0 for more than the driver takes, or none.
unsigned UseSharedFrameBuffer(int width, int height);
// Has the window drawn, and its widget painted with that.
void PaintShared(TWindowPeer& peer);
