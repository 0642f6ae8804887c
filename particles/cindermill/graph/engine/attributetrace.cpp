#include "particles/cindermill/graph/engine/attributetrace.h"

#include "particles/cindermill/graph/engine/particlebuffer.h"

#include <cmath>

namespace {

constexpr int64_t MaxTraceBytes = int64_t{1} << 30;

int AtLeastOne(int value)
{
    return value > 0 ? value : 1;
}

} // namespace

void TAttributeTrace::Init(int particles, int entries, int width)
{
    ASSERT_TEXT(NumParticles == 0, "Entries == 0");
    NumParticles = AtLeastOne(particles);
    NumEntries = AtLeastOne(entries);
    Width = width;
}

// Most ports are never watched, so the room is taken with the first entry.
void TAttributeTrace::Allocate()
{
    constexpr int positionBytes = 8;
    const int64_t slotBytes = static_cast<int64_t>(NumEntries) * AtLeastOne(Width) * 4 + positionBytes;
    ASSERT_TEXT_MSG(NumParticles <= MaxTraceBytes / slotBytes, "bytes <= MaxTraceBytes",
                    "The attribute trace needs too much memory");
    WritePos.resize(NumParticles);
    ReadPos.resize(NumParticles);
    for (int& pos : ReadPos)
        pos = -1;
    Entries.resize(NumParticles * NumEntries * Width);
}

int TAttributeTrace::GetReadPos(int slot) const
{
    return ReadPos.empty() ? -1 : ReadPos[slot];
}

const float* TAttributeTrace::GetSlotEntry(int slot, int position) const
{
    return Entries.data() + static_cast<int64_t>(slot * NumEntries + position) * Width;
}

void TAttributeTrace::AddEntry(const TParticleBuffer& buffer, int usage, int index, const float* value)
{
    Touched = true;
    const int globalparticle = buffer.GetGlobalParticle(index, usage);
    ASSERT(globalparticle >= 0);
    if (WritePos.empty())
        Allocate();
    const int slot = globalparticle % NumParticles;
    int& write = WritePos[slot];
    int& read = ReadPos[slot];
    float* entry = Entries.data() + static_cast<int64_t>(slot * NumEntries + write) * Width;
    for (int c = 0; c < Width; ++c)
        entry[c] = value[c];
    if (write == read)
        read = Next(read);
    else if (read == -1)
        read = 0;
    write = Next(write);
}

int TAttributeTrace::Next(int position) const
{
    return position + 1 == NumEntries ? 0 : position + 1;
}

int TAttributeTrace::GetNumEntries(int globalParticle) const
{
    const int slot = globalParticle % NumParticles;
    const int read = GetReadPos(slot);
    if (read == -1)
        return 0;
    const int count = WritePos[slot] - read;
    return count > 0 ? count : count + NumEntries;
}

float TAttributeTrace::GetEntry(int globalParticle, int entry, int component) const
{
    ASSERT_TEXT(entry < GetNumEntries(globalParticle), "entry < GetNumEntries(globalparticle)");
    const int slot = globalParticle % NumParticles;
    int position = GetReadPos(slot) + entry;
    if (position >= NumEntries)
        position -= NumEntries;
    return GetSlotEntry(slot, position)[component];
}

void TAttributeTrace::GetRange(int globalParticle, float& min, float& max, uint32_t mask) const
{
    min = max = 0;
    const int count = GetNumEntries(globalParticle);
    if (count == 0)
        return;
    min = 1e30f;
    max = -1e30f;
    const int slot = globalParticle % NumParticles;
    int position = GetReadPos(slot);
    for (int n = 0; n < count; ++n) {
        const float* values = GetSlotEntry(slot, position);
        for (int c = 0; c < Width; ++c) {
            if ((mask >> c & 1) == 0 || !std::isfinite(values[c]))
                continue;
            if (values[c] < min)
                min = values[c];
            if (values[c] > max)
                max = values[c];
        }
        position = Next(position);
    }
}
