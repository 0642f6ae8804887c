#include "crashfixture.h"

#include <regex>
#include <sstream>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Both streams of a program, until it has ended.
TEnd RunProcess(const std::function<void()>& program)
{
    TEnd end;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return end;
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        // What never comes must not keep the tests.
        alarm(Patience);
        program();
        _exit(127);
    }
    close(ends[1]);
    char buffer[4096];
    for (ssize_t got = 0; (got = read(ends[0], buffer, sizeof(buffer))) > 0;)
        end.Output.append(buffer, static_cast<size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);
    end.Signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    end.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return end;
}

void Execute(const std::vector<std::string>& arguments)
{
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
}

} // namespace

TCrashTest::TCrashTest()
{
    std::filesystem::create_directory(ProgramFolder());
    std::error_code error;
    std::filesystem::create_hard_link(CINDERMILL_CRASHCHILD, Program(), error);
    if (error)
        std::filesystem::copy_file(CINDERMILL_CRASHCHILD, Program());
}

TCrashTest::~TCrashTest()
{
    std::filesystem::permissions(ProgramFolder(), std::filesystem::perms::owner_all);
}

TEnd TCrashTest::Run(const std::vector<std::string>& arguments, const std::function<void()>& prepare) const
{
    return RunProcess([&] {
        setenv("XDG_STATE_HOME", Folder.Path("state").c_str(), 1);
        // The sanitizers want the same signals.
        setenv(
            "ASAN_OPTIONS",
            "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_sigill=0:handle_sigtrap=0:handle_abort=0:"
            "use_sigaltstack=0:detect_leaks=0",
            1);
        std::vector<std::string> all = {Program()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        if (prepare)
            prepare();
        Execute(all);
    });
}

std::string TCrashTest::Debug(const std::vector<std::string>& commands) const
{
    const TEnd end = RunProcess([&] {
        std::vector<std::string> all = {"gdb",
                                        "-nx",
                                        "-batch",
                                        "-iex",
                                        "set debuginfod enabled off",
                                        "-iex",
                                        "set auto-load safe-path /"};
        for (const std::string& command : commands) {
            all.push_back("-ex");
            all.push_back(command);
        }
        all.push_back(Program());
        all.push_back(Dump(ProgramFolder()));
        Execute(all);
    });
    return end.Status == 127 ? "" : end.Output;
}

TReportReader::TReportReader(const std::string& path)
{
    const std::string text = ReadBytes(path);
    EXPECT_NE(text, "") << path;
    size_t begin = 0;
    for (size_t end = 0; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2)
        Lines.push_back(text.substr(begin, end - begin));
    EXPECT_EQ(text.substr(begin), "") << "the last line has an end";
    for (const std::string& line : Lines)
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
}

bool TReportReader::Follows(const std::string& expression) const
{
    return Place < Lines.size() && std::regex_match(Lines[Place], std::regex(expression));
}

void TReportReader::Expect(const std::string& expression)
{
    EXPECT_TRUE(Follows(expression)) << "line " << Place + 1 << " is \""
                                     << (Place < Lines.size() ? Lines[Place] : "(none)") << "\", not "
                                     << expression;
    ++Place;
}

unsigned TReportReader::GetHex(const std::string& words) const
{
    const size_t place = Place < Lines.size() ? Lines[Place].find(words) : std::string::npos;
    EXPECT_NE(place, std::string::npos) << words;
    return place == std::string::npos
               ? 0
               : static_cast<unsigned>(strtoul(Lines[Place].c_str() + place + words.size(), nullptr, 16));
}

void TReportReader::ExpectEnd() const
{
    EXPECT_EQ(Place, Lines.size());
}

std::string Quote(const std::string& text)
{
    return std::regex_replace(text, std::regex("[.*+?^${}()|\\[\\]\\\\]"), "\\$&");
}

static void ExpectSystem(TReportReader& report, const std::string& program)
{
    utsname system;
    uname(&system);
    std::string version = system.release;
    version = version.substr(0, version.find_first_not_of("0123456789."));
    report.Expect("Error occurred at \\d+/\\d+/\\d{4} \\d\\d:\\d\\d:\\d\\d\\.");
    report.Expect(Quote(program) + ", run by [^ ]+\\.");
    report.Expect("Operating system:  Linux \\(" + Quote(version) + "(\\.0)?\\)\\.");
    report.Expect(std::to_string(sysconf(_SC_NPROCESSORS_ONLN)) + " processor\\(s\\), type \\d+\\.");
    report.Expect("\\d+% memory in use\\.");
    for (const char* what : {"physical memory", "physical memory free", "paging file", "paging file free",
                             "user address space", "user address space free"})
        report.Expect("\\d+ MBytes " + std::string(what) + "\\.");
}

// With the instruction pointer of the head. The stack pointer.
static unsigned ExpectContext(TReportReader& report, const TExpectedReport& expected, unsigned ip)
{
    const std::string number = "0x[0-9a-f]{8}";
    report.Expect("Context:");
    report.Expect("EDI:    " + number + "  ESI: " + number + "  EAX:   " + number);
    report.Expect("EBX:    " + number + "  ECX: " + number + "  EDX:   " + number);
    EXPECT_EQ(report.GetHex("EIP:    0x"), ip);
    report.Expect("EIP:    " + number + "  EBP: " + number + "  SegCs: " + number);
    const unsigned sp = report.GetHex("ESP: 0x");
    report.Expect("EFlags: " + number + "  ESP: " + number + "  SegSs: " + number);
    report.Expect("");
    report.Expect("Bytes at CS:EIP:");
    EXPECT_TRUE(report.Follows(expected.Code + ".*")) << expected.Code;
    report.Expect(expected.HasCode ? "([0-9a-f]{2} ){1,16}" : "");
    report.Expect("");
    return sp;
}

// From the stack pointer on; each line begins where the one before ends.
static void ExpectStack(TReportReader& report, const TExpectedReport& expected, unsigned sp)
{
    report.Expect("Stack:");
    int lines = 0;
    constexpr unsigned LineBytes = 32;
    const auto expectLine = [&] {
        EXPECT_EQ(report.GetHex("0x"), sp + LineBytes * static_cast<unsigned>(lines));
        report.Expect(".*");
    };
    for (; report.Follows("0x[0-9a-f]{8}: ([0-9a-f]{8} ){8}"); ++lines)
        expectLine();
    if (report.Follows("0x[0-9a-f]{8}: ([0-9a-f]{8} ){1,7}"))
        expectLine();
    if (!expected.IsStackFull) {
        EXPECT_EQ(lines > 0, expected.HasStack);
    }
    if (lines == 0)
        report.Expect("Exception encountered during stack dump\\.");
}

static void ExpectModules(TReportReader& report, const std::string& program)
{
    int number = 0;
    bool hasProgram = false;
    bool hasLibrary = false;
    while (report.Follows("Module \\d+")) {
        report.Expect("Module " + std::to_string(++number));
        hasProgram |= report.Follows(Quote(program));
        hasLibrary |= report.Follows("/.*/libc\\.so\\.6");
        report.Expect("/.*");
        report.Expect("Image Base: 0x[0-9a-f]{5}000  Image Size: 0x[0-9a-f]{5}000");
        report.Expect("Checksum:   0x00000000  Time Stamp: 0x[0-9a-f]{8}");
        report.Expect("File Size:  [1-9]\\d* {0,9}  File Time:  \\d+/\\d+/\\d{4} \\d\\d:\\d\\d:\\d\\d");
    }
    EXPECT_TRUE(hasProgram);
    EXPECT_TRUE(hasLibrary);
}

void ExpectReport(const std::string& path, const TExpectedReport& expected)
{
    SCOPED_TRACE(expected.Name);
    TReportReader report(path);
    char code[16];
    snprintf(code, sizeof(code), "0x%08x", expected.Signal);
    report.Expect(Quote(expected.Program) + " caused " + expected.Name + " \\(" + code + "\\) ");
    const unsigned ip = report.GetHex(" at 0033:");
    report.Expect("in module " + expected.Module + " at 0033:[0-9a-f]{8}\\.");
    report.Expect("");
    report.Expect("Exception handler called in " + Quote(expected.Place) + "\\.");
    ExpectSystem(report, expected.Program);
    if (!expected.Access.empty())
        report.Expect(expected.Access + " caused an access violation\\.");
    const unsigned sp = ExpectContext(report, expected, ip);
    ExpectStack(report, expected, sp);
    ExpectModules(report, expected.Program);
    report.Expect("");
    report.Expect("===== \\[end of ERRORLOG\\.TXT\\] =====");
    report.ExpectEnd();
}
