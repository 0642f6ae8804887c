#pragma once

// What a node does in a particle's life. Node types, scheduled nodes and attributes share the words; only
// node types know the last.
enum TUsage
{
    TU_TRIGGER,
    TU_EMITTER,
    TU_PROCESS,
    TU_RENDER,
    TU_EFFECT,
    TU_NUMUSAGES
};

const char* GetUsageName(int usage);
