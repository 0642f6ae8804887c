#include "particles/cindermill/batch/findings/findingkinds.h"

#include <cstring>
#include <iterator>

namespace {

const TFindingKind Kinds[] = {
    {"load.failed", FS_ERROR, "The file cannot be loaded."},
    {"load.mended", FS_NOTE, "A link that names nothing was mended when the file was loaded."},
    {"schedule.error", FS_ERROR, "The graph cannot be scheduled."},
    {"engine.error", FS_ERROR, "The engine cannot be made: the preview is empty, and nothing is exported."},
    {"engine.warning", FS_WARNING, "The engine was made, and has something to tell."},
    {"export.error", FS_ERROR, "The effect cannot be exported."},
    {"export.warning", FS_WARNING, "The effect can be exported, and the export has something to tell."},
    {"type.error", FS_ERROR, "A node type file cannot be read, or not in full."},
    {"type.stale", FS_WARNING, "A node's type differs from the library's of the same name."},
    {"type.missing", FS_WARNING, "The library has no type of a node's name."},
};

} // namespace

int GetNumFindingKinds()
{
    return static_cast<int>(std::size(Kinds));
}

const TFindingKind& GetFindingKind(int index)
{
    return Kinds[index];
}

const TFindingKind* FindFindingKind(const char* id)
{
    for (const TFindingKind& kind : Kinds)
        if (std::strcmp(kind.Id, id) == 0)
            return &kind;
    return nullptr;
}
