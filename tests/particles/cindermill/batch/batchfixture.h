#pragma once

#include "support/testsupport.h"

#include <cstdio>
#include <filesystem>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

// The batch program as a person runs it: its own process, its own streams.

struct TOutcome
{
    int Status = -1;
    std::string Out;
    std::string Err;
};

class TBatch : public testing::Test
{
protected:
    TOutcome Run(const std::string& arguments)
    {
        const std::string out = Folder.Path("stdout");
        const std::string err = Folder.Path("stderr");
        const std::string command = "export XDG_CONFIG_HOME='" + Folder.GetFolder() + "/config'; " + Program +
                                    " " + arguments + " >'" + out + "' 2>'" + err + "'";
        const int status = std::system(command.c_str());
        return TOutcome{WEXITSTATUS(status), ReadBytes(out), ReadBytes(err)};
    }
    std::string Sample(const std::string& name)
    {
        return "'" + SourcePath("samples/" + name + ".effect") + "'";
    }
    // Whether somebody without rights finds the program and its data: a build below a folder that is its
    // owner's alone is closed to all others.
    static bool CanNobodyRun()
    {
        const TNobody nobody;
        return access(CINDERMILL_BATCH, X_OK) == 0 && access(SourcePath("NodeTypes").c_str(), R_OK) == 0;
    }
    static std::string Resources() { return "--resources '" + SourcePath("samples") + "' "; }

    TTempFolder Folder;
    // As the shell takes it.
    std::string Program = "'" CINDERMILL_BATCH "'";
};

inline std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

inline std::vector<std::string> Fields(const std::string& line, char separator)
{
    std::vector<std::string> fields(1);
    for (char ch : line) {
        if (ch == separator)
            fields.emplace_back();
        else
            fields.back() += ch;
    }
    return fields;
}
