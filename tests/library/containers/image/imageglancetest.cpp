#include "library/containers/image/image.h"

#include "support/testsupport.h"

// What is known of a picture without looking at all of it.

TEST(TImage, TheSizeOfAFileIsToldByItsFirstBytes)
{
    TTempFolder folder;
    TImage image;
    image.Create(20, 12);
    int width = 0;
    int height = 0;
    for (const int format : {IF_DDS_RAW, IF_HVT_DXT5}) {
        const std::string path = folder.Path("picture");
        ASSERT_TRUE(image.Save(path.c_str(), format));
        // Nothing but the header is left.
        WriteBytes(path, ReadBytes(path).substr(0, 128));
        EXPECT_TRUE(TImage::ReadSize(path.c_str(), width, height)) << format;
        EXPECT_EQ(width, 20) << format;
        EXPECT_EQ(height, 12) << format;
    }
    WriteBytes(folder.Path("words"), "DDS is a word");
    EXPECT_FALSE(TImage::ReadSize(folder.Path("words").c_str(), width, height));
    EXPECT_FALSE(TImage::ReadSize(folder.Path("none").c_str(), width, height));
}

TEST(TImage, TheMeanColourIsThatOfWhatIsSeenFromAfar)
{
    TImage image;
    EXPECT_EQ(image.GetMeanColour(), 0u) << "no picture";
    // Half red, half blue.
    image.Create(300, 200);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            image.GetPixel(x, y)[y < 100 ? 0 : 2] = 255;
    EXPECT_EQ(image.GetMeanColour(), 0x7F007Fu);
}
