#pragma once

#include <cmath>
#include <cstdint>

// What a window hears of. Positions and sizes are pixels of the window's client area; TRenderWindow tells
// what a pixel is.
enum TMessageType
{
    MT_PAINT,
    MT_SIZE,
    MT_CLOSE,
    MT_LEFTDOWN,
    MT_LEFTUP,
    MT_MIDDLEDOWN,
    MT_MIDDLEUP,
    MT_RIGHTDOWN,
    MT_RIGHTUP,
    MT_MOUSEMOVE,
    MT_MOUSELEAVE,
    MT_WHEEL,
    MT_KEYDOWN,
    MT_KEYUP,
    MT_CHAR,
    MT_TIMER,
    MT_FOCUSGAINED,
    MT_FOCUSLOST,
    MT_SCROLL,
    // The mouse that was captured has been taken away.
    MT_CAPTURELOST
};

// Keys by their codes. Letters and digits are their ASCII characters, letters in upper case; no other
// printable key has a code, as its character may be the code of a named one: it gives its character only.
enum TKey
{
    KEY_BACKSPACE = 8,
    KEY_TAB = 9,
    KEY_RETURN = 13,
    KEY_SHIFT = 16,
    KEY_CTRL = 17,
    KEY_ALT = 18,
    KEY_ESCAPE = 27,
    KEY_PAGEUP = 33,
    KEY_PAGEDOWN = 34,
    KEY_END = 35,
    KEY_HOME = 36,
    KEY_LEFT = 37,
    KEY_UP = 38,
    KEY_RIGHT = 39,
    KEY_DOWN = 40,
    KEY_INSERT = 45,
    KEY_DELETE = 46,
    // Asks for the context menu, as Shift+F10 does where nobody has another use for that.
    KEY_MENU = 93,
    KEY_F1 = 112,
    KEY_F10 = 121,
    KEY_F24 = 135
};

constexpr bool IsLetterOrDigit(int key)
{
    return (key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z');
}

enum TMouseButton
{
    MB_LEFT = 1,
    MB_MIDDLE = 2,
    MB_RIGHT = 4
};

enum TKeyFlag
{
    KF_SHIFT = 1,
    KF_CTRL = 2,
    KF_ALT = 4
};

class TGDIContext;

// What a notch of the wheel turns a message's Delta by.
constexpr int WheelNotch = 120;

struct TMessage
{
    TMessageType Type = MT_PAINT;
    // The pointer, on a scaled screen between two pixels too; for MT_SIZE the new size; for MT_SCROLL, X is
    // the new position.
    double X = 0;
    double Y = 0;
    // A WheelNotch for each notch of the wheel, away from the user.
    int Delta = 0;
    // For key messages.
    int Key = 0;
    // For MT_KEYDOWN and MT_CHAR: the key is held, and has been told before.
    bool IsRepeat = false;
    // For MT_CHAR, a Unicode character.
    uint32_t Character = 0;
    // For MT_TIMER.
    int Timer = 0;
    // TMouseButton and TKeyFlag bits as they stand with the message.
    int Buttons = 0;
    int KeyFlags = 0;
    // For MT_PAINT of a window that is not drawn by OpenGL.
    TGDIContext* Context = nullptr;

    // The pixel that the pointer is in.
    int GetPixelX() const { return static_cast<int>(std::floor(X)); }
    int GetPixelY() const { return static_cast<int>(std::floor(Y)); }
};
