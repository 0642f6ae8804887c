#include "support/gltest.h"

#include "library/wimp/gl/framebuffers.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

#include <cstring>

namespace {

class FrameBuffers : public TGlTest
{
protected:
    void SetUp() override
    {
        TGlTest::SetUp();
        ASSERT_TRUE(Window.MakeCurrent());
        ASSERT_TRUE(InitGl());
    }
    // The lower rows in one colour, the rest in another, neither of them opaque.
    static void Draw(int height, int lower)
    {
        glDisable(GL_SCISSOR_TEST);
        glClearColor(1, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, height * 100, lower);
        glClearColor(0, 1, 0.2f, 0.5f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    uint32_t At(int width, int x, int y) const
    {
        uint32_t dot = 0;
        memcpy(&dot, Pixels + (static_cast<ptrdiff_t>(y) * width + x) * 4, sizeof dot);
        return dot;
    }

    static constexpr uint32_t Upper = 0xFFFF0000;
    static constexpr uint32_t Lower = 0xFF00FF33;
    TFrameBuffers Buffers;
    uint8_t Pixels[100 * 100 * 4] = {};
};

} // namespace

TEST_F(FrameBuffers, AreReadFromTheHighestRowOnAndOpaque)
{
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Buffers.Use(30, 20));
    Draw(20, 5);
    Buffers.Read(30, 20, Pixels);
    for (const int x : {0, 29}) {
        EXPECT_EQ(At(30, x, 0), Upper);
        EXPECT_EQ(At(30, x, 14), Upper);
        EXPECT_EQ(At(30, x, 15), Lower);
        EXPECT_EQ(At(30, x, 19), Lower);
    }
}

TEST_F(FrameBuffers, OfOneSizeAreOneHoweverManySizesThereAre)
{
    const unsigned first = Buffers.Use(30, 20);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, first);
    Draw(20, 5);
    const unsigned second = Buffers.Use(20, 30);
    EXPECT_NE(second, first);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, second);
    Draw(30, 29);
    EXPECT_EQ(Buffers.Use(30, 20), first);
    Buffers.Read(30, 20, Pixels);
    EXPECT_EQ(At(30, 0, 14), Upper);
    // More than are kept.
    for (int size = 1; size <= 20; ++size) {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Buffers.Use(size, size));
        Draw(size, size);
        Buffers.Read(size, size, Pixels);
        EXPECT_EQ(At(size, size - 1, 0), Lower) << size;
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Buffers.Use(30, 20));
    Draw(20, 5);
    Buffers.Read(30, 20, Pixels);
    EXPECT_EQ(At(30, 0, 14), Upper);
    EXPECT_EQ(At(30, 0, 15), Lower);
}
