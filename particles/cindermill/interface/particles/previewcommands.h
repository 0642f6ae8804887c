#pragma once

struct TMessage;
class TWindow;

// What the parts of the preview ask of the window around them.
class TPreviewCommands
{
public:
    virtual ~TPreviewCommands() = default;
    // A key or a character that the part has no use for. True if it was one of the preview's.
    virtual bool OnPreviewKey(const TMessage& message) = 0;
    // Of all that can be done, and of the speeds alone; at a position of the window.
    virtual void OpenPreviewMenu(TWindow& window, int x, int y) = 0;
    virtual void OpenSpeedMenu(TWindow& window, int x, int y) = 0;
    // The view of the effect gets the keys.
    virtual void FocusView() = 0;
};
