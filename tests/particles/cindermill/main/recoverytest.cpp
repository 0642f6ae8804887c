#include "autosavefixture.h"

#include "support/dice.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

TEST_F(Autosaves, TheQuestionNamesEachEffectWithItsTime)
{
    const std::string path = EffectFile("fire.effect");
    EditAndDie(path);
    EditAndDie("");
    Start(RA_LATER);
    ASSERT_EQ(Host.Recovered.size(), 2u);
    std::sort(Host.Recovered.begin(), Host.Recovered.end(),
              [](const std::string& a, const std::string& b) { return a.substr(19) < b.substr(19); });
    EXPECT_EQ(Host.Recovered[0].substr(19), "   " + path);
    EXPECT_EQ(Host.Recovered[1].substr(19), "   <unsaved document>");
    const time_t now = time(nullptr);
    char day[16];
    strftime(day, sizeof(day), "%Y-%m-%d ", localtime(&now));
    for (const std::string& line : Host.Recovered)
        EXPECT_EQ(line.substr(0, 11), day);
    EXPECT_EQ(NumDocuments(), 0);
    EXPECT_TRUE(Shown.Messages.empty());
}

TEST_F(Autosaves, TheQuestionTellsThatTheFileWasWrittenLater)
{
    const std::string path = EffectFile("fire.effect");
    EditAndDie(path);
    const auto later = std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5);
    std::filesystem::last_write_time(path, later);
    Start(RA_LATER);
    ASSERT_EQ(Host.Recovered.size(), 1u);
    EXPECT_EQ(Host.Recovered[0].substr(19), "   " + path + "   (the file was written later)");
}

// When it was autosaved counts, and not what became of the recovery file since.
TEST_F(Autosaves, ACopiedRecoveryFileIsNoNewerForIt)
{
    const std::string path = EffectFile("fire.effect");
    EditAndDie(path);
    const auto later = std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5);
    std::filesystem::last_write_time(path, later);
    std::filesystem::last_write_time(TheFile(), later + std::chrono::seconds(5));
    Start(RA_LATER);
    ASSERT_EQ(Host.Recovered.size(), 1u);
    EXPECT_EQ(Host.Recovered[0].substr(19), "   " + path + "   (the file was written later)");
}

// It may be whole: another start, with more descriptors or a disc that answers, may read it.
TEST_F(Autosaves, AFileThatTheSystemDoesNotLetBeReadStays)
{
    EditAndDie(EffectFile("fire.effect"));
    const std::string file = TheFile();
    const std::string bytes = ReadBytes(file);
    const std::string kept = Path("kept");
    std::filesystem::rename(file, kept);
    // What nobody can read, the superuser included.
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    Start(RA_LATER);
    EXPECT_TRUE(Host.Recovered.empty());
    ASSERT_EQ(Shown.Messages.size(), 1u);
    EXPECT_NE(Shown.Messages[0].find("cannot be read"), std::string::npos) << Shown.Messages[0];
    EXPECT_NE(Shown.Messages[0].find("It is no regular file"), std::string::npos) << Shown.Messages[0];
    EXPECT_NE(Shown.Messages[0].find(file), std::string::npos) << Shown.Messages[0];
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    Autosave().GetStore().Close();
    std::filesystem::remove(file);
    std::filesystem::rename(kept, file);
    Start(RA_LATER);
    EXPECT_EQ(Host.Recovered.size(), 1u);
    EXPECT_TRUE(ReadBytes(file) == bytes);
}

TEST_F(Autosaves, WithoutSuchFilesNothingIsAsked)
{
    // Programs that ended without changes, and one that was killed before it wrote any.
    EXPECT_TRUE(DoAndDie([&] { Start(); }));
    EXPECT_TRUE(DoAndDie([&] {
        TLockedFolder folder;
        EXPECT_TRUE(folder.Create(Store().c_str()));
        WriteBytes(std::string(folder.GetPath()) + "/.cindermill-1234-1.tmp", "half a file");
    }));
    EXPECT_FALSE(Files(true).empty());
    Start(RA_RESTORE);
    EXPECT_TRUE(Host.Recovered.empty());
    EXPECT_TRUE(Files(true).empty());
}

