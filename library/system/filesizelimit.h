#pragma once

// A limit on the size of files ends a program that passes it, unless it says that it will do with an error:
// from then on writing fails instead, and the old file stays. For the start of a program.
void TakeFileSizeLimitAsError();
