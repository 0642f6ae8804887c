#include "bench/windowscenes.h"

#include "bench/benchfolder.h"
#include "library/containers/log.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/interface/application.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/particles/particlewindow.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/effectgraph.h"
#include "tools/samplemaker/samplebuilder.h"

#include <GL/glew.h>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

constexpr float FrameTime = 0.02f;
// While it is measured an effect all but stands still, so that every frame shows the same.
constexpr float MeasuredTime = 1e-4f;
constexpr float ParticleSize = 0.02f;
// What a square of that half size measures in the preview, about.
constexpr float QuadPixels = 14;

// The preview's buttons, by their ids.
constexpr int PauseButton = 1004;
constexpr int PlayButton = 1005;

constexpr int ColumnWidth = 200;
constexpr int RowHeight = 120;

TApplication* Application = nullptr;

// As many of them as fit side by side in the picture, when all are in sight.
void MoveNodesBy(TDocument& document)
{
    const TEffectGraph& graph = *document.GetGraph();
    int columns = 1;
    while (columns * columns * ColumnWidth * SceneHeight < graph.GetNumNodes() * RowHeight * SceneWidth)
        ++columns;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        vector<TToolNode*> node;
        node.push_back(static_cast<TToolNode*>(graph.GetNode(i)));
        document.ApplyOperation(
            new TMoveGraphNodeOp(node, i % columns * ColumnWidth, i / columns * RowHeight));
    }
}

TSampleNode AddFountain(TSampleBuilder& effect)
{
    const TSampleNode trigger = effect.Add("Emitter");
    const TSampleNode emitter = effect.Add("Point Emitter");
    const TSampleNode cone = effect.Add("Velocity Cone").Set("Cone Cosine", {-1});
    const TSampleNode gravity = effect.Add("Gravity");
    const TSampleNode damping = effect.Add("Damping");
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = effect.Add("Age").Set("Max Age", {1e6f});
    const TSampleNode colours = effect.Add("Colour Over Life");
    const TSampleNode stage = effect.Add("Sprite Render Stage");
    const TSampleNode scales = effect.Add("Scale Over Life");
    trigger.Wire("Count", emitter, "Emission Trigger");
    emitter.Wire("Start Transform", integrate, "Position");
    cone.Wire("Velocity", gravity, "Velocity");
    gravity.Wire("Velocity", damping, "Velocity");
    damping.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    age.Wire("Age", colours, "Time");
    age.Wire("Age", scales, "Time");
    colours.Wire("Value", stage, "Colour");
    scales.Wire("Value", stage, "Scale");
    return trigger;
}

// Particles that fly apart from one place.
void AddBurst(TSampleBuilder& effect, int particles)
{
    const TSampleNode trigger = effect.Add("Emitter")
                                    .Set("Rate", {static_cast<float>(particles) / FrameTime})
                                    .Int("Per frame max emission", particles);
    const TSampleNode emitter = effect.Add("Point Emitter").Int("Particle Count", particles);
    const TSampleNode cone = effect.Add("Velocity Cone").Set("Cone Cosine", {-1});
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -0.1f, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = effect.Add("Age").Set("Max Age", {1e6f});
    const TSampleNode colours = effect.Add("Colour Over Life")
                                    .Set("Life", {10})
                                    .Colours("Value", {{0, 1, 0.5f, 0, 0.75f}, {1, 0.25f, 0, 1, 0.75f}});
    const TSampleNode stage = effect.Add("Sprite Render Stage")
                                  .Texture("Texture", "spark.dds")
                                  .Set("Scale", {ParticleSize, ParticleSize});
    trigger.Wire("Count", emitter, "Emission Trigger");
    emitter.Wire("Start Transform", integrate, "Position");
    cone.Wire("Velocity", gravity, "Velocity");
    gravity.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
}

void PressButton(TDocument& document, int button)
{
    GetWindows(document).GetParticleWindow()->GetTimeline().OnCommand(nullptr, button, CC_BUTTON);
}

} // namespace

TDocumentWindows& GetWindows(const TDocument& document)
{
    return *static_cast<TDocumentWindows*>(document.GetHost());
}

void PressPause(TDocument& document)
{
    PressButton(document, PauseButton);
}

void PressPlay(TDocument& document)
{
    PressButton(document, PlayButton);
}

TDocument* OpenFile(const std::string& path)
{
    if (!TCindermillApp::Get().OpenDocument(path.c_str()))
        return nullptr;
    TDocument* document = TCindermillApp::Get().GetDocuments().back();
    PressPause(*document);
    return document;
}

TDocument* OpenBuilt(TSampleBuilder& effect, const std::string& leaf)
{
    const std::string path = GetBenchFolder().GetPath(leaf);
    effect.GetDocument().GetOperationStack()->Clear(effect.GetDocument());
    return effect.GetDocument().SaveAs(path.c_str()) ? OpenFile(path) : nullptr;
}

