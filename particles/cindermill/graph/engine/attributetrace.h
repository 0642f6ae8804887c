#pragma once

#include "library/containers/vector.h"

#include <cstdint>

class TParticleBuffer;

// The last values of one output port, per particle slot.
class TAttributeTrace
{
public:
    // `particles` slots, each a ring of `entries` values of `width` floats. Only once.
    void Init(int particles, int entries, int width);

    void AddEntry(const TParticleBuffer& buffer, int usage, int index, const float* value);
    int GetNumEntries(int globalParticle) const;
    float GetEntry(int globalParticle, int entry, int component) const;
    // The smallest and largest of the components in `mask`, of values that are finite; both 0 if there are no
    // entries, and the smallest above the largest if there are no such values.
    void GetRange(int globalParticle, float& min, float& max, uint32_t mask) const;
    // Floats of an entry.
    int GetWidth() const { return Width; }
    bool IsTouched() const { return Touched; }
    void ClearTouched() { Touched = false; }

private:
    void Allocate();
    int GetReadPos(int slot) const;
    const float* GetSlotEntry(int slot, int position) const;
    int Next(int position) const;

    int NumParticles = 0;
    int NumEntries = 0;
    int Width = 0;
    vector<int> WritePos;
    vector<int> ReadPos;
    vector<float> Entries;
    bool Touched = false;
};
