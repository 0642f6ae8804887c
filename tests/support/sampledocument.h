#pragma once

#include "support/testapp.h"

#include "particles/cindermill/main/document.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

// A document of one of the repository's samples, with its engine. Throws std::runtime_error where it has
// none.
class TSampleDocument
{
public:
    TSampleDocument(TTestApp& app, const std::string& name, TDocumentHost* host = nullptr)
    {
        // The application's folder has a texture of a sample's name.
        using std::filesystem::copy_options;
        const auto overwrite = copy_options::overwrite_existing | copy_options::recursive;
        for (const char* folder : {"samples/textures", "samples/animations"})
            std::filesystem::copy(SourcePath(folder), app.Path("resources"), overwrite);
        Document = std::make_unique<TDocument>(app.Get(), host);
        const TQuiet quiet;
        if (!Document->Load(SourcePath("samples/" + name + ".effect").c_str()) ||
            !Document->GetEngine().IsInited())
            throw std::runtime_error("no engine for " + name);
    }
    TDocument* operator->() { return Document.get(); }
    TDocument& operator*() { return *Document; }

    void Run(float seconds, float step = 0.02f)
    {
        TErrorList errors;
        const float end = Document->GetEngine().GetTime() + seconds;
        while (Document->GetEngine().GetTime() < end - step / 2)
            if (!Document->UpdateEngine(step, errors))
                throw std::runtime_error("the engine stopped");
    }

private:
    std::unique_ptr<TDocument> Document;
};

inline const std::vector<std::string>& GetSampleNames()
{
    static const std::vector<std::string> names = {
        "aura",     "burst",  "campfire", "comet",  "explosion", "fireflies", "flipbook",
        "fountain", "fumes",  "impact",   "leaves", "magic",     "portal",    "rain",
        "snow",     "sparks", "tiles",    "vortex", "waterfall"};
    return names;
}
