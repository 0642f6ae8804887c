#include "window/programfixture.h"

namespace {

// The program that people run fails, and leaves its report and its dump beside itself.
class ProgramCrash : public Program
{
protected:
    // The size of the dump of a program that is up and then gets the signal.
    uintmax_t Crash(const std::string& mode, int signal)
    {
        TProgramOptions options;
        options.Installed = "bin/cindermill";
        options.Settings = "DebugMode=" + mode + "\nNodeTypesDirectory=" + SourcePath("NodeTypes") + "\n";
        TProgram program(Screen, options);
        EXPECT_TRUE(program.IsUp()) << program.GetOutput();
        Screen.Key("ctrl+n");
        EXPECT_TRUE(Screen.WaitForWindow(DisplayTitle)) << program.GetOutput();
        program.Send(signal);
        EXPECT_EQ(program.WaitForEnd(), 128 + signal) << program.GetOutput();
        Report = ReadBytes(program.Path("bin/ERRORLOG.TXT"));
        EXPECT_EQ(Report.find(program.Path("bin/cindermill") + " caused "), 0u) << Report;
        const std::string dump = program.Path("bin/CRASH.DMP");
        return std::filesystem::exists(dump) ? std::filesystem::file_size(dump) : 0;
    }

    std::string Report;
};

} // namespace

TEST_F(ProgramCrash, TheSettingsOfTheProgramDecideWhatItLeaves)
{
    const uintmax_t small = Crash("1", SIGSEGV);
    EXPECT_NE(Report.find("caused an Access Violation (0x0000000b) \r\n"), std::string::npos) << Report;
    EXPECT_NE(Report.find("Exception handler called in main.\r\n"), std::string::npos) << Report;
    EXPECT_NE(Report.find("/libQt6Widgets.so"), std::string::npos) << Report;
    EXPECT_NE(Report.find("===== [end of ERRORLOG.TXT] =====\r\n"), std::string::npos) << Report;
    EXPECT_GT(small, 0u);
    EXPECT_LT(small, 32u << 20);
    EXPECT_GT(Crash("2", SIGABRT), 32u << 20);
    EXPECT_NE(Report.find("caused an Unknown exception type (0x00000006) \r\n"), std::string::npos) << Report;
}
