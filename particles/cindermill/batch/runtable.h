#pragma once

#include <cstdio>

class TEffectExec;

// The table of every attribute after every frame, as comma-separated values: a row for each attribute of a
// trigger or emitter, a row for each living particle for the others.
class TRunTable
{
public:
    TRunTable(const TEffectExec& engine, std::FILE* out) : Engine(engine), Out(out) {}
    void WriteHeader();
    void WriteFrame(int frame);

private:
    void WriteAttribute(int group, int attrib);
    void WriteRow(int group, int attrib, int particle, int global, int index);

    const TEffectExec& Engine;
    std::FILE* Out;
    int Frame = 0;
};
