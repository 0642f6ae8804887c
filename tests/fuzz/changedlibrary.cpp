#include "support/refreshtrial.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace {

// A folder of this process, gone with it.
class TWorkFolder
{
public:
    TWorkFolder()
        : Path((std::filesystem::temp_directory_path() / ("cindermill-fuzz-" + std::to_string(getpid())))
                   .string())
    {
        std::filesystem::create_directories(Path);
    }
    ~TWorkFolder() { std::filesystem::remove_all(Path); }
    TWorkFolder(const TWorkFolder&) = delete;
    TWorkFolder& operator=(const TWorkFolder&) = delete;

    const std::string Path;
};

} // namespace

// The bytes are the choices of a trial: what the document holds, how the library changes, what is answered.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TWorkFolder folder;
    static const TChangedLibrary library(CINDERMILL_SOURCE_DIR "/NodeTypes");
    TDice dice(data, size);
    TRefreshTrial trial(folder.Path, library, dice);
    if (trial.Run())
        return 0;
    std::fprintf(stderr, "%s\n%s", trial.GetFault().c_str(), trial.GetStory().c_str());
    std::abort();
}