TEST_F(Autosaves, ARestoredDocumentIsModifiedAndHasItsPathAndHistory)
{
    const std::string path = EffectFile("fire.effect");
    const std::string before = ReadBytes(path);
    EditAndDie(path, 5);
    const std::string file = ReadBytes(TheFile());
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    TDocument& document = Newest();
    EXPECT_EQ(Text(document.GetPath()), path);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(HostOf(document).Taken().back(), "title*");
    const std::string image = ImageOf(document);
    EXPECT_TRUE(file.substr(0, image.size()) == image);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 6);
    // Back beyond what its own file holds, and on again: no step of it counts as saved.
    for (int left = 5; left >= 0; --left) {
        document.Undo();
        EXPECT_EQ(document.GetGraph()->GetNumNodes(), left);
        EXPECT_TRUE(document.IsModified());
    }
    EXPECT_FALSE(document.CanUndo());
    while (document.CanRedo())
        document.Redo();
    EXPECT_TRUE(ImageOf(document) == image);
    EXPECT_TRUE(ReadBytes(path) == before);
}

TEST_F(Autosaves, AnUnsavedDocumentIsRestoredWithoutAPath)
{
    EditAndDie("");
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_TRUE(Newest().GetPath().IsEmpty());
    EXPECT_TRUE(Newest().IsModified());
    EXPECT_EQ(Newest().GetGraph()->GetNumNodes(), 1);
}

TEST_F(Autosaves, ARestoredFileStaysUntilItsDocumentIsSaved)
{
    EditAndDie(EffectFile("fire.effect"));
    // A program that restores and is killed loses nothing.
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_RESTORE);
        EXPECT_EQ(NumDocuments(), 1);
    }));
    EXPECT_EQ(Files().size(), 1u);
    // What it edited then is in the same file.
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_RESTORE);
        Add(Newest());
        Autosave().SaveModified(App.Get().GetDocuments());
        Autosave().WaitForDisc();
    }));
    EXPECT_EQ(Files().size(), 1u);
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_EQ(Newest().GetGraph()->GetNumNodes(), 3);
    EXPECT_TRUE(App.Get().Save(Newest()));
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
    Host.Answer = MA_NO;
    App.Get().ExitRequest();
    EXPECT_TRUE(Files(true).empty());
}

// Also where the program that restored it was lost in its turn.
TEST_F(Autosaves, SavingARestoredDocumentOverANewerFileAsks)
{
    const std::string path = EffectFile("fire.effect");
    EditAndDie(path);
    const std::string newer = ReadBytes(path) + "newer";
    WriteBytes(path, newer);
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_RESTORE);
        Add(Newest());
        Autosave().SaveModified(App.Get().GetDocuments());
        Autosave().WaitForDisc();
    }));
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_FALSE(App.Get().Save(Newest()));
    EXPECT_EQ(Shown.Questions.size(), 1u);
    EXPECT_TRUE(ReadBytes(path) == newer);
    Shown.Answers.push_back(true);
    EXPECT_TRUE(App.Get().Save(Newest()));
    EXPECT_EQ(Shown.Questions.size(), 2u);
    EXPECT_FALSE(ReadBytes(path) == newer);
    // From then on it is its own file again.
    Add(Newest());
    EXPECT_TRUE(App.Get().Save(Newest()));
    EXPECT_EQ(Shown.Questions.size(), 2u);
}

TEST_F(Autosaves, DiscardTakesTheFilesAway)
{
    EditAndDie(EffectFile("fire.effect"));
    EditAndDie("");
    Start(RA_DISCARD);
    EXPECT_EQ(Host.Recovered.size(), 2u);
    EXPECT_EQ(NumDocuments(), 0);
    EXPECT_TRUE(Files(true).empty());
}

TEST_F(Autosaves, LaterAsksAgainAtTheNextStart)
{
    EditAndDie(EffectFile("fire.effect"));
    const TNames before = Files();
    for (int start = 0; start < 3; ++start) {
        EXPECT_TRUE(DoAndDie([&] {
            Start(RA_LATER);
            EXPECT_EQ(Host.Recovered.size(), 1u);
            EXPECT_EQ(NumDocuments(), 0);
        }));
        EXPECT_EQ(Files(), before);
    }
    // Also while the program that put it off goes on.
    Start(RA_LATER);
    EXPECT_TRUE(DoAndDie([&] {
        Host.Recovered.clear();
        Start(RA_LATER);
        EXPECT_EQ(Host.Recovered.size(), 1u);
    }));
}

