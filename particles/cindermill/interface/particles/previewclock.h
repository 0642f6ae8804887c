#pragma once

#include "library/containers/string.h"
#include "particles/cindermill/graph/engine/random.h"

#include <cstdint>

class TDocument;

// Runs a document's engine in real time: what the preview's transport does, without its window.
class TPreviewClock
{
public:
    // The longest step of a frame, in milliseconds: a slow machine runs the effect slower.
    static constexpr uint32_t MaxStep = 50;
    // Of the step button, in seconds; every step is one of these while the seed is kept.
    static constexpr float SingleStep = 0.01f;
    // A time further on cannot be sought.
    static constexpr float MostSeconds = 3600;
    // What the effect may run at, from the slowest on.
    static constexpr int NumSpeeds = 6;
    static constexpr int NormalSpeed = 3;
    // What a person reads for it.
    static const char* GetSpeedText(int speed);

    // The time counts from now.
    void Start(TDocument& document, uint32_t now);
    // One idle pass at a tick count. True if the engine was run.
    bool Tick(uint32_t now);
    // The restart from time 0, with the error list where the effect has errors.
    void Update();
    void TogglePause() { Paused = !Paused; }
    void Play() { Paused = false; }
    // Pauses, and runs the engine by one step. True if it was run.
    bool Step();
    bool IsPaused() const { return Paused; }
    // Whether there is an effect to show, moving or not.
    bool HasEffect() const;
    // Whether there is an effect that moves.
    bool IsRunning() const;
    float GetTime() const;
    // The engine's time to two decimals.
    void GetTimeText(TString& text) const;

    // By its number; what lies outside is brought inside.
    void SetSpeed(int speed);
    int GetSpeed() const { return Speed; }
    // Seconds after which the effect starts again; 0 for never.
    void SetLoop(float seconds) { Loop = seconds; }
    float GetLoop() const { return Loop; }
    // With a seed of its own, and steps of one length, each run of the effect is the same. Both restart it.
    void KeepSeed(bool keep);
    bool IsSeedKept() const { return SeedKept; }
    void ChangeSeed();
    // Runs the effect up to a time, from the start on where it lies behind; a long way takes several ticks.
    void Seek(float time);
    bool IsSeeking() const { return Seeking; }
    float GetSeekTime() const { return SeekTime; }
    // Another one after every start of the engine.
    unsigned GetNumStarts() const;
    // While the time is dragged, it stands still but for what is sought.
    void Hold(bool held) { Held = held; }
    // Whether a loop may start the effect again, which may read files; otherwise it runs on.
    void AllowRestarts(bool allowed) { MayRestart = allowed; }
    // How long the engine took in the last tick in which it ran, for one of its frames, in milliseconds.
    float GetFrameCost() const { return FrameCost; }

private:
    // One frame. A fault empties the preview and shows the error list.
    bool Run(float dt);
    bool RunTick(uint32_t elapsed);
    bool RunFor(float seconds);
    bool RunSteps(float seconds);
    bool RunSeek();
    void Restart();
    bool IsLoopOver() const;
    void NoticeStart();

    TDocument* Doc = nullptr;
    uint32_t LastTick = 0;
    bool Paused = false;
    bool Held = false;
    bool MayRestart = true;
    int Speed = NormalSpeed;
    float Loop = 0;
    bool SeedKept = false;
    uint32_t Seed = 1;
    TRandomRun Random;
    // The engine's start that the draws belong to.
    unsigned NumStarts = 0;
    // Seconds that no whole step has been made of yet.
    float Pending = 0;
    bool Seeking = false;
    float SeekTime = 0;
    // What was sought from the start draws the same numbers at each attempt, until the effect plays on.
    bool SoughtFromStart = false;
    float FrameCost = 0;
    int NumFrames = 0;
};
