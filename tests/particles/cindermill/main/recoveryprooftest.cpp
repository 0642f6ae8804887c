#include "autosavefixture.h"

#include "support/dice.h"
#include "support/randomgraph.h"

#include "particles/cindermill/main/recoveryfile.h"
#include "particles/effectgraph/export/efxfile.h"

#include <chrono>
#include <csignal>
#include <cstring>
#include <map>
#include <set>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uint32_t NumEffects = 2;

// What a program that may be killed at any moment is about to do, and what it has done.
enum TMark : uint32_t
{
    MK_RESTORED,
    MK_READY,
    MK_EDITED,
    MK_SAVING,
    MK_SAVED,
    MK_AUTOSAVING,
    MK_AUTOSAVED,
    // The recovery file may go; it has gone.
    MK_DROPPING,
    MK_DROPPED,
    MK_EXPORTING,
    MK_EXPORTED,
    MK_NUMMARKS
};

struct TMarkRecord
{
    TMark Mark;
    uint32_t Effect;
    THash Hash;
};

// What may be found of an effect after a kill.
struct TExpected
{
    // In the artist's file.
    std::set<THash> Files;
    // In a recovery file, and whether there must be one.
    std::set<THash> Recoveries;
    bool IsNeeded = false;
};

} // namespace

class Kills : public Autosaves
{
protected:
    std::string EffectPath(uint32_t effect) const
    {
        return Path("work/e" + std::to_string(effect) + ".effect");
    }
    std::string EfxPath(uint32_t effect) const { return Path("work/e" + std::to_string(effect) + ".efx"); }
    uint32_t EffectOf(const TDocument& document) const
    {
        for (uint32_t effect = 0; effect < NumEffects; ++effect)
            if (document.GetPath().Compare(EffectPath(effect).c_str()) == 0)
                return effect;
        ADD_FAILURE() << document.GetPath().Print();
        return 0;
    }
    void Tell(TMark mark, uint32_t effect = 0, THash hash = 0) const
    {
        const TMarkRecord record{mark, effect, hash};
        if (write(Journal[1], &record, sizeof(record)) != sizeof(record))
            _exit(1);
    }
    // What lies autosaved for each effect, as it was written: loading settles some of an effect's bytes anew.
    std::map<uint32_t, THash> ReadAutosaved()
    {
        std::map<uint32_t, THash> result;
        for (const std::string& name : Files()) {
            const std::string file = Store() + "/" + name;
            TRecoveryNote note;
            TString fault;
            if (!ReadRecoveryNote(file.c_str(), note, fault))
                continue;
            std::string bytes = ReadBytes(file);
            bytes.resize(bytes.size() - static_cast<size_t>(GetRecoveryNoteSize(note)));
            for (uint32_t effect = 0; effect < NumEffects; ++effect)
                if (note.Path.Compare(EffectPath(effect).c_str()) == 0)
                    result[effect] = HashOf(bytes);
        }
        return result;
    }
    // The program that is killed: edits, saves, autosaves, exports and closes at random for as long as it
    // lives.
    void Work(uint32_t seed)
    {
        TDice dice(seed);
        std::map<uint32_t, THash> autosaved = ReadAutosaved();
        Start(RA_RESTORE);
        for (TDocument* document : App.Get().GetDocuments())
            Tell(MK_RESTORED, EffectOf(*document), autosaved[EffectOf(*document)]);
        OpenMissing();
        Tell(MK_READY);
        for (;;)
            DoOne(dice, *App.Get().GetDocuments()[static_cast<int>(dice.Below(NumEffects))]);
    }
    void OpenMissing()
    {
        for (uint32_t effect = 0; effect < NumEffects; ++effect) {
            bool isOpen = false;
            for (const TDocument* document : App.Get().GetDocuments())
                isOpen = isOpen || EffectOf(*document) == effect;
            if (!isOpen)
                Open(EffectPath(effect));
        }
    }
    // A program that was killed as it saved leaves a file that is newer than what it had autosaved.
    bool SaveAnyway(TDocument& document)
    {
        if (document.IsFileChanged())
            Shown.Answers.push_back(true);
        return App.Get().Save(document);
    }
    void DoOne(TDice& dice, TDocument& document)
    {
        const uint32_t effect = EffectOf(document);
        const uint32_t choice = dice.Below(100);
        if (choice < 70) {
            Clock.Set(Now += dice.Below(3000));
            TRandomGraph(App.Get(), document, dice).Edit();
            Tell(MK_EDITED, effect);
        } else if (choice < 78) {
            Tell(MK_SAVING, effect, HashOf(ImageOf(document)));
            if (!SaveAnyway(document) || document.IsModified())
                _exit(1);
            Tell(MK_SAVED, effect, HashOf(ImageOf(document)));
        } else if (choice < 90) {
            DoAutosave(dice);
        } else if (choice < 97) {
            Activate(document);
            TellAll(MK_AUTOSAVING, MK_DROPPING);
            Host.Choice = EfxPath(effect);
            Shown.Answers.push_back(true);
            Tell(MK_EXPORTING, effect);
            App.Get().ExportActive();
            Tell(MK_EXPORTED, effect);
        } else {
            Tell(MK_DROPPING, effect);
            Host.Answer = MA_NO;
            App.Get().CloseDocument(&document);
            OpenMissing();
        }
    }
    void TellAll(TMark modified, TMark other)
    {
        for (TDocument* document : App.Get().GetDocuments())
            if (document->IsModified())
                Tell(modified, EffectOf(*document), HashOf(ImageOf(*document)));
            else
                Tell(other, EffectOf(*document));
    }
    // By the clock, or at once; the disc may still be at work when the next edit comes.
    void DoAutosave(TDice& dice)
    {
        if (dice.Chance(0.5)) {
            Clock.Set(++Now);
            App.Get().OnIdle();
            TellAll(MK_AUTOSAVING, MK_DROPPING);
            Clock.Set(Now += TAutosave::Interval);
            // One in a pass.
            for (uint32_t effect = 0; effect < NumEffects; ++effect)
                App.Get().OnIdle();
        } else {
            TellAll(MK_AUTOSAVING, MK_DROPPING);
            Autosave().SaveModified(App.Get().GetDocuments());
        }
        if (dice.Chance(0.5))
            return;
        Autosave().WaitForDisc();
        TellAll(MK_AUTOSAVED, MK_DROPPED);
    }

