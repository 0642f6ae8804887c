#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TWindow;

// Takes files dropped onto a window: keeps their names, then reports code 34 with a TDropPoint.
struct TDropPoint
{
    // Of the screen.
    int X;
    int Y;
};

class TDropTarget
{
public:
    TDropTarget() = default;
    ~TDropTarget();
    TDropTarget(const TDropTarget&) = delete;
    TDropTarget& operator=(const TDropTarget&) = delete;

    // Asserts "Owner == 0".
    void Attach(TWindow* owner);
    const vector<TString>& GetFiles() const { return Files; }

private:
    friend class TDropFilter;

    TWindow* Owner = nullptr;
    class TDropFilter* Filter = nullptr;
    vector<TString> Files;
};
