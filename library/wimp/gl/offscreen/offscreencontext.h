#pragma once

#include "library/containers/string.h"

// An OpenGL context that no window and no display belong to. One for a program.
class TOffscreenContext
{
public:
    TOffscreenContext() = default;
    ~TOffscreenContext();
    TOffscreenContext(const TOffscreenContext&) = delete;
    TOffscreenContext& operator=(const TOffscreenContext&) = delete;

    // The first driver that has all that the preview needs is taken, and its context made current. False
    // where there is none; GetFault then tells what the last one lacked.
    bool Create();
    bool MakeCurrent();
    const TString& GetFault() const { return Fault; }

private:
    bool CreateOn(void* display);
    bool CreateContext(void* display);
    void Destroy();

    void* Display = nullptr;
    void* Context = nullptr;
    // Null where the driver needs no surface.
    void* Surface = nullptr;
    TString Fault;
};
