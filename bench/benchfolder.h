#pragma once

#include <filesystem>
#include <string>

// A folder for the files of a run that goes when the program does.
class TBenchFolder
{
public:
    TBenchFolder();
    ~TBenchFolder();
    TBenchFolder(const TBenchFolder&) = delete;
    TBenchFolder& operator=(const TBenchFolder&) = delete;

    std::string GetPath(const std::string& leaf) const { return (Path / leaf).string(); }

private:
    std::filesystem::path Path;
};

// That of this program.
const TBenchFolder& GetBenchFolder();
