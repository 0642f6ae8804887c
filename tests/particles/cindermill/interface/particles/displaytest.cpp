#include "particles/cindermill/interface/particles/displays.h"

#include "support/gltest.h"
#include "support/testapp.h"

#include "library/system/message.h"
#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/particles/lineprogram.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <GL/glew.h>

#include <climits>
#include <filesystem>

namespace {

constexpr int CanvasSize = 200;

// Clip space is two world axes, each from -2 to 2.
TSceneView ViewOf(int xAxis, int yAxis)
{
    TMatrix4 matrix;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            matrix[row][column] = 0;
    matrix[xAxis][0] = matrix[yAxis][1] = 0.5f;
    TSceneView view;
    view.Set(matrix, TMatrix4());
    return view;
}

// A node of the repository's types with its display, drawn on white.
class TShownNode
{
public:
    TShownNode(TTestApp& app, const char* type)
    {
        RegisterDisplayClasses();
        Node.Create(nullptr, app.Type(type), 0, 0, false);
        if (Node.GetDisplay() == nullptr)
            throw std::runtime_error(std::string("no display for ") + type);
    }
    ~TShownNode()
    {
        for (int i = 0; i < Node.GetNumInputs(); ++i)
            Node.SetInput(i, nullptr);
    }
    void Set(const char* port, const std::vector<float>& value)
    {
        TNodeType* type = Node.GetNodeType();
        static_cast<TNodeValueParameter*>(type->GetInput(type->FindInput(port)))->SetValue(value.data());
    }
    void Connect(const char* port) { Node.SetInput(Node.GetNodeType()->FindInput(port), &Edge); }
    // In world units along the two axes.
    TPicture Draw(int xAxis = 0, int yAxis = 1)
    {
        Node.GetDisplay()->Tick();
        return DrawFrame(xAxis, yAxis);
    }
    TPicture DrawFrame(int xAxis = 0, int yAxis = 1)
    {
        Canvas.MakeCurrent();
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Canvas.GetFrameBuffer());
        glViewport(0, 0, CanvasSize, CanvasSize);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        const TSceneView view = ViewOf(xAxis, yAxis);
        LineProgram.Bind(view);
        Node.GetDisplay()->Render(view);
        LineProgram.Unbind();
        CheckGlError();
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        return Canvas.Read();
    }

    TToolNode Node;

private:
    TEffectEdge Edge;
    TTestWindow Canvas{CanvasSize, CanvasSize};
    TLineProgram LineProgram;
};

bool IsDrawn(const TPixel& pixel)
{
    return !IsClose(pixel, {255, 255, 255, 255});
}

int CountDrawn(const TPicture& picture)
{
    return picture.Count(&IsDrawn);
}

// Whether something is drawn at the place, or a pixel beside it.
bool HasLine(const TPicture& picture, float x, float y)
{
    const int column = static_cast<int>((x + 2) / 4 * CanvasSize);
    const int row = static_cast<int>((2 - y) / 4 * CanvasSize);
    return picture.Count(&IsDrawn, column - 1, row - 1, 3, 3) > 0;
}

class Displays : public testing::Test
{
protected:
    TTestApp App;
};

TEST_F(Displays, ClassesAreDisplays)
{
    RegisterDisplayClasses();
    for (const char* name : {"TAttractorDisplay", "TCollisionPlaneDisplay", "TGridDisplay",
                             "TSphereSurfaceDisplay", "TVolumeDisplay", "TAnimationPathDisplay"}) {
        const int id = FindClassByName(name);
        ASSERT_NE(id, -1) << name;
        EXPECT_EQ(GetClassParent(id), TNodeDisplay::ClassId());
    }
}

TEST_F(Displays, AnAttractorIsAFaintCross)
{
    TShownNode shown(App, "Attractor");
    shown.Set("Attractor Position", {1, 0.5f, 0});
    const TPicture picture = shown.Draw();
    EXPECT_TRUE(HasLine(picture, 0.96f, 0.5f));
    EXPECT_TRUE(HasLine(picture, 1.04f, 0.5f));
    EXPECT_TRUE(HasLine(picture, 1, 0.46f));
    EXPECT_FALSE(HasLine(picture, 0.9f, 0.5f));
    EXPECT_FALSE(HasLine(picture, 0, 0));
    // Black at an eighth over white.
    EXPECT_GT(picture.Count([](const TPixel& p) { return IsClose(p, {223, 223, 223, 255}); }), 5);
    EXPECT_TRUE(HasLine(shown.Draw(2, 1), 0, 0.46f));
    EXPECT_TRUE(HasLine(shown.Draw(2, 1), 0.04f, 0.5f));
}

