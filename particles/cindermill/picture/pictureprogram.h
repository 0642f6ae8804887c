#pragma once

// Draws effects into pictures: the batch program starts it with its own command line. The exit status is the
// batch program's too.
int RunPictureProgram(int argc, char** argv);