TEST_F(Autosaves, AProgramThatRunsKeepsItsFiles)
{
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t other = fork();
    if (other == 0) {
        Start();
        Add(New());
        Autosave().SaveModified(App.Get().GetDocuments());
        Autosave().WaitForDisc();
        char byte = 0;
        _exit(write(ready[1], &byte, 1) == 1 && read(go[0], &byte, 1) == 1 ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    const TNames files = Files();
    EXPECT_EQ(files.size(), 1u);
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_DISCARD);
        EXPECT_TRUE(Host.Recovered.empty());
    }));
    EXPECT_EQ(Files(), files);
    ASSERT_EQ(write(go[1], &byte, 1), 1);
    int status = 0;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    // Then they are anybody's.
    Start(RA_LATER);
    EXPECT_EQ(Host.Recovered.size(), 1u);
    for (int handle : {go[0], go[1], ready[0], ready[1]})
        close(handle);
}

TEST_F(Autosaves, OfProgramsThatStartTogetherOneOnlyTakesAFile)
{
    constexpr int Programs = 8;
    constexpr int Lost = 12;
    for (int i = 0; i < Lost; ++i)
        EditAndDie("");
    int found[2];
    int go[2];
    int end[2];
    ASSERT_EQ(pipe(found) + pipe(go) + pipe(end), 0);
    std::vector<pid_t> programs;
    for (int i = 0; i < Programs; ++i) {
        programs.push_back(fork());
        if (programs.back() != 0)
            continue;
        close(go[1]);
        close(end[1]);
        char byte = 0;
        // Until the last one is there, and then until all have looked.
        (void)!read(go[0], &byte, 1);
        TRecoveryStore store;
        store.Open(Store().c_str());
        vector<TLostEffect> lost;
        vector<TDamagedEffect> damaged;
        store.FindLost(lost, damaged);
        for (const TLostEffect& effect : lost) {
            const std::string line = Text(effect.File) + "\n";
            (void)!write(found[1], line.data(), line.size());
        }
        close(found[1]);
        (void)!read(end[0], &byte, 1);
        _exit(damaged.empty() ? 0 : 1);
    }
    close(found[1]);
    close(go[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t got; (got = read(found[0], buffer, sizeof(buffer))) > 0;)
        text.append(buffer, static_cast<size_t>(got));
    close(end[1]);
    for (const pid_t program : programs) {
        int status = 0;
        ASSERT_EQ(waitpid(program, &status, 0), program);
        EXPECT_EQ(status, 0);
    }
    for (int handle : {found[0], go[0], end[0]})
        close(handle);
    TNames taken;
    for (size_t at = 0, next; (next = text.find('\n', at)) != std::string::npos; at = next + 1)
        taken.push_back(text.substr(at + Store().size() + 1, next - at - Store().size() - 1));
    std::sort(taken.begin(), taken.end());
    EXPECT_EQ(taken, Files());
    EXPECT_EQ(taken.size(), static_cast<size_t>(Lost));
}

TEST_F(Autosaves, ADamagedFileIsNamedAndPutAside)
{
    EditAndDie(EffectFile("fire.effect"));
    const std::string leaf = Leaves()[0];
    const std::string file = TheFile();
    std::string bytes = ReadBytes(file);
    bytes[bytes.size() / 2] ^= 1;
    WriteBytes(file, bytes);
    Start(RA_RESTORE);
    EXPECT_TRUE(Host.Recovered.empty());
    EXPECT_EQ(NumDocuments(), 0);
    const std::string aside = TheFile();
    EXPECT_EQ(std::filesystem::path(aside).parent_path(), Store() + "/damaged");
    EXPECT_NE(aside.find(leaf), std::string::npos);
    EXPECT_TRUE(ReadBytes(aside) == bytes);
    ASSERT_EQ(Shown.Messages.size(), 1u);
    EXPECT_NE(Shown.Messages[0].find(aside), std::string::npos) << Shown.Messages[0];
    // Nobody is told again.
    EXPECT_TRUE(DoAndDie([&] {
        Shown.Messages.clear();
        Start(RA_RESTORE);
        EXPECT_TRUE(Shown.Messages.empty());
        EXPECT_TRUE(Host.Recovered.empty());
    }));
    // It goes when it is old.
    const auto month = std::chrono::seconds(TRecoveryStore::DamagedSeconds + 60);
    std::filesystem::last_write_time(aside, std::filesystem::file_time_type::clock::now() - month);
    EXPECT_TRUE(DoAndDie([&] { Start(RA_RESTORE); }));
    EXPECT_TRUE(Files().empty());
}

TEST_F(Autosaves, NoChangedByteGoesUnseen)
{
    const std::string path = Path("one.effect");
    TRecoveryNote note;
    note.Path = "somewhere/fire.effect";
    note.Time = 1234567890;
    vector<uint8_t> effect;
    TDocument document(App.Get());
    ASSERT_TRUE(document.New());
    ASSERT_TRUE(document.GetImage(effect, GetRecoveryNoteSize(note)));
    AddRecoveryNote(effect, note);
    const std::string whole(reinterpret_cast<const char*>(effect.data()), static_cast<size_t>(effect.size()));
    const auto isSound = [&](const std::string& bytes) {
        WriteBytes(path, bytes);
        TRecoveryNote read;
        TString fault;
        const bool sound = ReadRecoveryNote(path.c_str(), read, fault);
        EXPECT_EQ(sound, fault.IsEmpty());
        return sound;
    };
    EXPECT_TRUE(isSound(whole));
    for (size_t i = 0; i < whole.size(); ++i) {
        std::string bytes = whole;
        bytes[i] ^= 0x10;
        EXPECT_FALSE(isSound(bytes)) << i;
        EXPECT_FALSE(isSound(whole.substr(0, i))) << i;
    }
    EXPECT_FALSE(isSound(whole + "x"));
    EXPECT_FALSE(isSound(""));
}

// As if the damage had come before the checksum: only the load can tell.
TEST_F(Autosaves, AnEffectThatCannotBeLoadedIsNamedAndPutAside)
{
    // The sanitizers take their time to make a process.
#if defined(CINDERMILL_SANITIZED)
    constexpr int Rounds = 20;
#else
    constexpr int Rounds = 200;
#endif
    TDice dice(Setting("CINDERMILL_RANDOM_SEED", 11));
    EditAndDie(EffectFile("fire.effect"), 4);
    const std::string file = TheFile();
    const std::string whole = ReadBytes(file);
    TRecoveryNote note;
    TString fault;
    ASSERT_TRUE(ReadRecoveryNote(file.c_str(), note, fault));
    const int size = static_cast<int>(whole.size()) - GetRecoveryNoteSize(note);
    int refused = 0;
    for (int round = 0; round < Rounds; ++round) {
        vector<uint8_t> effect;
        for (int i = 0; i < size; ++i)
            effect.push_back(static_cast<uint8_t>(whole[static_cast<size_t>(i)]));
        for (uint32_t changes = 1 + dice.Below(4); changes > 0; --changes)
            effect[static_cast<int>(dice.Below(static_cast<uint32_t>(size)))] =
                static_cast<uint8_t>(dice.Below(256));
        AddRecoveryNote(effect, note);
        WriteBytes(file,
                   std::string(reinterpret_cast<char*>(effect.data()), static_cast<size_t>(effect.size())));
        std::filesystem::remove_all(Store() + "/damaged");
        Shown = TShown();
        // Each in a process of its own, as a crash would be one.
        const bool survived = DoAndDie([&] {
            Start(RA_RESTORE);
            EXPECT_EQ(Host.Recovered.size(), 1u);
            if (NumDocuments() == 1)
                return;
            const TNames aside = Leaves();
            ASSERT_EQ(aside.size(), 1u);
            ASSERT_EQ(Shown.Messages.size(), 1u);
            EXPECT_NE(Shown.Messages[0].find(aside[0]), std::string::npos) << Shown.Messages[0];
            EXPECT_TRUE(std::filesystem::exists(Store() + "/damaged/" + aside[0]));
        });
        ASSERT_TRUE(survived) << "round " << round;
        refused += std::filesystem::exists(Store() + "/damaged");
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    }
    EXPECT_GT(refused, Rounds / 10);
}

// As after an error of the disc: the system lets it be read.
TEST_F(Autosaves, WhatLiesOnADiscThatCannotBeWrittenIsRestored)
{
    const std::string path = EffectFile("fire.effect");
    const std::string disc = Path("state");
    std::filesystem::create_directory(disc);
    if (mount("none", disc.c_str(), "tmpfs", 0, "size=4m") != 0)
        GTEST_SKIP() << "only the superuser can make a disc";
    EditAndDie(path, 3);
    const std::string file = TheFile();
    EXPECT_EQ(mount("none", disc.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
    // Its own write fails, which is told once, and nothing else.
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_RESTORE);
        EXPECT_EQ(Host.Recovered.size(), 1u);
        ASSERT_EQ(NumDocuments(), 1);
        EXPECT_EQ(Newest().GetGraph()->GetNumNodes(), 4);
        EXPECT_TRUE(Shown.Messages.empty());
        Add(Newest());
        IdleAt(0);
        IdleAt(TAutosave::Interval);
        IdleAt(TAutosave::Interval + 1);
        ASSERT_EQ(Shown.Messages.size(), 1u);
        EXPECT_EQ(Shown.Messages[0].find(path + " could not be autosaved: Read-only file system"), 0u)
            << Shown.Messages[0];
        EXPECT_TRUE(App.Get().Save(Newest()));
        EXPECT_FALSE(Newest().IsModified());
    }));
    // Nobody can take it away.
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_DISCARD);
        EXPECT_EQ(Host.Recovered.size(), 1u);
    }));
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(umount2(disc.c_str(), MNT_DETACH), 0);
}