void SettleWindows()
{
    constexpr int turns = 50;
    for (int i = 0; i < turns; ++i)
        TWimp::Get().Step();
}

void FitWindow(TWindow& window, const TWindow& child)
{
    int width = SceneWidth;
    int height = SceneHeight;
    for (int i = 0; i < 3; ++i) {
        int inner[2];
        window.MoveTo(0, 0, width, height);
        SettleWindows();
        child.GetSize(inner[0], inner[1]);
        width += SceneWidth - inner[0];
        height += SceneHeight - inner[1];
    }
}

bool StartProgram()
{
    static char name[] = "windowbench";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    static const TLogCapture quiet([](const char*, void*) {}, nullptr);
    // Where the node types lie. They are asked for if they are not found, which nobody would answer.
    if (chdir(CINDERMILL_SOURCE_DIR) != 0)
        return false;
    setenv("XDG_CONFIG_HOME", GetBenchFolder().GetPath("config").c_str(), 1);
    if (!TWimp::Get().Init(count, arguments)) {
        std::fprintf(stderr, "There is no display\n");
        return false;
    }
    Application = new TApplication;
    if (!Application->Init()) {
        std::fprintf(stderr, "The program does not start\n");
        return false;
    }
    TCindermillApp::Get().GetResourceLocator().AddSearchDirectory(CINDERMILL_SOURCE_DIR "/samples");
    // Idle passes come when they are measured.
    TWimp::Get().SetIdle(false);
    SettleWindows();
    if (!IsGlReady())
        std::fprintf(stderr, "There is no OpenGL\n");
    return IsGlReady();
}

void RunIdlePass()
{
    Application->OnIdle();
}

void PaintWindow(TWindow& window, const int& paints)
{
    const int before = paints;
    window.Redraw();
    while (paints == before)
        TWimp::Get().Step();
}

void TPaintCounter::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-1e30f, -1e30f);
    max = TVector2(1e30f, 1e30f);
}

TGraphPicture::TGraphPicture(int nodes)
{
    TSampleBuilder effect(TCindermillApp::Get());
    for (int i = 0; i < nodes; i += 10)
        AddFountain(effect);
    MoveNodesBy(effect.GetDocument());
    Take(effect, "graph" + std::to_string(nodes) + ".effect");
}

void TGraphPicture::Take(TSampleBuilder& effect, const std::string& leaf)
{
    Document = OpenBuilt(effect, leaf);
    if (Document == nullptr)
        return;
    Windows = &GetWindows(*Document);
    Windows->GetParticleWindow()->Hide();
    TDocWindow& window = *Windows->GetWindow(0);
    window.GetOwner()->MoveTo(0, 0, 1600, 1150);
    Graph = &window.GetGraph();
    FitWindow(window, *Graph);
    Windows->GetScene().GetRoot().AddObject(&Counter);
    FrameAll();
    Show(false);
}

TGraphPicture::~TGraphPicture()
{
    if (Document != nullptr)
        TCindermillApp::Get().CloseDocument(Document);
}

void TGraphPicture::Show(bool shown)
{
    Windows->GetWindow(0)->Show(shown);
    SettleWindows();
}

void TGraphPicture::FrameAll()
{
    Windows->GetWindow(0)->FocusAll(false);
}

void TGraphPicture::FrameMiddle()
{
    FrameAll();
    TGraphView view = Graph->GetView();
    const TVector2 centre = view.GetCentre(SceneWidth, SceneHeight);
    view.SetCentre(centre, TVector2(1, 1), SceneWidth, SceneHeight);
    Graph->SetView(view);
}

// As a hand does: by whole pixels, to and fro.
void TGraphPicture::Pan()
{
    TGraphView view = Graph->GetView();
    int start[2];
    view.GetPanStart(0, 0, start);
    const int way = ++NumPans % 2 == 0 ? 1 : -1;
    view.PanTo(way * 5, way * 3, start);
    Graph->SetView(view);
}

void TGraphPicture::PaintPanned()
{
    Pan();
    PaintWindow(*Graph, Counter.Count);
}

void TGraphPicture::DrawPanned()
{
    Pan();
    Graph->GetRenderer().Render(Windows->GetScene().GetRoot());
    glFinish();
}

void TGraphPicture::DrawEmpty()
{
    TRenderObjects empty;
    Graph->GetRenderer().Render(empty);
    glFinish();
}

