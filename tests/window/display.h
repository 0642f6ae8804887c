#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct xcb_connection_t;

struct TRectangle
{
    int X = 0;
    int Y = 0;
    int Width = 0;
    int Height = 0;
};

// Pixels as 0xRRGGBB, rows from the top.
struct TPicture
{
    uint32_t At(int x, int y) const { return Pixels[static_cast<size_t>(y) * Width + x]; }

    int Width = 0;
    int Height = 0;
    std::vector<uint32_t> Pixels;
};

// A test's own connection to a display. Through it a test sees what is shown, and learns when the others have
// dealt with what the display has sent them: that is the state to wait for after a click or a key, whatever
// comes of it.
class TDisplay
{
public:
    ~TDisplay();
    TDisplay() = default;
    TDisplay(const TDisplay&) = delete;
    TDisplay& operator=(const TDisplay&) = delete;

    bool Open(const std::string& name);
    bool IsOpen() const { return Connection != nullptr; }
    // Waits until the window manager has dealt with all input so far: it sees clicks before the windows do.
    bool AwaitManager();
    // Waits until the message loop of the program under test has turned so many times after it had all input
    // so far (see tests/turnteller). At once where no program runs.
    bool AwaitProgram(int turns);
    bool HasProgram() const { return FindTeller() != 0; }
    // Nothing where the part is not all on the screen.
    TPicture Grab(const TRectangle& part) const;
    // The text of the clipboard; "" if there is none.
    std::string ReadClipboard();

private:
    uint32_t GetAtom(const char* name) const;
    uint32_t FindTeller() const;
    void Send(uint32_t window, uint32_t type, const std::vector<uint32_t>& words, uint32_t mask);
    // Reads events until one is the wanted.
    bool AwaitEvent(const std::function<bool(const void* event)>& isWanted);

    xcb_connection_t* Connection = nullptr;
    uint32_t Root = 0;
    uint32_t Window = 0;
    uint32_t TurnsName = 0;
    uint32_t ExtentsName = 0;
    uint32_t ExtentsRequest = 0;
    uint32_t NumQuestions = 0;
};
