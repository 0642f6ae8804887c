#include "library/system/files/binaryfile.h"

#include "support/testsupport.h"

#include <algorithm>
#include <csignal>
#include <random>
#include <sys/resource.h>

// Writes with `write`, gives back the bytes.
class TBinaryFileTest : public testing::Test
{
protected:
    ~TBinaryFileTest() noexcept override = default;
    template <class TWrite>
    std::string Written(TWrite write)
    {
        TBinaryFile file;
        if (!file.OpenWrite(Path.c_str()))
            return "not opened";
        if (!write(file)) {
            file.Abandon();
            return "failed";
        }
        return file.Close() ? ReadBytes(Path) : "not closed";
    }
    void Open(const std::string& bytes)
    {
        WriteBytes(Path, bytes);
        ASSERT_TRUE(File.OpenRead(Path.c_str()));
    }
    void TearDown() override { File.Abandon(); }

    TTempFolder Folder;
    std::string Path = Folder.Path("file");
    TBinaryFile File;
};

static std::string Bytes(std::initializer_list<int> values)
{
    std::string result;
    for (int value : values)
        result += static_cast<char>(value);
    return result;
}

TEST_F(TBinaryFileTest, PrimitivesAreLittleEndian)
{
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteI32(-2); }), Bytes({0xfe, 0xff, 0xff, 0xff}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteU32(0x01020304u); }), Bytes({4, 3, 2, 1}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteFloat(1.0f); }), Bytes({0, 0, 0x80, 0x3f}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteByte(200); }), Bytes({200}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteBool(true) && f.WriteBool(false); }), Bytes({1, 0}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteVector3(TVector3(1, 2, -1)); }),
              Bytes({0, 0, 0x80, 0x3f, 0, 0, 0, 0x40, 0, 0, 0x80, 0xbf}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteRaw("xyz", 3); }), "xyz");
}

TEST_F(TBinaryFileTest, PrimitivesReadBack)
{
    Open(Bytes({0xfe, 0xff, 0xff, 0xff, 4, 3, 2,    1, 0, 0,    0x80, 0x3f, 200, 0,
                0,    0x80, 0x3f, 0,    0, 0, 0x40, 0, 0, 0x80, 0xbf, 'x',  'y'}));
    int32_t i = 0;
    uint32_t u = 0;
    float f = 0;
    uint8_t b = 0;
    TVector3 v;
    char raw[2] = {};
    EXPECT_TRUE(File.ReadI32(i) && File.ReadU32(u) && File.ReadFloat(f) && File.ReadByte(b) &&
                File.ReadVector3(v) && File.ReadRaw(raw, 2));
    EXPECT_EQ(i, -2);
    EXPECT_EQ(u, 0x01020304u);
    EXPECT_EQ(f, 1.0f);
    EXPECT_EQ(b, 200);
    EXPECT_EQ(v[0], 1.0f);
    EXPECT_EQ(v[1], 2.0f);
    EXPECT_EQ(v[2], -1.0f);
    EXPECT_EQ(std::string(raw, 2), "xy");
    bool flag = true;
    EXPECT_FALSE(File.ReadI32(i) || File.ReadU32(u) || File.ReadFloat(f) || File.ReadByte(b) ||
                 File.ReadVector3(v) || File.ReadBool(flag));
}

TEST_F(TBinaryFileTest, OnlyAByteOfOneIsTrue)
{
    Open(Bytes({0, 1, 2, 255}));
    for (bool expected : {false, true, false, false}) {
        bool value = !expected;
        EXPECT_TRUE(File.ReadBool(value));
        EXPECT_EQ(value, expected);
    }
}

TEST_F(TBinaryFileTest, StringsArePaddedToFourFromTheirOwnStart)
{
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteString("ab"); }), Bytes({'a', 'b', 0, 0}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteString("abc"); }), Bytes({'a', 'b', 'c', 0}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteString("abcd"); }),
              Bytes({'a', 'b', 'c', 'd', 0, 0, 0, 0}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteString(""); }), Bytes({0, 0, 0, 0}));
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteByte(9) && f.WriteString("ab"); }),
              Bytes({9, 'a', 'b', 0, 0}));
}