TEST_F(Autosaves, AFileThatWasDeletedMeanwhileIsSavedAnew)
{
    const std::string path = EffectFile("fire.effect");
    EditAndDie(path, 2);
    std::filesystem::remove(path);
    Start(RA_RESTORE);
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_EQ(Host.Recovered[0].substr(19), "   " + path);
    EXPECT_EQ(Newest().GetPath().Compare(path.c_str()), 0);
    EXPECT_TRUE(Newest().IsModified());
    EXPECT_TRUE(App.Get().Save(Newest()));
    EXPECT_TRUE(Shown.Questions.empty());
    EXPECT_FALSE(Newest().IsModified());
    EXPECT_TRUE(std::filesystem::exists(path));
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
}

TEST_F(Autosaves, WithoutTheFoldersOfItsFileNothingIsLost)
{
    std::filesystem::create_directory(Path("work"));
    const std::string path = EffectFile("work/fire.effect");
    EditAndDie(path, 2);
    std::filesystem::remove_all(Path("work"));
    EXPECT_TRUE(DoAndDie([&] {
        Start(RA_RESTORE);
        ASSERT_EQ(NumDocuments(), 1);
        App.Get().Save(Newest());
        ASSERT_EQ(Shown.Messages.size(), 1u);
        EXPECT_NE(Shown.Messages[0].find(path), std::string::npos) << Shown.Messages[0];
        EXPECT_TRUE(Newest().IsModified());
        Autosave().WaitForDisc();
    }));
    Start(RA_LATER);
    EXPECT_EQ(Host.Recovered.size(), 1u);
}

