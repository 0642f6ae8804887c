#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/containers/image/image.h"
#include "library/wimp/gl/device/rendertexturecache.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

#include <filesystem>

namespace {

constexpr TPixel Red = {255, 0, 0, 255};
constexpr TPixel Blue = {0, 0, 255, 255};
const TVector4 White(1, 1, 1, 1);

// The upper half in one colour, the lower in another.
void SavePicture(const std::string& path, const TPixel& upper, const TPixel& lower, int size = 8)
{
    TImage image;
    image.Create(size, size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const TPixel& colour = y < size / 2 ? lower : upper;
            uint8_t* pixel = image.GetPixel(x, y);
            pixel[0] = static_cast<uint8_t>(colour.R);
            pixel[1] = static_cast<uint8_t>(colour.G);
            pixel[2] = static_cast<uint8_t>(colour.B);
            pixel[3] = static_cast<uint8_t>(colour.A);
        }
    }
    ASSERT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
}

class TTextures : public TGlTest
{
protected:
    void SetUp() override
    {
        TGlTest::SetUp();
        Path = Folder.Path("Spark.dds");
        SavePicture(Path, Red, Blue);
    }
    TPicture PaintTexture(const TRenderTextureInstance& texture, const TVector4& colour, bool alphaOnly)
    {
        TDrawnObject root([&](TRenderer& renderer) {
            renderer.SetColour(TVector4(0, 0, 0, 1));
            renderer.DrawRectangle(TVector2(0, 0), TVector2(Width, Height));
            texture.Draw(renderer, TVector2(10, 20), TVector2(50, 60), colour, alphaOnly);
        });
        return Paint(root);
    }

    TTempFolder Folder;
    std::string Path;
};

} // namespace

TEST_F(TTextures, TwoUsersOfAPathShareOneTextureAndItSurvivesUntilTheSecondRelease)
{
    TRenderTextureInstance a;
    TRenderTextureInstance b;
    ASSERT_TRUE(a.Load(Path.c_str()));
    ASSERT_TRUE(b.Load(Path.c_str()));
    EXPECT_EQ(a.GetTexture(), b.GetTexture());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 1);
    const unsigned name = a.GetTexture()->GetName();
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_EQ(a.GetTexture()->GetRefCount(), 2);
    a.Release();
    EXPECT_TRUE(a.IsEmpty());
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_EQ(b.GetWidth(), 8);
    b.Release();
    EXPECT_FALSE(glIsTexture(name));
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 0);
}

TEST_F(TTextures, APathDifferingOnlyInCaseIsTheSameEntry)
{
    TRenderTextureInstance a;
    TRenderTextureInstance b;
    ASSERT_TRUE(a.Load(Path.c_str()));
    ASSERT_TRUE(b.Load(Folder.Path("sPARK.DDS").c_str()));
    EXPECT_EQ(a.GetTexture(), b.GetTexture());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 1);
}

TEST_F(TTextures, AFileThatWillNotLoadCreatesNoCacheEntry)
{
    TRenderTextureInstance texture;
    EXPECT_FALSE(texture.Load(Folder.Path("missing.dds").c_str()));
    WriteBytes(Folder.Path("broken.dds"), "DDS but not really");
    EXPECT_FALSE(texture.Load(Folder.Path("broken.dds").c_str()));
    EXPECT_FALSE(texture.Load(nullptr));
    EXPECT_FALSE(texture.Load(""));
    EXPECT_TRUE(texture.IsEmpty());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 0);
}

TEST_F(TTextures, AFailedLoadGivesUpTheTextureHeldBefore)
{
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    EXPECT_FALSE(texture.Load(Folder.Path("missing.dds").c_str()));
    EXPECT_TRUE(texture.IsEmpty());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 0);
}

TEST_F(TTextures, HandlesCountTheirCopies)
{
    TRenderTextureInstance a;
    ASSERT_TRUE(a.Load(Path.c_str()));
    {
        TRenderTextureInstance b(a);
        TRenderTextureInstance c;
        c = b;
        const TRenderTextureInstance& itself = c;
        c = itself;
        EXPECT_EQ(a.GetTexture()->GetRefCount(), 3);
        // The same file again: never let go in between.
        EXPECT_TRUE(c.Load(Path.c_str()));
        EXPECT_EQ(a.GetTexture()->GetRefCount(), 3);
        c = TRenderTextureInstance();
        EXPECT_EQ(a.GetTexture()->GetRefCount(), 2);
    }
    EXPECT_EQ(a.GetTexture()->GetRefCount(), 1);
}

