#include "support/testsupport.h"

#include "library/system/message.h"
#include "particles/cindermill/main/animation/animation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/stat.h>

namespace {

using TFloats = std::vector<float>;

// Collects the messages shown while it lives.
class TShownMessages
{
public:
    TShownMessages()
    {
        Texts().clear();
        SetMessageForms([](const char* text) { Texts().push_back(text); }, nullptr);
    }
    ~TShownMessages() { SetMessageForms(nullptr, nullptr); }
    static std::vector<std::string>& Texts()
    {
        static std::vector<std::string> texts;
        return texts;
    }
};

std::string Data(const std::string& counts, const std::string& keys, const std::string& times)
{
    return "<animData " + counts + "><keyValues>" + keys + "</keyValues><keyTimes>" + times +
           "</keyTimes></animData>";
}

std::string Channel(const std::string& content)
{
    return "<animChannel>" + content + "</animChannel>";
}

std::string Clip(const std::string& channels)
{
    return "<?xml version=\"1.0\"?>\n<VOR><other/><animclip><anim>" + channels + "</anim></animclip></VOR>";
}

const std::string Still = Channel(Data("numKeys=0 keyStride=3", "", ""));

class TVoriFile
{
public:
    bool Load(const std::string& text)
    {
        const TShownMessages messages;
        WriteBytes(Path(), text);
        const bool result = Animation.Load(Path().c_str());
        Shown = TShownMessages::Texts();
        return result;
    }
    std::string Path() const { return Folder.Path("test.vori"); }
    // A file's message, without the fixed end.
    std::string FailureOf(const std::string& text)
    {
        EXPECT_FALSE(Load(text));
        EXPECT_EQ(Shown.size(), 1u);
        return Shown.empty() ? "" : Shown[0];
    }
    std::string Message(const std::string& tag) const
    {
        return "Failed to find " + tag + " tag in file " + Path() + ". Is it a valid vori file?";
    }
    std::string AnimMessage(const std::string& tag) const
    {
        return "Failed to find " + tag + " in file " + Path() + ". Is it a valid vori animation file?";
    }
    TFloats At(float t, unsigned mask = AT_POSITION | AT_ROTATION | AT_SCALE) const
    {
        float out[6];
        Animation.Evaluate(t, mask, out);
        return TFloats(out, out + 6);
    }

    TTempFolder Folder;
    TAnimation Animation;
    std::vector<std::string> Shown;
};

// A quarter turn about one axis.
const double Half = std::sqrt(0.5);

} // namespace

TEST(TAnimation, ReadsThreeChannels)
{
    TVoriFile file;
    ASSERT_TRUE(
        file.Load(Clip(Channel(Data("numKeys=2 keyStride=3", "1 2 3\n4\t5 6.5", "0 1.5")) +
                       Channel(Data("numKeys=\"1\" keyStride=\"4\"", " 0 0 0 1 ", " 0 ")) +
                       Channel(Data("numKeys=1 keyStride=3", "1 1e0 +1", "0")) + Channel("<nonsense/>"))));
    EXPECT_EQ(file.Shown.size(), 0u);
    const TAnimChannel& position = file.Animation.GetChannel(0);
    ASSERT_EQ(position.Keys.size(), 2);
    EXPECT_EQ(position.Keys[1][2], 6.5f);
    EXPECT_EQ(position.Times[1], 1.5f);
    EXPECT_EQ(file.Animation.GetLength(), 1.5f);
    EXPECT_EQ(file.Animation.GetChannel(1).Keys[0][3], 1);
    EXPECT_EQ(file.Animation.GetChannel(2).Keys[0][1], 1);
    EXPECT_EQ(Text(file.Animation.GetFileName()), file.Path());
}

TEST(TAnimation, AKeyStrideOfThreeLeavesTheFourthComponentZero)
{
    TVoriFile file;
    ASSERT_TRUE(
        file.Load(Clip(Channel(Data("numKeys=2 keyStride=3", "1 2 3 4 5 6", "0 1")) + Still + Still)));
    EXPECT_EQ(file.Animation.GetChannel(0).Keys[0][3], 0);
    EXPECT_EQ(file.Animation.GetChannel(0).Keys[1][3], 0);
}

TEST(TAnimation, AKeyStrideAboveFourDropsTheSurplus)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(
        Clip(Channel(Data("numKeys=2 keyStride=6", "1 2 3 4 5 6 7 8 9 10 11 12", "0 1")) + Still + Still)));
    EXPECT_EQ(file.Animation.GetChannel(0).Keys[0][3], 4);
    EXPECT_EQ(file.Animation.GetChannel(0).Keys[1][0], 7);
}

