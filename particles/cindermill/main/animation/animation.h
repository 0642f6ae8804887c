#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/maths/vector4.h"

// One key-framed track: up to four components per key.
struct TAnimChannel
{
    vector<TVector4> Keys;
    vector<float> Times;

    // Linear between the keys, clamped at both ends. The track must not be empty.
    TVector4 Evaluate(float t) const;
};

// Which tracks an evaluation takes.
enum TAnimTracks
{
    AT_POSITION = 1,
    AT_ROTATION = 2,
    AT_SCALE = 4
};

// The motion of one object over time, read from a .vori file: position, rotation (a quaternion) and scale.
// docs/animation-file.md has the file format.
class TAnimation
{
public:
    static constexpr int NumChannels = 3;

    // False with the message shown.
    bool Load(const char* path);
    // Position, then Euler angles in degrees: six floats. Tracks that are not in the mask or hold no keys
    // count as 0, no rotation and no scaling.
    void Evaluate(float t, unsigned mask, float* out) const;
    // Seconds: the last key of the first track.
    float GetLength() const { return Length; }
    const TString& GetFileName() const { return FileName; }
    const TAnimChannel& GetChannel(int i) const { return Channels[i]; }
    // What is wrong with the tags of a file that was read all the same; empty for nothing.
    const TString& GetTagFault() const { return TagFault; }

private:
    TAnimChannel Channels[NumChannels];
    float Length = 0;
    TString FileName;
    TString TagFault;
};

// The shared animation of a path (compared without case), read at its first use; null if it cannot be read.
// Kept for the life of the process.
TAnimation* GetAnimation(const char* path);
// The same, but only if it has been read already.
TAnimation* FindLoadedAnimation(const char* path);
