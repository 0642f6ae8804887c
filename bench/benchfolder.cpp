#include "bench/benchfolder.h"

#include <cstdlib>

namespace fs = std::filesystem;

TBenchFolder::TBenchFolder()
{
    std::string path = (fs::temp_directory_path() / "cindermill-bench-XXXXXX").string();
    Path = mkdtemp(path.data()) != nullptr ? path : std::string();
}

TBenchFolder::~TBenchFolder()
{
    std::error_code error;
    fs::remove_all(Path, error);
}

const TBenchFolder& GetBenchFolder()
{
    static const TBenchFolder folder;
    return folder;
}