TEST_F(TBinaryFileTest, StringSizeIsWhatIsWritten)
{
    for (const char* text : {"", "a", "ab", "abc", "abcd", "abcdefg", "abcdefgh"}) {
        const TString string = text;
        EXPECT_EQ(Written([&](TBinaryFile& f) { return f.WriteString(string); }).size(),
                  static_cast<size_t>(TBinaryFile::GetStringSize(string)));
    }
}

TEST_F(TBinaryFileTest, StringsReadBack)
{
    for (int length : {0, 1, 3, 4, 5, 1023, 1024, 4094, 4095}) {
        const TString string = std::string(static_cast<size_t>(length), 'q').c_str();
        Written([&](TBinaryFile& f) { return f.WriteString(string) && f.WriteByte(7); });
        ASSERT_TRUE(File.OpenRead(Path.c_str()));
        TString read = "old";
        uint8_t behind = 0;
        EXPECT_TRUE(File.ReadString(read) && File.ReadByte(behind));
        EXPECT_EQ(Text(read), Text(string));
        EXPECT_EQ(behind, 7);
        EXPECT_EQ(read.IsEmpty(), length == 0);
        File.Abandon();
    }
}

TEST_F(TBinaryFileTest, AStringEndsAtItsFirstNul)
{
    Open(Bytes({'a', 0, 0, 0, 'd'}));
    TString read;
    EXPECT_TRUE(File.ReadString(read));
    EXPECT_EQ(Text(read), "a");
    EXPECT_EQ(File.GetFilePtr(), 4);
}

TEST_F(TBinaryFileTest, AStringThatAZeroByteWouldCutIsRefused)
{
    for (const std::string& bytes :
         {Bytes({'a', 0, 'b', 0}), Bytes({0, 0, 0, 'x'}), Bytes({'a', 'b', 0, 'c'})}) {
        File.Abandon();
        Open(bytes);
        TString read = "unset";
        EXPECT_FALSE(File.ReadString(read));
        EXPECT_EQ(Text(read), "unset");
        EXPECT_EQ(Text(File.GetFault()), "A text of the file holds a zero byte");
    }
}

TEST_F(TBinaryFileTest, AStringOfMoreThan1024WordsAsserts)
{
    Open(std::string(4200, 'x'));
    TString read;
    EXPECT_EQ(AssertionOf([&] { File.ReadString(read); }), "i<1024 : BinaryFile string read overflow");
}

TEST_F(TBinaryFileTest, AStringWithoutEndFails)
{
    Open("abcdefg");
    TString read;
    EXPECT_FALSE(File.ReadString(read));
}

TEST_F(TBinaryFileTest, AStringTooLongToBeReadAgainIsNotWritten)
{
    const TString string = std::string(4096, 'x').c_str();
    EXPECT_EQ(Written([&](TBinaryFile& f) { return f.WriteString(string); }), "failed");
}

TEST_F(TBinaryFileTest, VectorsAreACountAndTheElements)
{
    vector<TString> strings;
    strings.push_back("ab");
    strings.push_back("");
    vector<uint32_t> words;
    words.push_back(5);
    words.push_back(0x80000001u);
    const std::string bytes =
        Written([&](TBinaryFile& f) { return f.WriteStrings(strings) && f.WriteU32s(words); });
    EXPECT_EQ(bytes, Bytes({2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 5, 0, 0, 0, 1, 0, 0, 0x80}));
    vector<TString> readStrings;
    readStrings.push_back("old");
    vector<uint32_t> readWords;
    ASSERT_TRUE(File.OpenRead(Path.c_str()));
    EXPECT_TRUE(File.ReadStrings(readStrings) && File.ReadU32s(readWords));
    ASSERT_EQ(readStrings.size(), 2);
    EXPECT_EQ(Text(readStrings[0]), "ab");
    EXPECT_EQ(Text(readStrings[1]), "");
    ASSERT_EQ(readWords.size(), 2);
    EXPECT_EQ(readWords[1], 0x80000001u);
}

