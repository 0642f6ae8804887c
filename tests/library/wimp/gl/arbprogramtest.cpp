#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/device/arbprogram.h"
#include "library/wimp/gl/tintprogram.h"

#include <GL/glew.h>

TEST_F(TGlTest, AProgramAssemblesAndBinds)
{
    TArbProgram program(AT_VERTEX);
    EXPECT_FALSE(program.IsAssembled());
    ASSERT_TRUE(program.Assemble("!!ARBvp1.0\nPARAM c = program.local[3];\nPARAM e = program.env[2];\n"
                                 "ADD result.position, vertex.position, c;\nMOV result.color, e;\nEND\n"));
    EXPECT_TRUE(program.IsAssembled());
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
    program.Bind();
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
    const float local[4] = {1, 2, 3, 4};
    const float env[4] = {5, 6, 7, 8};
    program.SetLocal(3, local);
    program.SetEnv(2, env);
    float read[4] = {};
    glGetProgramLocalParameterfvARB(GL_VERTEX_PROGRAM_ARB, 3, read);
    EXPECT_EQ(std::vector<float>(read, read + 4), std::vector<float>(local, local + 4));
    glGetProgramEnvParameterfvARB(GL_VERTEX_PROGRAM_ARB, 2, read);
    EXPECT_EQ(std::vector<float>(read, read + 4), std::vector<float>(env, env + 4));
    program.Unbind();
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
}

TEST_F(TGlTest, ARefusedProgramIsLoggedWithTheDriversWords)
{
    TArbProgram program(AT_FRAGMENT);
    const std::string text = "!!ARBfp1.0\nNONSENSE R0;\nEND\n";
    bool assembled = true;
    const std::string log = LogOf([&] { assembled = program.Assemble(text.c_str()); });
    EXPECT_FALSE(assembled);
    EXPECT_FALSE(program.IsAssembled());
    const std::string head = text + "opengl arb shader assemble error at position ";
    ASSERT_EQ(log.substr(0, head.size()), head);
    const char* reason = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    GLint position = -1;
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
    EXPECT_EQ(log.substr(head.size()), std::to_string(position) + "\n" + reason + "\n");
}

TEST_F(TGlTest, ALongRefusedProgramIsLoggedWhole)
{
    std::string text = "!!ARBfp1.0\nTEMP R0;\n";
    for (int i = 0; i < 500; ++i)
        text += "MOV R0, fragment.texcoord[0];\n";
    text += "NONSENSE;\nEND\n";
    TArbProgram program(AT_FRAGMENT);
    const std::string log = LogOf([&] { program.Assemble(text.c_str()); });
    EXPECT_EQ(log.substr(0, text.size()), text);
}

TEST_F(TGlTest, AProgramMayBeAssembledAgain)
{
    TArbProgram program(AT_FRAGMENT);
    LogOf([&] { program.Assemble("!!ARBfp1.0\nNONSENSE\nEND\n"); });
    EXPECT_TRUE(program.Assemble("!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n"));
    EXPECT_TRUE(program.Assemble("!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n"));
    EXPECT_TRUE(program.IsAssembled());
}

TEST_F(TGlTest, TheTintProgramsAreThoseOfTheTextureAndItsAlpha)
{
    struct TCase
    {
        const TArbProgram* Program;
        const char* Text;
    };
    const TCase cases[] = {
        {&GetTintProgram(),
         "!!ARBfp1.0\nTEMP R0;\nPARAM c[1] = { program.local[0] };\n"
         "TEX R0, fragment.texcoord[0], texture[0], 2D;\nMUL result.color, R0, c[0];\nEND\n"},
        {&GetAlphaTintProgram(),
         "!!ARBfp1.0\nTEMP R0;\nPARAM c[1] = { program.local[0] };\n"
         "TEX R0, fragment.texcoord[0], texture[0], 2D;\nMUL result.color, R0.w, c[0];\nEND\n"}};
    for (const TCase& test : cases) {
        test.Program->Bind();
        GLint length = 0;
        glGetProgramivARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_LENGTH_ARB, &length);
        std::string text(static_cast<size_t>(length), ' ');
        glGetProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_STRING_ARB, text.data());
        test.Program->Unbind();
        EXPECT_EQ(text, test.Text);
    }
}
