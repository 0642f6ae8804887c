#pragma once

#include <vector>

class TSampleBuilder;

struct TSampleEffect
{
    // Of the file, without extension.
    const char* Name;
    void (*Make)(TSampleBuilder& effect);
};

const std::vector<TSampleEffect>& GetSampleEffects();
