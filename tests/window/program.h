#pragma once

#include "support/testsupport.h"
#include "window/screen.h"

// How the program is started.
struct TProgramOptions
{
    std::vector<std::string> Environment;
    // Bytes that a file may have at most, as on a disc that is full; 0 for no limit.
    long FileSizeLimit = 0;
    // Lines of the settings, besides the version.
    std::string Settings;
    // Where in its home the program lies, as if it were installed there; "" for where it was built.
    std::string Installed;
    // The program that is started; "" for the one that was built.
    std::string Path;
    // Of the desktop.
    int Scale = 1;
};

// The program, started by itself on a screen, with settings and a home of its own. What remains of it ends
// with the object.
class TProgram
{
public:
    explicit TProgram(TScreen& screen, const TProgramOptions& options = TProgramOptions());
    ~TProgram();
    TProgram(const TProgram&) = delete;
    TProgram& operator=(const TProgram&) = delete;

    // Waits for the main window.
    bool IsUp() const;
    bool IsRunning();
    void Send(int signal) const;
    // Of the processor's time, what it has had so far.
    double GetProcessorSeconds() const;
    // Waits for the end; the exit status, or -1 if it goes on.
    int WaitForEnd();
    // What it has printed so far.
    std::string GetOutput() const;
    // A path in the program's home.
    std::string Path(const std::string& leaf) const { return Folder.Path(leaf); }

    TRectangle GetMainRectangle() const;
    int GetScale() const { return Scale; }
    // Chooses an entry of the File menu by its number, those that can be chosen counted from 1.
    void ChooseFromFileMenu(int number);
    // Answers a chooser that has come up under the title.
    bool AnswerChooser(const std::string& title, const std::string& path);
    bool HasMessage(const std::string& title) const { return !Screen.FindWindow(title).empty(); }
    // Waits for a dialog, presses the key in it, and waits until it has gone.
    bool AnswerDialog(const std::string& title, const std::string& key);

private:
    TScreen& Screen;
    const int Scale;
    TTempFolder Folder;
    pid_t Process = -1;
    int Status = -1;
};

constexpr const char* MainTitle = "^Cindermill$";

// The entries of the File menu.
enum TFileEntry
{
    FE_NEW = 1,
    FE_OPEN,
    FE_SAVE,
    FE_SAVEAS,
    FE_EXPORT,
    FE_PROPERTIES,
    FE_RECENT,
    FE_EXIT
};