TEST_F(TTextures, UsingAnEmptyHandleIsAnAssertion)
{
    TRenderTextureInstance texture;
    EXPECT_EQ(AssertionOf([&] { texture.GetWidth(); }), "Texture != 0");
    EXPECT_EQ(AssertionOf([&] { texture.GetHeight(); }), "Texture != 0");
    EXPECT_EQ(AssertionOf([&] { texture.Bind(0); }), "Texture != 0");
    EXPECT_EQ(AssertionOf([&] { texture.Draw(Renderer, TVector2(0, 0), TVector2(1, 1), White, false); }),
              "Texture != 0");
}

TEST_F(TTextures, ReleasingAnUnknownTextureIsAnAssertion)
{
    TRenderTexture stranger;
    EXPECT_EQ(AssertionOf([&] { TRenderTextureCache::Release(&stranger); }), "it != Textures.end()");
}

TEST_F(TTextures, TheInternalFormatDecidesThePixelTransfer)
{
    const unsigned char bytes[4] = {10, 20, 30, 40};
    const float floats[4] = {2.5f, -3, 0.25f, 1};
    const float luminance[1] = {7.5f};
    const uint16_t halves[4] = {0x3C00, 0x4000, 0xC000, 0x3800};
    struct TCase
    {
        TTextureFormat Format;
        int Code;
        const void* Data;
        std::vector<float> Texel;
    };
    const TCase cases[] = {
        {TF_RGBA8, GL_RGBA8, bytes, {10 / 255.0f, 20 / 255.0f, 30 / 255.0f, 40 / 255.0f}},
        {TF_RGBA32F, GL_RGBA32F_ARB, floats, {2.5f, -3, 0.25f, 1}},
        {TF_LUMINANCE32F, GL_LUMINANCE32F_ARB, luminance, {7.5f, 0, 0, 1}},
        {TF_RGBA16F, GL_RGBA16F_ARB, halves, {1, 2, -2, 0.5f}},
    };
    for (const TCase& test : cases) {
        TRenderTextureInstance texture;
        texture.Create(1, 1, test.Format, test.Data);
        EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 1);
        texture.Bind(0);
        GLint format = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
        EXPECT_EQ(format, test.Code);
        GLint filter = 0;
        for (const GLenum which : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
            glGetTexParameteriv(GL_TEXTURE_2D, which, &filter);
            EXPECT_EQ(filter, GL_LINEAR);
        }
        float texel[4] = {};
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, texel);
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(texel[i], test.Texel[static_cast<size_t>(i)], 1e-5f) << test.Code << " " << i;
    }
}

TEST_F(TTextures, AnyOtherFormatIsAnAssertion)
{
    const unsigned char bytes[16] = {};
    TRenderTextureInstance texture;
    EXPECT_EQ(AssertionOf([&] { texture.Create(1, 1, static_cast<TTextureFormat>(GL_RGB8), bytes); }), "0");
    EXPECT_TRUE(texture.IsEmpty());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 0);
}

TEST_F(TTextures, TexturesFromMemoryAreNeverShared)
{
    const unsigned char bytes[4] = {};
    TRenderTextureInstance a;
    TRenderTextureInstance b;
    a.Create(1, 1, TF_RGBA8, bytes);
    b.Create(1, 1, TF_RGBA8, bytes);
    EXPECT_NE(a.GetTexture(), b.GetTexture());
    EXPECT_EQ(TRenderTextureInstance::GetNumCached(), 2);
    TRenderTextureInstance c;
    EXPECT_FALSE(c.Load(""));
}

TEST_F(TTextures, WithoutAContextAPictureIsReadAndUploadedAtTheFirstBind)
{
    TTestContext::ClearCurrent();
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    EXPECT_EQ(texture.GetWidth(), 8);
    EXPECT_EQ(texture.GetTexture()->GetName(), 0u);
    Window.MakeCurrent();
    texture.Bind(0);
    EXPECT_TRUE(glIsTexture(texture.GetTexture()->GetName()));
    unsigned char pixels[8 * 8 * 4] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    EXPECT_EQ(pixels[2], 255);
    EXPECT_EQ(pixels[8 * 8 * 4 - 4], 255);
}

TEST_F(TTextures, BindTakesTheUnit)
{
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    texture.Bind(3);
    GLint value = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &value);
    EXPECT_EQ(value, GL_TEXTURE3);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &value);
    EXPECT_EQ(static_cast<unsigned>(value), texture.GetTexture()->GetName());
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(TTextures, ReloadReadsTheFileAgainIntoTheSameName)
{
    TRenderTextureInstance texture;
    EXPECT_FALSE(TRenderTextureInstance::Reload(Path.c_str()));
    ASSERT_TRUE(texture.Load(Path.c_str()));
    const unsigned name = texture.GetTexture()->GetName();
    SavePicture(Path, Blue, Red, 16);
    EXPECT_TRUE(TRenderTextureInstance::Reload(Path.c_str()));
    EXPECT_EQ(texture.GetTexture()->GetName(), name);
    EXPECT_EQ(texture.GetWidth(), 16);
    EXPECT_EQ(PaintTexture(texture, White, false).At(30, 25), Blue);
}

