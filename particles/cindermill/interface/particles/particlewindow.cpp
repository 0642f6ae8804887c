#include "particles/cindermill/interface/particles/particlewindow.h"

#include "library/containers/assertion.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "particles/cindermill/main/document.h"

static TWindowClass ParticleClass("cindermill_particlewindow");
static constexpr TGDIColour ParticleBackground = 0xF0F0F0;

bool TParticleWindow::Create(TDocument& document)
{
    if (!ParticleClass.IsRegistered())
        ParticleClass.Register(PI_PROGRAM, ParticleBackground);
    Doc = &document;
    TWindowParams params;
    params.Class = &ParticleClass;
    params.Title = "Effect Display [doc]";
    params.Kind = WK_TOP;
    params.X = 0;
    params.Y = 50;
    params.Width = 800;
    params.Height = 650;
    ASSERT_TEXT(TWindow::Create(params), "0 : Failed to create particle window");
    ASSERT_TEXT(Render.Create(this, document), "0 : Failed to create particle render subwindow");
    ASSERT_TEXT(Timeline.Create(this, document), "0 : Failed to create particle timelinw subwindow");
    Render.Show();
    Timeline.Show();
    Layout();
    return true;
}

void TParticleWindow::Layout()
{
    if (Timeline.GetHandle() == nullptr)
        return;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const int top = height > TParticleTimeline::Height ? height - TParticleTimeline::Height : 0;
    Render.MoveTo(0, 0, width, top);
    Timeline.MoveTo(0, top, width, TParticleTimeline::Height);
}

void TParticleWindow::Tick()
{
    Render.Tick();
    Timeline.Tick();
    Render.RedrawChanged();
}

float TParticleWindow::GetTime() const
{
    return Doc->GetEngine().GetTime();
}

bool TParticleWindow::OnMessage(const TMessage& message)
{
    if (message.Type != MT_SIZE)
        return TWindow::OnMessage(message);
    Layout();
    return true;
}