// The clock was set back since, or is wrong by years.
TEST_F(Autosaves, AnyTimeIsRestored)
{
    for (const int64_t shift :
         std::initializer_list<int64_t>{-400000000000, -2000000000, 2000000000, 400000000000}) {
        const std::string path = EffectFile("fire.effect");
        EditAndDie(path, 2);
        const std::string file = TheFile();
        TRecoveryNote note;
        TString fault;
        ASSERT_TRUE(ReadRecoveryNote(file.c_str(), note, fault));
        const std::string whole = ReadBytes(file);
        vector<uint8_t> effect;
        for (size_t i = 0; i < whole.size() - static_cast<size_t>(GetRecoveryNoteSize(note)); ++i)
            effect.push_back(static_cast<uint8_t>(whole[i]));
        note.Time += shift;
        AddRecoveryNote(effect, note);
        WriteBytes(file,
                   std::string(reinterpret_cast<char*>(effect.data()), static_cast<size_t>(effect.size())));
        EXPECT_TRUE(DoAndDie([&] {
            Start(RA_RESTORE);
            ASSERT_EQ(NumDocuments(), 1);
            EXPECT_EQ(Newest().GetGraph()->GetNumNodes(), 3);
            App.Get().Save(Newest());
            Autosave().WaitForDisc();
        }));
        EXPECT_TRUE(Files().empty());
        std::filesystem::remove(path);
    }
}
