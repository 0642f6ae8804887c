#pragma once

#include <cstddef>

// Files, with nothing but system calls.

// Joins the texts into the buffer; false, with what fits, if they are too long.
bool JoinTexts(char* buffer, size_t size, const char* first, const char* second, const char* third = "");

// The file's first bytes, with a zero behind them: how many there are. 0 if it cannot be read.
size_t ReadSmallFile(const char* path, char* buffer, size_t size);

// Makes the folder and those that it lies in, where it can.
void MakeCrashFolder(const char* path);

enum TWriteThrough
{
    WT_NO,
    WT_YES
};

// A new empty file in place of one that may be there. The old one is taken away and not emptied: it may be
// read-only, may be a link to somewhere else, or be written by another program of this kind that fails right
// now. -1 if it cannot be made.
int CreateCrashFile(const char* path, TWriteThrough through);