TEST_F(Displays, AnAttractorWithAWiredPlaceIsNotShown)
{
    TShownNode shown(App, "Attractor");
    shown.Connect("Attractor Position");
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
}

TEST_F(Displays, ASelectedNodeStandsOut)
{
    TShownNode shown(App, "Attractor");
    const int faint = CountDrawn(shown.Draw());
    EXPECT_EQ(shown.Draw().Count([](const TPixel& p) { return p.R - p.B > 100; }), 0);
    shown.Node.SetSelected(true);
    EXPECT_EQ(shown.Draw().Count([](const TPixel& p) { return p.R - p.B > 100; }), faint);
    shown.Node.SetSelected(false);
    EXPECT_EQ(shown.Draw().Count([](const TPixel& p) { return p.R - p.B > 100; }), 0);
}

TEST_F(Displays, ACollisionPlaneIsAGridOfEightByEight)
{
    TShownNode shown(App, "Collision Plane");
    const TPicture above = shown.Draw(0, 2);
    for (int i = 0; i <= 8; ++i) {
        const float place = static_cast<float>(i) / 4 - 1;
        EXPECT_TRUE(HasLine(above, place, 0.1f)) << place;
        EXPECT_TRUE(HasLine(above, 0.1f, place)) << place;
    }
    EXPECT_FALSE(HasLine(above, 0.125f, 0.125f));
    EXPECT_FALSE(HasLine(above, 1.1f, 0.1f));
    shown.Set("Size", {0.5f, 1.5f});
    const TPicture scaled = shown.Draw(0, 2);
    EXPECT_TRUE(HasLine(scaled, 0.5f, 1.45f));
    EXPECT_FALSE(HasLine(scaled, 0.6f, 0.1f));
    // Turned upright about x.
    shown.Set("Plane", {0, 0, 0, 90, 0, 0});
    EXPECT_TRUE(HasLine(shown.Draw(0, 1), 0.5f, 1.45f));
}

TEST_F(Displays, ACollisionPlaneWithAWiredSizeIsUnscaled)
{
    TShownNode shown(App, "Collision Plane");
    shown.Set("Size", {0.5f, 1.5f});
    shown.Connect("Size");
    const TPicture picture = shown.Draw(0, 2);
    EXPECT_TRUE(HasLine(picture, 1, 0.1f));
    EXPECT_FALSE(HasLine(picture, 0.1f, 1.4f));
    shown.Connect("Plane");
    EXPECT_EQ(CountDrawn(shown.Draw(0, 2)), 0);
}

TEST_F(Displays, AGridHasTheGivenDivisions)
{
    TShownNode shown(App, "Grid");
    TNodeType* type = shown.Node.GetNodeType();
    type->FindParameterOf<TNodeIntParameter>("X Divisions", PK_INT)->SetValue(2);
    type->FindParameterOf<TNodeIntParameter>("Y Divisions", PK_INT)->SetValue(4);
    const TPicture picture = shown.Draw(0, 2);
    for (const float x : {-1.0f, 0.0f, 1.0f})
        EXPECT_TRUE(HasLine(picture, x, 0.1f));
    EXPECT_FALSE(HasLine(picture, 0.5f, 0.1f));
    for (const float z : {-1.0f, -0.5f, 0.0f, 0.5f, 1.0f})
        EXPECT_TRUE(HasLine(picture, 0.1f, z));
    EXPECT_FALSE(HasLine(picture, 0.1f, 0.25f));
    type->FindParameterOf<TNodeIntParameter>("Y Divisions", PK_INT)->SetValue(0);
    for (const int divisions : {1001, 1999, 2000000000, INT_MAX}) {
        type->FindParameterOf<TNodeIntParameter>("X Divisions", PK_INT)->SetValue(divisions);
        const TPicture filled = shown.Draw(0, 2);
        for (const float x : {-1.0f, -0.5f, 0.0f, 0.01f, 0.4f, 0.98f, 1.0f})
            EXPECT_TRUE(HasLine(filled, x, 0.5f)) << x << " of " << divisions;
        EXPECT_FALSE(HasLine(filled, 1.05f, 0.5f));
        EXPECT_FALSE(HasLine(filled, -1.05f, 0.5f));
    }
    type->FindParameterOf<TNodeIntParameter>("Y Divisions", PK_INT)->SetValue(-5);
    shown.Draw(0, 2);
    type->FindParameterOf<TNodeIntParameter>("X Divisions", PK_INT)->SetValue(0);
    const TPicture undivided = shown.Draw(0, 2);
    EXPECT_FALSE(HasLine(undivided, 0.98f, 0.1f));
    EXPECT_TRUE(HasLine(undivided, -1, 0.1f));
    EXPECT_FALSE(HasLine(undivided, 0, 0.1f));
    shown.Connect("Transform");
    EXPECT_EQ(CountDrawn(shown.Draw(0, 2)), 0);
}