    // Lets it work for a while and kills it. What it told.
    std::vector<TMarkRecord> RunAndKill(uint32_t seed, int microseconds)
    {
        EXPECT_EQ(pipe(Journal), 0);
        const pid_t program = fork();
        if (program == 0) {
            close(Journal[0]);
            TString text;
            RunGuarded([&] { Work(seed); }, text);
            std::fprintf(stderr, "%s\n", text.Print());
            _exit(1);
        }
        close(Journal[1]);
        std::vector<TMarkRecord> records;
        TMarkRecord record{};
        while (read(Journal[0], &record, sizeof(record)) == sizeof(record)) {
            records.push_back(record);
            if (record.Mark == MK_READY)
                break;
        }
        // A moment chosen at random within what follows.
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
        EXPECT_EQ(kill(program, SIGKILL), 0);
        while (read(Journal[0], &record, sizeof(record)) == sizeof(record))
            records.push_back(record);
        close(Journal[0]);
        int status = 0;
        EXPECT_EQ(waitpid(program, &status, 0), program);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "ended by itself: " << status;
        return records;
    }
    // Holds what the program found at its start against what the one before it had told, and follows it.
    void Follow(const std::vector<TMarkRecord>& records)
    {
        std::set<uint32_t> restored;
        for (const TMarkRecord& record : records) {
            TExpected& expected = Expected[record.Effect];
            ++Counts[record.Mark];
            switch (record.Mark) {
            case MK_RESTORED:
                EXPECT_TRUE(restored.insert(record.Effect).second) << "restored twice";
                EXPECT_EQ(expected.Recoveries.count(record.Hash), 1u) << "not what was autosaved";
                expected.Recoveries = {record.Hash};
                expected.IsNeeded = true;
                break;
            case MK_READY:
                for (uint32_t effect = 0; effect < NumEffects; ++effect) {
                    if (restored.count(effect) != 0)
                        continue;
                    EXPECT_FALSE(Expected[effect].IsNeeded) << "lost";
                    Expected[effect].Recoveries.clear();
                }
                break;
            case MK_SAVING:
                expected.Files.insert(record.Hash);
                expected.IsNeeded = false;
                break;
            case MK_SAVED:
                expected.Files = {record.Hash};
                break;
            case MK_AUTOSAVING:
                expected.Recoveries.insert(record.Hash);
                break;
            case MK_AUTOSAVED:
                expected.Recoveries = {record.Hash};
                expected.IsNeeded = true;
                break;
            case MK_DROPPING:
                expected.IsNeeded = false;
                break;
            case MK_DROPPED:
                expected.Recoveries.clear();
                break;
            default:
                break;
            }
        }
    }
    // The artist's files are whole, old or new.
    void CheckFiles()
    {
        for (uint32_t effect = 0; effect < NumEffects; ++effect) {
            const THash hash = HashOf(ReadBytes(EffectPath(effect)));
            EXPECT_EQ(Expected[effect].Files.count(hash), 1u) << EffectPath(effect);
            Expected[effect].Files = {hash};
            if (!std::filesystem::exists(EfxPath(effect)))
                continue;
            TEfxFile efx;
            TString fault;
            EXPECT_TRUE(efx.Load(EfxPath(effect).c_str(), fault)) << fault.Print();
        }
    }
    void MakeFiles(uint32_t seed)
    {
        std::filesystem::remove_all(Path("work"));
        std::filesystem::create_directories(Path("work"));
        Expected.clear();
        for (uint32_t effect = 0; effect < NumEffects; ++effect) {
            TDocument document(App.Get());
            ASSERT_TRUE(document.New());
            TDice dice(seed + effect);
            TRandomGraph(App.Get(), document, dice).Build(20);
            ASSERT_TRUE(document.SaveAs(EffectPath(effect).c_str()));
            Expected[effect].Files = {HashOf(ReadBytes(EffectPath(effect)))};
        }
    }
    // An artist starts once more, takes all back, saves and exits. Nothing is left but his own files.
    void RestoreSaveAndExit()
    {
        EXPECT_TRUE(DoAndDie([&] {
            std::map<uint32_t, THash> autosaved = ReadAutosaved();
            Start(RA_RESTORE);
            for (TDocument* document : App.Get().GetDocuments())
                EXPECT_EQ(Expected[EffectOf(*document)].Recoveries.count(autosaved[EffectOf(*document)]), 1u);
            OpenMissing();
            for (TDocument* document : App.Get().GetDocuments())
                EXPECT_TRUE(SaveAnyway(*document));
            App.Get().ExitRequest();
            EXPECT_EQ(Host.Events.back(), "quit");
            EXPECT_TRUE(Shown.Messages.empty());
        }));
        EXPECT_TRUE(Files(true).empty());
        for (const auto& entry : std::filesystem::directory_iterator(Path("work"))) {
            const std::string leaf = entry.path().filename().string();
            EXPECT_TRUE(leaf.size() > 1 && leaf[0] == 'e') << leaf;
        }
    }

