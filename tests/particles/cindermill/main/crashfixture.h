#pragma once

#include "support/testsupport.h"

#include <filesystem>

// Where the program under test is of no use with a broken heap, or has none of the system's.
#if defined(CINDERMILL_SANITIZED)
constexpr bool HasSystemHeap = false;
#else
constexpr bool HasSystemHeap = true;
#endif

// How a program ended.
struct TEnd
{
    // 0 if it ended by itself, with the status.
    int Signal = 0;
    int Status = -1;
    std::string Output;
};

// A copy of the program that fails, in a folder of its own, with a folder for the user's state.
class TCrashTest : public testing::Test
{
protected:
    TCrashTest();
    ~TCrashTest() override;

    // `prepare` runs in the new process before the program.
    TEnd Run(const std::vector<std::string>& arguments, const std::function<void()>& prepare = nullptr) const;
    std::string ProgramFolder() const { return Folder.Path("program"); }
    std::string StateFolder() const { return Folder.Path("state/cindermill"); }
    std::string Program() const { return ProgramFolder() + "/crashchild"; }
    static std::string Report(const std::string& folder) { return folder + "/ERRORLOG.TXT"; }
    static std::string Dump(const std::string& folder) { return folder + "/CRASH.DMP"; }
    // What the debugger of the system says to the commands; "" if there is none.
    std::string Debug(const std::vector<std::string>& commands) const;

    TTempFolder Folder;
};

// Goes through a report line by line. Each expectation is of the next line.
class TReportReader
{
public:
    explicit TReportReader(const std::string& path);

    // The whole line matches the expression.
    void Expect(const std::string& expression);
    bool Follows(const std::string& expression) const;
    void ExpectEnd() const;
    // The number in hexadecimal digits behind the words in the next line.
    unsigned GetHex(const std::string& words) const;

private:
    std::vector<std::string> Lines;
    size_t Place = 0;
};

// The text with what has a meaning in expressions made harmless.
std::string Quote(const std::string& text);

// What a report is to tell.
struct TExpectedReport
{
    std::string Program;
    std::string Name;
    int Signal = 0;
    // An expression.
    std::string Module;
    std::string Place = "main";
    // "" for none.
    std::string Access;
    bool HasStack = true;
    // The stack has come to its end: the stack pointer lies in its last page or below it.
    bool IsStackFull = false;
    bool HasCode = true;
    // How the bytes at the place of the failure begin.
    std::string Code;
};
void ExpectReport(const std::string& path, const TExpectedReport& expected);