TEST_F(TBinaryFileTest, EmptyVectorsAreTheirCount)
{
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteStrings({}) && f.WriteU32s({}); }),
              std::string(8, '\0'));
    ASSERT_TRUE(File.OpenRead(Path.c_str()));
    vector<TString> strings;
    vector<uint32_t> words;
    EXPECT_TRUE(File.ReadStrings(strings) && File.ReadU32s(words));
    EXPECT_TRUE(strings.empty() && words.empty());
}

TEST_F(TBinaryFileTest, WritesOfAllSizesArriveInTheirOrder)
{
    std::mt19937 random(3);
    std::string expected;
    TBinaryFile file;
    ASSERT_TRUE(file.OpenWrite(Path.c_str()));
    for (int i = 0; i < 200; ++i) {
        const size_t most = i % 10 == 0 ? 200000 : i % 3 == 0 ? 70000 : 20;
        std::string part(random() % most, static_cast<char>(i));
        EXPECT_EQ(file.GetFilePtr(), static_cast<int>(expected.size()));
        ASSERT_TRUE(file.Write(part.data(), static_cast<int>(part.size())));
        expected += part;
    }
    EXPECT_EQ(file.GetFilePtr(), static_cast<int>(expected.size()));
    EXPECT_FALSE(file.Write("x", -1));
    file.Abandon();
    ASSERT_TRUE(file.OpenWrite(Path.c_str()));
    EXPECT_EQ(file.GetFilePtr(), 0);
    for (size_t at = 0; at < expected.size(); at += 65536)
        ASSERT_TRUE(file.Write(expected.data() + at,
                               static_cast<int>(std::min<size_t>(65536, expected.size() - at))));
    ASSERT_TRUE(file.Close());
    EXPECT_EQ(ReadBytes(Path), expected);
}

TEST_F(TBinaryFileTest, WhatWasGatheredGoesWithAnAbandonedFile)
{
    WriteBytes(Path, "old");
    ASSERT_TRUE(File.OpenWrite(Path.c_str()));
    EXPECT_TRUE(File.WriteU32(7));
    File.Abandon();
    EXPECT_EQ(ReadBytes(Path), "old");
    ASSERT_TRUE(File.OpenRead(Path.c_str()));
    EXPECT_EQ(File.GetFilePtr(), 0);
    EXPECT_EQ(AssertionOf([&] { File.WriteU32(7); }), "!IsRead() : Attempt to write to file opened for read");
    EXPECT_TRUE(File.Close());
    EXPECT_EQ(AssertionOf([&] { File.WriteU32(7); }), "IsOpen() : Attempt to write to non-open file");
    EXPECT_EQ(AssertionOf([&] { File.Close(); }), "IsOpen() : Attempt to close non-open file");
    EXPECT_EQ(Written([](TBinaryFile& f) { return f.WriteU32(1); }), Bytes({1, 0, 0, 0}));
}

TEST_F(TBinaryFileTest, AFullDiscIsNoticedAtCloseAtTheLatest)
{
    WriteBytes(Path, "old");
    struct rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 1000;
    signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string few(2000, 'a');
    const std::string many(100000, 'a');
    const std::string results[] = {
        Written([&](TBinaryFile& f) { return f.Write(few.data(), static_cast<int>(few.size())); }),
        Written([&](TBinaryFile& f) { return f.Write(many.data(), static_cast<int>(many.size())); })};
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(results[0], "not closed");
    EXPECT_EQ(results[1], "failed");
    EXPECT_EQ(ReadBytes(Path), "old");
}

TEST_F(TBinaryFileTest, ACountBeyondTheFileFailsBeforeAnythingIsMade)
{
    for (const std::string& bytes : {Bytes({0xff, 0xff, 0xff, 0xff, 0, 0, 0, 0}),
                                     Bytes({2, 0, 0, 0, 0, 0, 0, 0}), Bytes({0, 0, 0, 0x40})}) {
        Open(bytes);
        vector<uint32_t> words;
        EXPECT_FALSE(File.ReadU32s(words));
        EXPECT_EQ(words.capacity(), 0);
        File.SetFilePtr(0);
        vector<TString> strings;
        EXPECT_FALSE(File.ReadStrings(strings));
        EXPECT_EQ(strings.capacity(), 0);
        File.Abandon();
    }
}
