#pragma once

#include "commandsfixture.h"

#include "library/containers/fnvhash.h"
#include "particles/cindermill/main/recoveryfile.h"

#include <algorithm>

// Of what a file or an image holds.
using THash = uint64_t;

// The application, which keeps its recovery files in a folder of the test's.
class Autosaves : public Commands
{
protected:
    static constexpr uint32_t Begin = 1000000;

    void Start(TRecoveryAnswer answer = RA_LATER)
    {
        Host.RecoveryAnswer = answer;
        App.Get().StartAutosave(Store().c_str());
    }
    std::string Store() const { return Path("state/recovery"); }
    TAutosave& Autosave() const { return App.Get().GetAutosave(); }
    // An idle pass, so many milliseconds after the beginning, and the end of what it writes.
    void IdleAt(uint32_t time)
    {
        Clock.Set(Begin + time);
        App.Get().OnIdle();
        Autosave().WaitForDisc();
    }
    // All files in the store but locks, by their paths below it.
    TNames Files(bool withLocks = false) const
    {
        TNames result;
        std::error_code error;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Store(), error))
            if (withLocks || (!entry.is_directory() && entry.path().filename() != "lock"))
                result.push_back(std::filesystem::relative(entry.path(), Store()).string());
        std::sort(result.begin(), result.end());
        return result;
    }
    TNames Leaves() const
    {
        TNames result = Files();
        for (std::string& file : result)
            file = std::filesystem::path(file).filename().string();
        return result;
    }
    std::string TheFile() const
    {
        const TNames files = Files();
        EXPECT_EQ(files.size(), 1u);
        return files.empty() ? "" : Store() + "/" + files[0];
    }
    TDocument& Open(const std::string& path)
    {
        EXPECT_TRUE(App.Get().OpenDocument(path.c_str()));
        Activate(Newest());
        return Newest();
    }
    std::string ImageOf(TDocument& document)
    {
        vector<uint8_t> bytes;
        EXPECT_TRUE(document.GetImage(bytes, 0));
        return std::string(reinterpret_cast<const char*>(bytes.data()), static_cast<size_t>(bytes.size()));
    }
    static THash HashOf(const std::string& bytes)
    {
        return AddToFnv(FnvStart64, bytes.data(), static_cast<int>(bytes.size()));
    }
    // A program that edits a file and is killed after it was autosaved.
    void EditAndDie(const std::string& path, int edits = 1)
    {
        EXPECT_TRUE(DoAndDie([&] {
            Start(RA_LATER);
            TDocument& document = path.empty() ? New() : Open(path);
            for (int i = 0; i < edits; ++i)
                Add(document);
            Autosave().SaveModified(App.Get().GetDocuments());
            Autosave().WaitForDisc();
        }));
    }

    TFakeClock Clock{Begin};
};
