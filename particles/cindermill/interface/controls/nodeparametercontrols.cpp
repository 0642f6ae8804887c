#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/interface/controls/parameterdefault.h"
#include "particles/cindermill/main/cindermillapp.h"

namespace {

// A value that is not the default: its label is darker, and a dot stands between label and controls.
const TVector4 PlainInk(0.33f, 0.35f, 0.37f, 1);
const TVector4 ChangedInk(0.04f, 0.04f, 0.06f, 1);
const TVector4 DotColour(0.851f, 0.282f, 0, 1);
constexpr float DotSize = 4.0f;

void Widen(TVector2& min, TVector2& max, const TVector2& low, const TVector2& high)
{
    for (int i = 0; i < 2; ++i) {
        min[i] = low[i] < min[i] ? low[i] : min[i];
        max[i] = high[i] > max[i] ? high[i] : max[i];
    }
}

} // namespace

TNodeParameterControls::~TNodeParameterControls()
{
    StopListening();
}

void TNodeParameterControls::StopListening()
{
    if (Listens)
        Parameter->RemoveCallback(OnParameterChanged, this);
    Listens = false;
}

void TNodeParameterControls::Build(TDocument& document, TToolNode& toolNode, TNodeParameter& parameter,
                                   TControlHost& host)
{
    ASSERT_TEXT(Parameter == nullptr, "Parameter == 0");
    Document = &document;
    ToolNode = &toolNode;
    Parameter = &parameter;
    Host = &host;
    Font.Create(ControlFont, 10);
    Label = parameter.Name;
    Label += ":";
    parameter.AddCallback(OnParameterChanged, this);
    Listens = true;
    BuildControls();
    Refresh();
    Differs = !IsDefault();
    GetSize(ToldSize);
    PlaceLabel();
}

void TNodeParameterControls::OnParameterChanged(TNodeParameter* parameter, void* data)
{
    (void)parameter;
    TNodeParameterControls* controls = static_cast<TNodeParameterControls*>(data);
    controls->Refresh();
    controls->Differs = !controls->IsDefault();
}

bool TNodeParameterControls::GetHelpText(TString& text) const
{
    text = Parameter->Description;
    return !text.IsEmpty();
}

float TNodeParameterControls::GetLabelWidth() const
{
    TVector2 size;
    Font.GetTextSize(Label.Print(), size);
    return size[0];
}

float TNodeParameterControls::GetLabelHeight() const
{
    TVector2 size;
    GetSize(size);
    return size[1];
}

void TNodeParameterControls::PlaceLabel()
{
    TVector2 size;
    Font.GetTextSize(Label.Print(), size);
    LabelRect = TVector2(-size[0] - LabelGap, (GetLabelHeight() - size[1]) * 0.5f);
    TouchBounds();
}

void TNodeParameterControls::SetLabel(const char* label)
{
    Label = label;
    PlaceLabel();
}

void TNodeParameterControls::SetTop(float y)
{
    SetOrigin(TVector2(GetOrigin()[0], y));
}

void TNodeParameterControls::TellSize()
{
    TVector2 size;
    GetSize(size);
    if (size[0] == ToldSize[0] && size[1] == ToldSize[1])
        return;
    ToldSize = size;
    PlaceLabel();
    TellParent(RE_RELAYOUT);
}

const TNodeParameter* TNodeParameterControls::FindDefault() const
{
    return FindDefaultParameter(TCindermillApp::Get().GetNodeTypes(), *ToolNode->GetNodeType(), *Parameter);
}

void TNodeParameterControls::Render(TRenderer& renderer)
{
    if (!Label.IsEmpty())
        DrawControlText(renderer, Font, LabelRect, Label, Differs ? ChangedInk : PlainInk);
    if (Differs) {
        const TVector2 middle(-LabelGap * 0.5f, GetLabelHeight() * 0.5f);
        const TVector2 half(DotSize * 0.5f, DotSize * 0.5f);
        renderer.SetColour(DotColour);
        renderer.DrawRectangle(middle - half, middle + half);
    }
    TRenderObjects::Render(renderer);
}

void TNodeParameterControls::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    GetSize(max);
    TVector2 text;
    Font.GetTextSize(Label.Print(), text);
    Widen(min, max, LabelRect, LabelRect + text);
    if (GetObjects().empty())
        return;
    TVector2 low;
    TVector2 high;
    TRenderObjects::GetBounds(low, high);
    Widen(min, max, low, high);
}

TRenderObject* TNodeParameterControls::HitTest(const TVector2& point)
{
    TRenderObject* child = TRenderObjects::HitTest(point);
    return child != nullptr ? child : TRenderObject::HitTest(point);
}

bool TNodeParameterControls::Event(const TRenderEvent& event)
{
    TString help;
    switch (event.Code) {
    case RE_VALUECHANGED:
        OnChildChanged(event);
        return true;
    case RE_LEFTDOWN:
        return (event.Source == this && OnPress(event.Point)) || TRenderObjects::Event(event);
    case RE_ENTER:
    case RE_MOVE:
        if (event.Source == this)
            Host->ShowPointer(*this, FindShape(event.Point));
        return TRenderObjects::Event(event);
    case RE_HOVER:
        if (!GetHelpText(help))
            return TRenderObjects::Event(event);
        Host->ShowHelp(help, GetPointer());
        return true;
    default:
        return TRenderObjects::Event(event);
    }
}