TEST_F(Displays, ASphereSurfaceIsAWireSphere)
{
    TShownNode shown(App, "Sphere Surface");
    shown.Set("Scale", {1.5f, 1, 0.5f});
    const TPicture picture = shown.Draw();
    EXPECT_TRUE(HasLine(picture, 1.5f, 0));
    EXPECT_TRUE(HasLine(picture, 0, 1));
    EXPECT_TRUE(HasLine(picture, 0, -1));
    EXPECT_FALSE(HasLine(picture, 0, 1.1f));
    EXPECT_TRUE(HasLine(shown.Draw(2, 1), 0.5f, 0));
    EXPECT_FALSE(HasLine(shown.Draw(2, 1), 0.6f, 0));
    shown.Connect("Scale");
    EXPECT_TRUE(HasLine(shown.Draw(2, 1), 1, 0));
    shown.Connect("Translation");
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
}

TEST_F(Displays, AVolumeHasItsShape)
{
    TShownNode shown(App, "Volume");
    auto* shape = shown.Node.GetNodeType()->FindParameterOf<TNodeEnumParameter>("Volume Type", PK_ENUM);
    const TPicture sphere = shown.Draw();
    EXPECT_TRUE(HasLine(sphere, 0, 1));
    EXPECT_FALSE(HasLine(sphere, 0.98f, 0.98f));
    shape->SetValue(1);
    const TPicture box = shown.Draw();
    EXPECT_TRUE(HasLine(box, 0.98f, 1));
    EXPECT_TRUE(HasLine(box, -1, 0.5f));
    EXPECT_FALSE(HasLine(box, 0.5f, 0.5f));
    EXPECT_TRUE(HasLine(shown.Draw(0, 2), 0.98f, 1));
    shape->SetValue(2);
    EXPECT_TRUE(HasLine(shown.Draw(), 0.9f, 1));
    EXPECT_TRUE(HasLine(shown.Draw(), 1, 0.5f));
    EXPECT_FALSE(HasLine(shown.Draw(0, 2), 0.98f, 0.98f));
    EXPECT_TRUE(HasLine(shown.Draw(0, 2), 0, 1));
}

TEST_F(Displays, AVolumeWithAWiredPortIsNotShown)
{
    for (const char* port : {"Transform", "Scale"}) {
        TShownNode shown(App, "Volume");
        EXPECT_GT(CountDrawn(shown.Draw()), 0);
        shown.Connect(port);
        EXPECT_EQ(CountDrawn(shown.Draw()), 0) << port;
    }
}

TEST_F(Displays, APathRunsThroughTheAnimation)
{
    TShownNode shown(App, "Animation Path");
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
    auto* parameter =
        shown.Node.GetNodeType()->FindParameterOf<TNodeAnimationParameter>("Animation", PK_ANIMATION);
    // From (0, 0, 0) to (1, 2, 3) in a second.
    parameter->SetFileName("path.vori");
    const TPicture picture = shown.Draw();
    EXPECT_TRUE(HasLine(picture, 0.1f, 0.2f));
    EXPECT_TRUE(HasLine(picture, 0.8f, 1.6f));
    EXPECT_FALSE(HasLine(picture, 0.8f, 0.2f));
    EXPECT_TRUE(HasLine(shown.Draw(0, 2), 0.5f, 1.5f));
    parameter->SetFileName("");
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
}