TEST_F(TTextures, AFailedReloadLeavesThePictureAsItWas)
{
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    std::filesystem::remove(Path);
    EXPECT_FALSE(TRenderTextureInstance::Reload(Path.c_str()));
    EXPECT_EQ(texture.GetWidth(), 8);
    EXPECT_EQ(PaintTexture(texture, White, false).At(30, 25), Red);
}

TEST_F(TTextures, ThePictureStandsUpright)
{
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    const TPicture picture = PaintTexture(texture, White, false);
    EXPECT_EQ(picture.At(30, 25), Red);
    EXPECT_EQ(picture.At(30, 55), Blue);
    EXPECT_EQ(picture.At(30, 61), (TPixel{0, 0, 0, 255}));
    EXPECT_EQ(picture.At(9, 40), (TPixel{0, 0, 0, 255}));
}

TEST_F(TTextures, TheColourTintsThePicture)
{
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    const TPicture picture = PaintTexture(texture, TVector4(0.5f, 0.5f, 0.25f, 1), false);
    EXPECT_TRUE(IsClose(picture.At(30, 25), TPixel{128, 0, 0, 255})) << picture.At(30, 25);
    EXPECT_TRUE(IsClose(picture.At(30, 55), TPixel{0, 0, 64, 255})) << picture.At(30, 55);
}

TEST_F(TTextures, TheAlphaFormShowsTheAlphaChannel)
{
    const unsigned char solid[4] = {255, 0, 0, 255};
    const unsigned char clear[4] = {255, 0, 0, 0};
    TRenderTextureInstance texture;
    texture.Create(1, 1, TF_RGBA8, solid);
    EXPECT_EQ(PaintTexture(texture, White, true).At(30, 40), (TPixel{255, 255, 255, 255}));
    texture.Create(1, 1, TF_RGBA8, clear);
    EXPECT_EQ(PaintTexture(texture, White, true).At(30, 40), (TPixel{0, 0, 0, 255}));
    const unsigned char half[4] = {255, 0, 0, 128};
    texture.Create(1, 1, TF_RGBA8, half);
    EXPECT_EQ(PaintTexture(texture, White, true).At(30, 40), (TPixel{128, 128, 128, 255}));
}

TEST_F(TTextures, PicturesOfOddSizesKeepTheirPixels)
{
    const int sizes[][2] = {{1, 1}, {3, 5}, {7, 1}, {1, 9}, {17, 13}, {301, 2}};
    for (const int* size : sizes) {
        TImage image;
        image.Create(size[0], size[1]);
        for (int y = 0; y < size[1]; ++y)
            for (int x = 0; x < size[0]; ++x)
                for (int i = 0; i < 4; ++i)
                    image.GetPixel(x, y)[i] = static_cast<uint8_t>(31 * x + 17 * y + 90 * i);
        const std::string path = Folder.Path("odd" + std::to_string(size[0]) + ".dds");
        ASSERT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
        TRenderTextureInstance texture;
        ASSERT_TRUE(texture.Load(path.c_str()));
        texture.Bind(0);
        std::vector<uint8_t> pixels(static_cast<size_t>(size[0]) * size[1] * 4);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        EXPECT_EQ(memcmp(pixels.data(), image.GetPixels(), pixels.size()), 0) << size[0] << "x" << size[1];
    }
}

TEST_F(TTextures, MissingMipmapsAreNotMissed)
{
    // The header promises four levels; the file holds the first.
    std::string bytes = ReadBytes(Path);
    bytes[28] = 4;
    WriteBytes(Path, bytes);
    TRenderTextureInstance texture;
    ASSERT_TRUE(texture.Load(Path.c_str()));
    EXPECT_EQ(PaintTexture(texture, White, false).At(30, 25), Red);
}

TEST_F(TTextures, APictureTooLargeForTheDriverIsGivenCoarser)
{
    const int width = GetMaxTextureSide() * 2 + 2;
    std::vector<uint32_t> texels(static_cast<size_t>(width) * 2, 0xFFFF0000);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < width / 2; ++x)
            texels[static_cast<size_t>(y) * width + x] = 0xFF0000FF;
    TRenderTextureInstance texture;
    texture.Create(width, 2, TF_RGBA8, texels.data());
    EXPECT_EQ(texture.GetWidth(), width);
    EXPECT_EQ(texture.GetHeight(), 2);
    const TPicture picture = PaintTexture(texture, White, false);
    EXPECT_EQ(picture.At(20, 40), Red);
    EXPECT_EQ(picture.At(45, 40), Blue);
}