    int Journal[2] = {};
    uint32_t Now = Begin;
    std::map<uint32_t, TExpected> Expected;
    int Counts[MK_NUMMARKS] = {};
};

// The graphs grow with each program, and would take their time in the end.
TEST_F(Kills, NothingIsLostAtAHundredRandomMoments)
{
    constexpr uint32_t Rounds = 100;
    constexpr uint32_t RoundsOfFiles = 10;
    constexpr uint32_t MostMicroseconds = 100000;
    const uint32_t first = Setting("CINDERMILL_RANDOM_SEED", 0);
    TDice dice(2026 + first);
    for (uint32_t round = 0; round < Rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        if (round % RoundsOfFiles == 0) {
            ASSERT_NO_FATAL_FAILURE(MakeFiles(first + round));
        }
        const std::vector<TMarkRecord> records =
            RunAndKill(first + round, static_cast<int>(dice.Below(MostMicroseconds)));
        Follow(records);
        CheckFiles();
        if (round % RoundsOfFiles == RoundsOfFiles - 1)
            RestoreSaveAndExit();
        if (HasFailure())
            return;
    }
    // Each kind of work was done, and so was in the way of a kill.
    for (const TMark mark : {MK_RESTORED, MK_EDITED, MK_SAVED, MK_AUTOSAVED, MK_DROPPED, MK_EXPORTED})
        EXPECT_GT(Counts[mark], 10) << mark;
}