TEST(TAnimation, MissingCountsAreZero)
{
    TVoriFile file;
    ASSERT_TRUE(
        file.Load(Clip(Channel(Data("", "1 2 3", "0")) + Channel(Data("numKeys=2", "", "0 1")) + Still)));
    EXPECT_EQ(file.Animation.GetChannel(0).Keys.size(), 0);
    EXPECT_EQ(file.Animation.GetChannel(1).Keys.size(), 2);
    EXPECT_EQ(file.Animation.GetLength(), 0);
}

TEST(TAnimation, HighBytesSeparateNumbers)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(Clip(Channel(Data("numKeys=1 keyStride=3",
                                            "1\xff\x80"
                                            "2\x01 3",
                                            "0")) +
                               Still + Still)));
    EXPECT_EQ(file.At(0)[1], 2);
    EXPECT_EQ(file.At(0)[2], 3);
}

TEST(TAnimation, ATokenHasAtMost64Characters)
{
    TVoriFile file;
    const std::string digits = "1." + std::string(62, '0');
    ASSERT_TRUE(file.Load(Clip(Channel(Data("numKeys=1 keyStride=3", digits + "7 9", "0")) + Still + Still)));
    EXPECT_EQ(file.At(0), (TFloats{1, 7, 9, 0, 0, 0}));
}

TEST(TAnimation, FailureTexts)
{
    TVoriFile file;
    {
        const TShownMessages messages;
        EXPECT_FALSE(file.Animation.Load(file.Folder.Path("none.vori").c_str()));
        EXPECT_EQ(
            TShownMessages::Texts(),
            std::vector<std::string>{"Failed to open " + file.Folder.Path("none.vori") + " for reading"});
    }
    EXPECT_EQ(file.FailureOf("<?xml?><other></other>"), file.Message("VOR"));
    EXPECT_EQ(file.FailureOf(""), file.Message("VOR"));
    EXPECT_EQ(file.FailureOf("<VOR/><animclip></animclip>"), file.AnimMessage("animClip tag"));
    EXPECT_EQ(file.FailureOf("<VOR><anim></anim></VOR>"), file.AnimMessage("animClip tag"));
    EXPECT_EQ(file.FailureOf("<VOR><animclip></animclip></VOR>"), file.AnimMessage("anim tag"));
    EXPECT_EQ(file.FailureOf("<VOR><animclip/></VOR>"), file.AnimMessage("anim tag"));
    EXPECT_EQ(file.FailureOf(Clip("")), file.AnimMessage("animChannel tag 0/3"));
    EXPECT_EQ(file.FailureOf(Clip(Still + Still)), file.AnimMessage("animChannel tag 2/3"));
    EXPECT_EQ(file.FailureOf(Clip(Still + Channel(""))), file.AnimMessage("animData tag 1/3"));
    EXPECT_EQ(file.FailureOf(Clip("<animChannel/>")), file.AnimMessage("animData tag 0/3"));
    EXPECT_EQ(file.FailureOf(Clip(Channel("<animData><keyTimes></keyTimes></animData>"))),
              file.AnimMessage("keyValues tag 0/3"));
    EXPECT_EQ(file.FailureOf(Clip(Still + Still + Channel("<animData/>"))),
              file.AnimMessage("keyValues tag 2/3"));
    EXPECT_EQ(file.FailureOf(Clip(Channel("<animData><keyValues></keyValues></animData>"))),
              file.AnimMessage("keyTimes tag 0/3"));
}

TEST(TAnimation, AFileOfAKeptPathIsToldInTheSystemsOwnForm)
{
    const TVoriFile file;
    std::string kept = file.Path();
    std::replace(kept.begin(), kept.end(), '/', '\\');
    const auto failure = [&](const std::string& text) {
        const TShownMessages messages;
        WriteBytes(file.Path(), text);
        TAnimation animation;
        EXPECT_FALSE(animation.Load(kept.c_str()));
        return TShownMessages::Texts().empty() ? "" : TShownMessages::Texts()[0];
    };
    EXPECT_EQ(failure("<other></other>"), file.Message("VOR"));
    EXPECT_EQ(failure("<VOR></VOR>"), file.AnimMessage("animClip tag"));
    EXPECT_EQ(failure(Clip("")), file.AnimMessage("animChannel tag 0/3"));
    ASSERT_EQ(std::remove(file.Path().c_str()), 0);
    const TShownMessages messages;
    TAnimation animation;
    EXPECT_FALSE(animation.Load(kept.c_str()));
    EXPECT_EQ(TShownMessages::Texts(),
              std::vector<std::string>{"Failed to open " + file.Path() + " for reading"});
}

