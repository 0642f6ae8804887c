#include "particles/cindermill/interface/particles/particlescene.h"

#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/interface/particles/linecolour.h"
#include "particles/cindermill/interface/particles/previewmarks.h"
#include "particles/cindermill/interface/particles/wires.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/document.h"

#include <GL/glew.h>

static const TVector4 GridGrey(0.5f, 0.5f, 0.5f, 1);
static const TVector4 GridBlack(0, 0, 0, 1);
// Of a ground that stands out from the dark.
static const TVector4 GridLight(0.8f, 0.8f, 0.8f, 1);
static constexpr float GridCells = 5.0f;

// From edge to edge of the ground, both ways.
static void DrawGroundLines(TWires& wires, int i)
{
    const float place = static_cast<float>(i) / GridCells;
    wires.Line(TVector3(place, 0, -1), TVector3(place, 0, 1));
    wires.Line(TVector3(-1, 0, place), TVector3(1, 0, place));
}

// What a stage that stopped halfway may have left switched on.
static void SwitchStagesOff()
{
    constexpr GLenum states[] = {GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB, GL_BLEND,
                                 GL_ALPHA_TEST,         GL_DEPTH_TEST,           GL_CULL_FACE,
                                 GL_POLYGON_OFFSET_FILL};
    for (const GLenum state : states)
        glDisable(state);
}

bool TParticleScene::Tick(TDocument& document)
{
    bool changed = false;
    for (const auto& entry : document.GetNodeDisplays())
        changed = entry.first->Tick() || changed;
    if (!Faults.empty())
        DisplayErrors("Schedule errors", Faults);
    Faults.Clear();
    return changed;
}

void TParticleScene::Draw(TDocument& document, const TSceneView& view)
{
    // Otherwise the depth buffer would not be cleared.
    glDepthMask(GL_TRUE);
    GLint place[4] = {};
    glGetIntegerv(GL_VIEWPORT, place);
    glDisable(GL_DEPTH_TEST);
    Backdrop.Draw(Look, place[2], place[3]);
    DrawOver(document, view, true);
}

void TParticleScene::DrawOver(TDocument& document, const TSceneView& view, bool withMarks)
{
    glDepthMask(GL_FALSE);
    if (withMarks) {
        LineProgram.Bind(view);
        for (const auto& entry : document.GetNodeDisplays())
            entry.first->Render(view);
        LineProgram.Unbind();
    }
    DrawParticles(document, view);
    if (withMarks)
        DrawMarks(document, view);
    if (withMarks && Look.Ground)
        DrawGround(view);
    glDepthMask(GL_TRUE);
    CheckGlError();
}

// A fault of what is sampled for them is the engine's own, which tells of it.
void TParticleScene::DrawMarks(TDocument& document, const TSceneView& view)
{
    if (!Look.Boxes && !Look.Velocities && !Look.Emitters)
        return;
    LineProgram.Bind(view);
    TString text;
    const bool drawn =
        RunGuarded([&] { TPreviewMarks(document, Backdrop.GetMeanColour(Look)).Draw(Look); }, text);
    LineProgram.Unbind();
    if (!drawn)
        SwitchStagesOff();
}

void TParticleScene::DrawGround(const TSceneView& view)
{
    LineProgram.Bind(view);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    DrawGroundGrid();
    glDisable(GL_DEPTH_TEST);
    LineProgram.Unbind();
}

void TParticleScene::DrawParticles(TDocument& document, const TSceneView& view)
{
    TEffectExec& engine = document.GetEngine();
    if (!engine.IsInited())
        return;
    TString text;
    if (RunGuarded([&] { engine.Render(view, Look.OnlyGroup); }, text))
        return;
    SwitchStagesOff();
    // A node that waits for its file must not be thrown away: what is wrong will show in a later frame, too.
    if (TCindermillApp::Get().GetResourceLocator().IsAsking())
        return;
    document.ClearEngine();
    Faults.Add(new TError("%s", text.Print()));
}

void TParticleScene::DrawGroundGrid()
{
    const TVector4 behind = Backdrop.GetMeanColour(Look);
    {
        TWires grey(GetLineColour(GridGrey, behind), TMatrix43());
        for (int i = -4; i <= 4; ++i)
            if (i != 0)
                DrawGroundLines(grey, i);
    }
    TWires black(IsDark(behind) ? GridLight : GridBlack, TMatrix43());
    for (int i = -5; i <= 5; i += 5)
        DrawGroundLines(black, i);
}