TEST_F(Displays, APathWhoseFileCameLateIsDrawnOnceFilesAreLookedForAnew)
{
    TShownNode shown(App, "Animation Path");
    shown.Node.GetNodeType()
        ->FindParameterOf<TNodeAnimationParameter>("Animation", PK_ANIMATION)
        ->SetFileName("late.vori");
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
    WriteBytes(App.Path("resources/late.vori"), ReadBytes(App.Path("resources/path.vori")));
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
    // As every start of an engine does.
    App.Get().GetResourceLocator().ForgetMissing();
    const TPicture picture = shown.Draw();
    EXPECT_TRUE(HasLine(picture, 0.1f, 0.2f));
    EXPECT_TRUE(HasLine(picture, 0.8f, 1.6f));
}

TEST_F(Displays, APathIsDrawnAnewWhenItsNameLeadsToAnotherFile)
{
    const std::string first = ReadBytes(App.Path("resources/path.vori"));
    std::string second = first;
    const size_t end = second.find("1 2 3");
    ASSERT_NE(end, std::string::npos) << first;
    second.replace(end, 5, "1 0 3");
    const auto choose = [&](const char* folder, const std::string& bytes) {
        std::filesystem::create_directories(App.Path(folder));
        const std::string path = App.Path(folder) + "/way.vori";
        WriteBytes(path, bytes);
        TString name = path.c_str();
        EXPECT_TRUE(App.Get().GetResourceLocator().PrepareName(name));
        EXPECT_EQ(Text(name), "way.vori");
    };
    choose("first", first);
    TShownNode shown(App, "Animation Path");
    shown.Node.GetNodeType()
        ->FindParameterOf<TNodeAnimationParameter>("Animation", PK_ANIMATION)
        ->SetFileName("way.vori");
    EXPECT_TRUE(HasLine(shown.Draw(), 0.8f, 1.6f));
    choose("second", second);
    const TPicture picture = shown.Draw();
    EXPECT_TRUE(HasLine(picture, 0.8f, 0));
    EXPECT_FALSE(HasLine(picture, 0.8f, 1.6f));
}

TEST_F(Displays, AnAnimationThatCannotBeReadIsToldBetweenTheFrames)
{
    static int told;
    told = 0;
    SetMessageForms([](const char*) { ++told; }, nullptr);
    WriteBytes(App.Path("resources/broken.vori"), "no animation");
    TShownNode shown(App, "Animation Path");
    shown.Node.GetNodeType()
        ->FindParameterOf<TNodeAnimationParameter>("Animation", PK_ANIMATION)
        ->SetFileName("broken.vori");
    EXPECT_EQ(CountDrawn(shown.DrawFrame()), 0);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(CountDrawn(shown.Draw()), 0);
    EXPECT_EQ(told, 1);
    shown.Draw();
    EXPECT_EQ(told, 1);
    SetMessageForms(nullptr, nullptr);
}

TEST_F(Displays, MissingParametersAreAsserted)
{
    RegisterDisplayClasses();
    const auto init = [](const char* display) {
        TToolNode node;
        TNodeType type;
        node.Create(nullptr, type, 0, 0, false);
        node.GetNodeType()->DisplayClass = display;
        return AssertionOf([&] { node.Attach(nullptr); });
    };
    EXPECT_EQ(init("TAttractorDisplay"), "AttractorPosition != 0");
    EXPECT_EQ(init("TCollisionPlaneDisplay"), "Translation != 0 && Scale != 0");
    EXPECT_EQ(init("TGridDisplay"), "Translation != 0 && Scale != 0 && XDivs != 0 && YDivs != 0");
    EXPECT_EQ(init("TSphereSurfaceDisplay"), "Translation != 0 && Scale != 0");
    EXPECT_EQ(init("TVolumeDisplay"), "VolumeType != 0 && VolumePosition != 0 && VolumeSize != 0");
    EXPECT_EQ(init("TAnimationPathDisplay"), "Param != 0");
}

TEST_F(Displays, TheLineProgramIsLoadedOnce)
{
    TTestWindow window(4, 4);
    TLineProgram program;
    EXPECT_EQ(AssertionOf([&] { program.Load(); }), "");
    EXPECT_EQ(AssertionOf([&] { program.Load(); }), "VertexShader == -1");
    TLineProgram bound;
    bound.Bind(TSceneView());
    bound.Bind(TSceneView());
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
    bound.Unbind();
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_PROGRAM_ARB));
}

} // namespace
