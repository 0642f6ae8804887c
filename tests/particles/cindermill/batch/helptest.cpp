#include "batchfixture.h"

#include <regex>
#include <set>

namespace {

class TBatchHelp : public TBatch
{
protected:
    // The commands, in the order of the usage.
    std::vector<std::string> Commands()
    {
        std::vector<std::string> result;
        for (const std::string& line : Lines(Run("").Err))
            if (line.compare(0, 4, "    ") == 0)
                result.push_back(Fields(line.substr(4), ' ').at(0));
        return result;
    }
    // The options that a command's usage names.
    std::set<std::string> OptionsOf(const std::string& command)
    {
        std::set<std::string> result;
        const std::string usage = Lines(Run("help " + command).Out).at(0);
        const std::string own = usage.substr(usage.find("FILE] " + command) + 6);
        const std::regex option("--[a-z][a-z-]*");
        for (std::sregex_iterator it(own.begin(), own.end(), option), end; it != end; ++it)
            result.insert(it->str());
        return result;
    }
    // What the shell would offer for the last of the words.
    std::set<std::string> Complete(const std::vector<std::string>& words)
    {
        std::string line = "source '" + SourcePath("resources/completion/cindermill-batch.bash") +
                           "'; COMP_WORDS=(cindermill-batch";
        for (const std::string& word : words)
            line += " \\\"" + word + "\\\"";
        line += "); COMP_CWORD=" + std::to_string(words.size()) +
                "; _cindermill_batch; printf '%s\\n' \\\"\\${COMPREPLY[@]}\\\"";
        const std::string out = Folder.Path("completed");
        const std::string command =
            "cd '" + Folder.GetFolder() + "' && bash -c \"" + line + "\" >'" + out + "'";
        EXPECT_EQ(0, std::system(command.c_str())) << command;
        std::set<std::string> result;
        for (const std::string& found : Lines(ReadBytes(out)))
            if (!found.empty())
                result.insert(found);
        return result;
    }
};

} // namespace

TEST_F(TBatchHelp, GoesToTheStandardOutputWithStatusZero)
{
    for (const char* line :
         {"help", "--help", "--version", "help check", "check --help", "--resources /none help"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(0, outcome.Status) << line;
        EXPECT_NE("", outcome.Out) << line;
        EXPECT_EQ("", outcome.Err) << line;
    }
    EXPECT_EQ(Run("help").Out, Run("--help").Out);
    EXPECT_EQ(Run("help check").Out, Run("check --help").Out);
    // All that the usage of a wrong line says stands in the help as well.
    const std::vector<std::string> usage = Lines(Run("").Err);
    const std::vector<std::string> help = Lines(Run("help").Out);
    for (size_t i = 1; i < usage.size(); ++i)
        EXPECT_EQ(usage[i], help.at(i - 1));
}

TEST_F(TBatchHelp, TheVersionIsThatOfThePackage)
{
    const std::string lists = ReadBytes(SourcePath("CMakeLists.txt"));
    std::smatch match;
    ASSERT_TRUE(std::regex_search(lists, match, std::regex("project\\(cindermill VERSION ([0-9.]+)")));
    EXPECT_EQ("cindermill-batch " + match[1].str() + "\n", Run("--version").Out);
}

TEST_F(TBatchHelp, TellsOfEveryCommand)
{
    for (const std::string& command : Commands()) {
        const std::vector<std::string> lines = Lines(Run("help " + command).Out);
        ASSERT_GE(lines.size(), 3u) << command << " says nothing of itself";
        EXPECT_EQ("", lines[1]);
        // Each option of the usage has a line.
        for (const std::string& option : OptionsOf(command)) {
            bool found = false;
            for (size_t i = 2; i < lines.size(); ++i)
                found = found || lines[i].compare(0, option.size() + 3, "  " + option + " ") == 0;
            EXPECT_TRUE(found) << command << " " << option;
        }
        for (size_t i = 1; i < lines.size(); ++i)
            EXPECT_LE(lines[i].size(), 100u) << lines[i];
    }
}

TEST_F(TBatchHelp, OfAnUnknownCommandIsAUsageError)
{
    const TOutcome outcome = Run("help nonsense");
    EXPECT_EQ(2, outcome.Status);
    EXPECT_EQ("", outcome.Out);
    EXPECT_EQ("There is no command \"nonsense\"", Lines(outcome.Err).at(0));
    EXPECT_EQ(2, Run("help check more").Status);
}

TEST_F(TBatchHelp, AFaultOfTheCommandLineIsToldInOneLine)
{
    const TOutcome outcome = Run("'non\nsense'");
    EXPECT_EQ(2, outcome.Status);
    EXPECT_EQ("There is no command \"non sense\"", Lines(outcome.Err).at(0));
    EXPECT_EQ(0u, Lines(outcome.Err).at(1).find("usage: "));
}

TEST_F(TBatchHelp, ANameThatLooksLikeAQuestionIsHashed)
{
    EXPECT_EQ(0u, Run("hash --help").Out.find("--help\t"));
}

TEST_F(TBatchHelp, EveryCommandAndOptionStandsInTheManPage)
{
    std::string page = ReadBytes(SourcePath("docs/man/cindermill-batch.1.in"));
    for (size_t at = page.find('\\'); at != std::string::npos; at = page.find('\\', at))
        page.erase(at, 1);
    for (const std::string& command : Commands()) {
        EXPECT_TRUE(std::regex_search(page, std::regex("\n\\.B[IR]* \"?" + command + "[\" \n]"))) << command;
        for (const std::string& option : OptionsOf(command))
            EXPECT_NE(std::string::npos, page.find(option)) << command << " " << option;
    }
    for (const char* option : {"--node-types", "--resources", "--project", "--help", "--version"})
        EXPECT_NE(std::string::npos, page.find(option)) << option;
}

TEST_F(TBatchHelp, TheShellCompletesCommandsAndOptions)
{
    const std::vector<std::string> commands = Commands();
    const std::set<std::string> offered = Complete({""});
    for (const std::string& command : commands)
        EXPECT_EQ(1u, offered.count(command)) << command;
    for (const std::string& word : offered)
        EXPECT_TRUE(word[0] == '-' || std::count(commands.begin(), commands.end(), word) == 1) << word;
    EXPECT_EQ((std::set<std::string>{"--node-types", "--resources", "--project", "--help", "--version"}),
              Complete({"--"}));
    for (const std::string& command : commands) {
        const std::set<std::string> options = OptionsOf(command);
        const std::set<std::string> completed = Complete({"--resources", "somewhere", command, "--"});
        EXPECT_EQ(options, completed) << command;
    }
    EXPECT_EQ((std::set<std::string>{"text", "json", "junit", "sarif"}), Complete({"check", "--format", ""}));
    EXPECT_EQ((std::set<std::string>{"warning", "error"}), Complete({"check", "--fail-on", ""}));
    EXPECT_EQ((std::set<std::string>{"export"}), Complete({"help", "exp"}));
    WriteBytes(Folder.Path("one.effect"), "");
    WriteBytes(Folder.Path("two.txt"), "");
    std::filesystem::create_directory(Folder.Path("folder"));
    EXPECT_EQ((std::set<std::string>{"one.effect", "folder"}), Complete({"check", ""}));
    EXPECT_EQ((std::set<std::string>{"folder"}), Complete({"--node-types", ""}));
}
