#pragma once

#include "library/wimp/window.h"

class QMenu;
class TMenu;

// The application's main window: a menu bar, document windows side by side in its client area, a status bar.
class TMDIFrame : public TWindow
{
public:
    // The kind is WK_MAIN. The menu's popup with the text "Window" lists the document windows.
    bool CreateFrame(const TWindowParams& params, TMenu& menu);
    // The document windows one behind the other, each a little further down and to the right, so that all
    // their title bars can be seen. Minimised ones stay so, side by side along the bottom.
    void Cascade();
    // The first part of the status bar.
    void SetStatus(const char* text);
    // In the same place for a while, then what stands there otherwise comes back.
    void ShowNote(const char* text);
    // No other has been shown since, though it may have left its place.
    bool IsLastNote(const char* text) const;
    // The document window in front, or null.
    TWindow* GetActiveChild() const;
    void Activate(TWindow& child);
    // Unfolds the first menu, for the keyboard to go on from.
    void OpenMenuBar();
    // What fills the client area as long as no document window is open. Asserts that there is none yet.
    void SetEmptyPage(TWimpControl& page);
    // Of all the screen, whatever the system keeps for itself there; 0 for none.
    static void GetScreenSize(int& width, int& height);

private:
    void ListChildren(QMenu* menu);

    TWindowHandle Client = nullptr;
};