TPreviewPicture::TPreviewPicture(int particles)
{
    TSampleBuilder effect(TCindermillApp::Get());
    AddBurst(effect, particles);
    Document = OpenBuilt(effect, "preview" + std::to_string(particles) + ".effect");
    if (Document == nullptr || !Document->GetEngine().IsInited())
        return;
    Windows = &GetWindows(*Document);
    Windows->GetWindow(0)->Show(false);
    TParticleWindow& window = *Windows->GetParticleWindow();
    window.Show();
    FitWindow(window, window.GetRenderWindow());
    Document->AddNodeDisplay(&Counter);
    Fill();
    Show(false);
    if (CountParticles() == particles)
        Window = &window.GetRenderWindow();
}

TPreviewPicture::~TPreviewPicture()
{
    if (Document == nullptr)
        return;
    if (Windows != nullptr)
        Document->RemoveNodeDisplay(&Counter);
    Document->SetModified(false);
    TCindermillApp::Get().CloseDocument(Document);
}

void TPreviewPicture::Show(bool shown)
{
    Windows->GetParticleWindow()->Show(shown);
    SettleWindows();
}

// All particles in the first step; then they fly for half a second.
void TPreviewPicture::Fill()
{
    constexpr int flight = 25;
    const TEffectGraph& graph = *Document->GetGraph();
    TErrorList errors;
    Document->UpdateEngine(FrameTime, errors);
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
        if (node->GetNodeType()->Name.Compare("Emitter") == 0)
            TSampleNode(*Document, node).Set("Rate", {0}).Int("Per frame max emission", 0);
    }
    for (int i = 0; i < flight; ++i)
        Document->UpdateEngine(FrameTime, errors);
}

void TPreviewPicture::Paint()
{
    TErrorList errors;
    Document->UpdateEngine(MeasuredTime, errors);
    PaintWindow(*Window, Counter.Count);
}

int TPreviewPicture::CountParticles() const
{
    const TEffectExec& engine = Document->GetEngine();
    int count = 0;
    for (int g = 0; g < engine.GetNumGroups(); ++g)
        if (const TParticleBuffer* buffer = engine.GetGroup(g))
            count += buffer->GetNumParticles();
    return count;
}

TPlainPicture::TPlainPicture(int quads)
{
    static TWindowClass windowClass("windowbench");
    TWindowParams params;
    params.Class = &windowClass;
    params.Kind = WK_TOP;
    params.Width = SceneWidth;
    params.Height = SceneHeight;
    if (!Create(params))
        return;
    params.Kind = WK_GLCHILD;
    params.Owner = this;
    if (!Child.Create(params))
        return;
    Child.MoveTo(0, 0, SceneWidth, SceneHeight);
    Vertices.resize(static_cast<size_t>(quads) * 4);
    TWindow::Show();
    SettleWindows();
    Good = NumPaints > 0;
    TWindow::Show(false);
}

bool TPlainPicture::TChild::OnMessage(const TMessage& message)
{
    if (message.Type != MT_PAINT)
        return false;
    if (MakeCurrent() && InitGl())
        Picture.Draw();
    return true;
}

void TPlainPicture::MakeTexture()
{
    constexpr int side = 64;
    static unsigned char texels[side * side][4];
    for (int i = 0; i < side * side; ++i)
        for (int k = 0; k < 4; ++k)
            texels[i][k] = static_cast<unsigned char>(i % side * 4);
    glGenTextures(1, &Texture);
    glBindTexture(GL_TEXTURE_2D, Texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, side, side, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
}

void TPlainPicture::FillVertices()
{
    constexpr float corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    constexpr float size[2] = {2 * QuadPixels / SceneWidth, 2 * QuadPixels / SceneHeight};
    uint32_t random = 1;
    for (size_t i = 0; i < Vertices.size(); i += 4) {
        float place[2];
        for (float& coordinate : place) {
            random = random * 1664525 + 1013904223;
            coordinate = static_cast<float>(random >> 8) / 16777216.0f * 2 - 1;
        }
        for (size_t k = 0; k < 4; ++k)
            Vertices[i + k] = {{place[0] + corners[k][0] * size[0], place[1] + corners[k][1] * size[1]},
                               {corners[k][0], corners[k][1]},
                               {1, 0.5f, 0, 0.75f}};
    }
}

void TPlainPicture::Draw()
{
    ++NumPaints;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Child.GetFrameBuffer());
    glViewport(0, 0, SceneWidth, SceneHeight);
    glClearColor(0.8f, 0.8f, 0.8f, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (Vertices.empty())
        return;
    if (Texture == 0)
        MakeTexture();
    FillVertices();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, Texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(TVertex), Vertices[0].Point);
    glTexCoordPointer(2, GL_FLOAT, sizeof(TVertex), Vertices[0].TexCoord);
    glColorPointer(4, GL_FLOAT, sizeof(TVertex), Vertices[0].Colour);
    glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(Vertices.size()));
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}
