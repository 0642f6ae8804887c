#include "tools/samplemaker/samplemaker.h"

#include "library/system/file.h"
#include "tools/samplemaker/sampleanimations.h"
#include "tools/samplemaker/samplebuilder.h"
#include "tools/samplemaker/sampleeffects.h"
#include "tools/samplemaker/samplepictures.h"

namespace {

bool EnsureDirectory(const std::string& path)
{
    return IsDirectory(path.c_str()) || MakeDirectory(path.c_str());
}

} // namespace

std::vector<std::string> GetSampleNames()
{
    std::vector<std::string> names;
    for (const TSampleEffect& effect : GetSampleEffects())
        names.push_back(effect.Name);
    return names;
}

bool MakeSamples(TCindermillApp& app, const std::string& folder, std::string& failed)
{
    const std::string textures = folder + "/textures";
    const std::string animations = folder + "/animations";
    for (const std::string& path : {folder, textures, animations}) {
        failed = path;
        if (!EnsureDirectory(path))
            return false;
    }
    failed = textures;
    if (!MakeSamplePictures(textures.c_str()))
        return false;
    failed = animations;
    if (!MakeSampleAnimations(animations.c_str()))
        return false;
    for (const TSampleEffect& effect : GetSampleEffects()) {
        TSampleBuilder builder(app);
        effect.Make(builder);
        failed = folder + "/" + effect.Name + ".effect";
        if (!builder.Save(failed.c_str()))
            return false;
    }
    failed.clear();
    return true;
}