namespace {

// A limit of this process, as long as this lives.
class TLimit
{
public:
    TLimit(int kind, rlim_t value) : Kind(kind)
    {
        getrlimit(ToResource(Kind), &Before);
        const rlimit limit = {value, Before.rlim_max};
        setrlimit(ToResource(Kind), &limit);
    }
    ~TLimit() { setrlimit(ToResource(Kind), &Before); }
    TLimit(const TLimit&) = delete;
    TLimit& operator=(const TLimit&) = delete;

private:
    static __rlimit_resource ToResource(int kind) { return static_cast<__rlimit_resource>(kind); }
    const int Kind;
    rlimit Before{};
};

} // namespace

// At each size that the file passes through, the disc takes no more.
TEST_F(Autosaves, AFullDiscLeavesTheLastAutosaveAndTheArtistsFile)
{
    signal(SIGXFSZ, SIG_IGN);
    const std::string path = EffectFile("fire.effect");
    const std::string before = ReadBytes(path);
    Start();
    TDocument& document = Open(path);
    Add(document);
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    const std::string file = TheFile();
    std::string autosaved = ReadBytes(file);
    const size_t most = autosaved.size();
    const size_t step = most / 50;
    int failures = 0;
    for (size_t limit = 0; limit < most + step; limit += step) {
        SCOPED_TRACE("limit " + std::to_string(limit));
        // To and fro, so that the file changes and does not grow.
        if (document.CanRedo())
            document.Redo();
        else
            document.Undo();
        {
            const TLimit full(RLIMIT_FSIZE, limit);
            Autosave().SaveModified(App.Get().GetDocuments());
            Autosave().WaitForDisc();
        }
        EXPECT_EQ(Files(), TNames{std::filesystem::relative(file, Store()).string()});
        const bool isOld = ReadBytes(file) == autosaved;
        failures += isOld;
        EXPECT_TRUE(document.IsModified());
        EXPECT_TRUE(ReadBytes(path) == before);
        Shown.Messages.clear();
        IdleAt(0);
        ASSERT_EQ(Shown.Messages.size(), isOld ? 1u : 0u);
        if (isOld) {
            EXPECT_EQ(Shown.Messages[0].find(path + " could not be autosaved: File too large"), 0u)
                << Shown.Messages[0];
        }
        // With room again it is there.
        Autosave().SaveModified(App.Get().GetDocuments());
        Autosave().WaitForDisc();
        IdleAt(0);
        autosaved = ReadBytes(file);
        const std::string image = ImageOf(document);
        EXPECT_TRUE(autosaved.substr(0, image.size()) == image);
        if (HasFailure())
            return;
    }
    EXPECT_GT(failures, 20);
}

// As where the system has no more handles: each file and folder that the way to a recovery file opens.
TEST_F(Autosaves, EachOpeningMayFail)
{
    const std::string path = EffectFile("fire.effect");
    Start();
    TDocument& document = Open(path);
    const int lowest = dup(0);
    close(lowest);
    int failures = 0;
    bool written = false;
    for (int left = 0; left < 10 && !written; ++left) {
        SCOPED_TRACE("handles left: " + std::to_string(left));
        Add(document);
        Shown.Messages.clear();
        {
            const TLimit few(RLIMIT_NOFILE, static_cast<rlim_t>(lowest + left));
            Autosave().SaveModified(App.Get().GetDocuments());
            Autosave().WaitForDisc();
        }
        IdleAt(0);
        written = !Files().empty();
        failures += !written;
        EXPECT_EQ(Shown.Messages.size(), failures == 1 && !written ? 1u : 0u);
        // No more than the program's own folder, which its first file needs.
        EXPECT_LE(Files(true).size(), written ? 3u : 2u);
    }
    EXPECT_TRUE(written);
    EXPECT_GE(failures, 2);
    Host.Answer = MA_NO;
    App.Get().ExitRequest();
    EXPECT_TRUE(Files(true).empty());
}