TEST(TAnimation, TagsThatDoNotMatchAreToldWithFileAndLineAndTheRestIsRead)
{
    TVoriFile file;
    EXPECT_TRUE(file.Load(Clip("\n" + Still + Still + Still + "\n</oddment>")));
    EXPECT_EQ(file.Shown,
              std::vector<std::string>{
                  file.Path() + " [3] : The closing tag \"oddment\" does not match \"anim\" of line 1"});
    EXPECT_TRUE(file.Load(Clip("<!-- <old>gone</old> -->" + Still + Still + Still)));
    EXPECT_EQ(file.Shown, std::vector<std::string>());
}

TEST(TAnimation, AZeroByteInATagIsToldAndOneBetweenNumbersIsABlank)
{
    TVoriFile file;
    const std::string cut = Channel(Data(std::string("numKeys=1 key\0Stride=3", 22), "1 2 3", "0"));
    EXPECT_EQ(file.FailureOf(Clip(cut + Still + Still)), file.Path() + " [1] : The file holds a zero byte");
    const std::string parted = Channel(Data("numKeys=1 keyStride=3",
                                            std::string("1\0"
                                                        "2\0"
                                                        "3",
                                                        5),
                                            "0"));
    EXPECT_TRUE(file.Load(Clip(parted + Still + Still)));
    EXPECT_EQ(file.Shown, std::vector<std::string>());
    EXPECT_EQ(file.Animation.GetChannel(0).Keys[0][2], 3.0f);
}

TEST(TAnimation, AFileThatMayNotBeReadIsToldWithTheReason)
{
    TTempFolder folder;
    const std::string path = folder.Path("locked.vori");
    WriteBytes(path, Clip(Still + Still + Still));
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    ASSERT_EQ(chmod(folder.GetFolder().c_str(), 0755), 0);
    const TNobody nobody;
    const TShownMessages messages;
    TAnimation animation;
    EXPECT_FALSE(animation.Load(path.c_str()));
    EXPECT_EQ(TShownMessages::Texts(),
              (std::vector<std::string>{"Failed to open " + path + " for reading\nPermission denied"}));
}

TEST(TAnimation, MoreKeysThanTheFileCanHoldFail)
{
    TVoriFile file;
    for (const char* counts :
         {"numKeys=2000000000 keyStride=4", "numKeys=2000000000 keyStride=0",
          "numKeys=1000 keyStride=2147483647", "numKeys=2147483647 keyStride=2147483647"})
        EXPECT_EQ(file.FailureOf(Clip(Channel(Data(counts, "1 2 3", "0")))),
                  file.AnimMessage("keyValues tag 0/3"));
}

TEST(TAnimation, MoreKeysThanTheElementHoldsDoNotDerailTheReader)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(Clip(Channel(Data("numKeys=9 keyStride=3", "1 2 3", "0 1")) +
                               Channel(Data("numKeys=1 keyStride=4", "0 0 0 1", "0")) + Still)));
    EXPECT_EQ(file.Animation.GetChannel(0).Keys.size(), 9);
    EXPECT_EQ(file.Animation.GetChannel(1).Keys[0][3], 1);
}

TEST(TAnimation, NegativeCountsAreZero)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(Clip(Channel(Data("numKeys=-3 keyStride=-2", "1", "0")) + Still + Still)));
    EXPECT_EQ(file.Animation.GetChannel(0).Keys.size(), 0);
}

TEST(TAnimation, TruncationsAreSurvived)
{
    TVoriFile file;
    const std::string whole = Clip(Channel(Data("numKeys=2 keyStride=3", "1 2 3 4 5 6", "0 1")) +
                                   Channel(Data("numKeys=1 keyStride=4", "0 0 0 1", "0")) + Still);
    for (size_t length = 0; length < whole.size(); length += 5) {
        TAnimation cut;
        const TShownMessages messages;
        WriteBytes(file.Path(), whole.substr(0, length));
        EXPECT_EQ(AssertionOf([&] { cut.Load(file.Path().c_str()); }), "") << length;
    }
    EXPECT_TRUE(file.Load(whole));
}

TEST(TAnimation, IsLinearBetweenKeysAndClampedAtTheEnds)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(
        Clip(Channel(Data("numKeys=3 keyStride=3", "0 0 0 8 4 2 8 8 8", "1 3 4")) + Still + Still)));
    EXPECT_EQ(file.At(0)[0], 0);
    EXPECT_EQ(file.At(1.5f), (TFloats{2, 1, 0.5f, 0, 0, 0}));
    EXPECT_EQ(file.At(3)[1], 4);
    EXPECT_EQ(file.At(3.5f)[1], 6);
    EXPECT_EQ(file.At(100), (TFloats{8, 8, 8, 0, 0, 0}));
    EXPECT_EQ(file.At(std::nanf("")), (TFloats{8, 8, 8, 0, 0, 0}));
    EXPECT_EQ(file.Animation.GetLength(), 4);
}

