#pragma once

#include "library/containers/string.h"

#include <cstdint>

class TDocument;

// Runs a document's engine in real time: what the preview's transport does, without its window.
class TPreviewClock
{
public:
    // The longest step of a frame, in milliseconds: a slow machine runs the effect slower.
    static constexpr uint32_t MaxStep = 50;
    // Of the step button, in seconds.
    static constexpr float SingleStep = 0.01f;

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

private:
    // A fault empties the preview and shows the error list.
    bool Run(float dt);

    TDocument* Doc = nullptr;
    uint32_t LastTick = 0;
    bool Paused = false;
};
