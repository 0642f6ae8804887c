#pragma once

// By itself the system ends a program that writes where nothing more can be taken. A program that says so
// gets an error from that write instead. For its start.

// Of a limit on the size of files: the old file stays.
void TakeFileSizeLimitAsError();
// Of a pipe that nobody reads any more, such as a terminal's that has gone: for a program that holds unsaved
// work.
void TakeClosedPipeAsError();
// Of a standard stream that was closed before the program began: the first file that it opens would get the
// stream's number, and whatever is printed would go into that file.
void TakeClosedStreamsAsErrors();