TEST(TAnimation, TracksOutsideTheMaskAreLeftOut)
{
    TVoriFile file;
    ASSERT_TRUE(
        file.Load(Clip(Channel(Data("numKeys=1 keyStride=3", "1 2 3", "0")) +
                       Channel(Data("numKeys=1 keyStride=4", "0 0 0.70710678 0.70710678", "0")) + Still)));
    EXPECT_EQ(file.At(0, AT_POSITION), (TFloats{1, 2, 3, 0, 0, 0}));
    EXPECT_NEAR(std::fabs(file.At(0, AT_ROTATION)[5]), 90, 0.1);
    EXPECT_EQ(file.At(0, AT_ROTATION)[0], 0);
    EXPECT_EQ(file.At(0, AT_SCALE), (TFloats{0, 0, 0, 0, 0, 0}));
}

TEST(TAnimation, ARotationIsNormalisedAndGivenInDegrees)
{
    TVoriFile file;
    // Thirty degrees about z, at length 5: by the convention of the matrices, (1, 0, 0) turns towards -y.
    const double a = std::acos(-1.0) / 12;
    char key[80];
    snprintf(key, sizeof(key), "0 0 %.9g %.9g", -5 * std::sin(a), 5 * std::cos(a));
    ASSERT_TRUE(file.Load(Clip(Still + Channel(Data("numKeys=1 keyStride=4", key, "0")) + Still)));
    const TFloats value = file.At(0);
    EXPECT_NEAR(value[3], 0, 1e-4);
    EXPECT_NEAR(value[4], 0, 1e-4);
    EXPECT_NEAR(value[5], 30, 1e-4);
}

TEST(TAnimation, AHalfWayRotationIsHalfTheTurn)
{
    TVoriFile file;
    char keys[120];
    snprintf(keys, sizeof(keys), "0 0 0 1 0 0 %.9g %.9g", -Half, Half);
    ASSERT_TRUE(file.Load(Clip(Still + Channel(Data("numKeys=2 keyStride=4", keys, "0 1")) + Still)));
    EXPECT_NEAR(file.At(0.5f)[5], 45, 1e-3);
}

TEST(TAnimation, AZeroRotationIsNone)
{
    TVoriFile file;
    ASSERT_TRUE(file.Load(Clip(Still + Channel(Data("numKeys=1 keyStride=4", "0 0 0 0", "0")) + Still)));
    EXPECT_EQ(file.At(0), (TFloats{0, 0, 0, 0, 0, 0}));
}

TEST(TAnimation, TheScaleEntersTheAngles)
{
    TVoriFile file;
    // Thirty degrees about y; the scale halves the z row before the angles are read off.
    const double a = std::acos(-1.0) / 12;
    char key[80];
    snprintf(key, sizeof(key), "0 %.9g 0 %.9g", std::sin(a), std::cos(a));
    ASSERT_TRUE(file.Load(Clip(Still + Channel(Data("numKeys=1 keyStride=4", key, "0")) +
                               Channel(Data("numKeys=1 keyStride=3", "1 1 0.5", "0")))));
    EXPECT_NEAR(file.At(0, AT_ROTATION)[4], 30, 1e-4);
    EXPECT_NEAR(file.At(0)[4], std::asin(0.25) * 180 / std::acos(-1.0), 1e-4);
}

TEST(GetAnimation, GivesTheSameObjectForAPathInAnotherCase)
{
    TVoriFile file;
    WriteBytes(file.Path(), Clip(Still + Still + Still));
    TAnimation* first = GetAnimation(file.Path().c_str());
    ASSERT_NE(first, nullptr);
    WriteBytes(file.Path(), "no longer one");
    std::string upper = file.Path();
    for (char& c : upper)
        c = static_cast<char>(toupper(c));
    EXPECT_EQ(GetAnimation(upper.c_str()), first);
}

TEST(GetAnimation, AFailedLoadLeavesNothingInTheCache)
{
    const TShownMessages messages;
    TVoriFile file;
    WriteBytes(file.Path(), "nothing");
    EXPECT_EQ(GetAnimation(file.Path().c_str()), nullptr);
    WriteBytes(file.Path(), Clip(Still + Still + Still));
    EXPECT_NE(GetAnimation(file.Path().c_str()), nullptr);
}
