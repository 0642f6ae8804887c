#include "particles/cindermill/interface/trace/tracegraphs.h"

#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/cindermill/interface/trace/nodetrace.h"

namespace {

constexpr int Margin = 5;
constexpr int GraphDistance = TOutputGraph::Height + TOutputGraph::StripHeight;
constexpr TGDIColour SelectedColour = 0xC8DCF0;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_attribtrace_graphs", 0, ButtonColour);
    return windowClass;
}

} // namespace

bool TTraceGraphs::Create(TAttributeTraceWindow& window, const TNodeTrace& trace)
{
    Window = &window;
    Trace = &trace;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &window;
    params.VerticalScroll = true;
    return TWindow::Create(params);
}

void TTraceGraphs::Rebuild()
{
    Graphs.clear();
    for (int port = 0; port < Trace->GetNumPorts(); ++port) {
        Graphs.push_back(new TOutputGraph);
        Graphs.back()->Create(*Window, *this, *Trace, port, port * TOutputGraph::MaxComponents);
    }
    SetScrollPosition(0);
    Layout();
    Redraw();
}

void TTraceGraphs::RedrawGraphs()
{
    for (TOutputGraph* graph : Graphs)
        graph->Redraw();
    Redraw();
}

int TTraceGraphs::GetTop(int port) const
{
    return GraphDistance * port + Margin - GetScrollPosition();
}

// A scroll bar that comes or goes changes the room, of which this is told in between.
void TTraceGraphs::Layout()
{
    if (InLayout)
        return;
    InLayout = true;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    SetScrollRange(Graphs.size() * GraphDistance + 2 * Margin, height, ScrollStep);
    GetSize(width, height);
    const int graphWidth = width > 2 * Margin ? width - 2 * Margin : 0;
    for (int port = 0; port < Graphs.size(); ++port)
        Graphs[port]->Place(Margin, GetTop(port), graphWidth);
    InLayout = false;
}

void TTraceGraphs::ScrollBy(int pixels)
{
    SetScrollPosition(GetScrollPosition() + pixels);
    Layout();
    Redraw();
}

int TTraceGraphs::FindPort(int y) const
{
    for (int port = 0; port < Graphs.size(); ++port)
        if (y >= GetTop(port) && y < GetTop(port) + GraphDistance)
            return port;
    return -1;
}

// The strip of the port that the table shows stands out.
void TTraceGraphs::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    for (int port = 0; port < Graphs.size(); ++port) {
        if (port == Window->GetPort()) {
            context.SetNoPen();
            context.SetBrush(SelectedColour);
            const int top = GetTop(port);
            context.Rectangle(Margin, top, width - Margin, top + TOutputGraph::StripHeight);
        }
        Graphs[port]->DrawKeys(context);
    }
}

bool TTraceGraphs::OnMessage(const TMessage& message)
{
    const int port = FindPort(message.GetPixelY());
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_SIZE:
    case MT_SCROLL:
        Layout();
        Redraw();
        return true;
    case MT_WHEEL:
        ScrollBy(-Wheel.Take(message.Delta));
        return true;
    case MT_LEFTDOWN:
        TakeFocus();
        if (port >= 0)
            Window->SelectPort(port);
        return true;
    case MT_KEYDOWN:
        if (message.Key != KEY_MENU)
            return false;
        Window->OpenMenu(*this, 0, 0);
        return true;
    case MT_RIGHTUP:
        if (port >= 0)
            Window->SelectPort(port);
        Window->OpenMenu(*this, message.GetPixelX(), message.GetPixelY());
        return true;
    default:
        return false;
    }
}

void TTraceGraphs::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code != CC_BUTTON) {
        TWindow::OnCommand(control, argument, code);
        return;
    }
    const int id = static_cast<int>(argument);
    Graphs[id / TOutputGraph::MaxComponents]->OnCheck(id % TOutputGraph::MaxComponents);
}
