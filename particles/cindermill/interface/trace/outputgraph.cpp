#include "particles/cindermill/interface/trace/outputgraph.h"

#include "library/containers/assertion.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/cindermill/interface/trace/nodetrace.h"

#include <cmath>

namespace {

constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour Black = 0x000000;
constexpr TGDIColour LineColour = 0xE0E0E0;
constexpr TGDIColour ValueColour = 0x808080;
constexpr TGDIColour PointerColour = 0xB0B0B0;
constexpr TGDIColour TextColour = 0x202020;
constexpr TGDIColour ReadoutPaper = 0xFFFFF2;
constexpr TGDIColour ComponentColours[TOutputGraph::MaxComponents] = {0x800000, 0x008000, 0x000080, 0x800080,
                                                                      0x008080, 0x808000, 0x808080};
// Between a level line's value and the plot.
constexpr int ValueGap = 4;
constexpr int ReadoutLine = 15;
constexpr int ReadoutMargin = 5;
constexpr int ReadoutDistance = 12;
constexpr int MarkSize = 2;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_attribtracetable_graph", 0, ButtonColour);
    return windowClass;
}

} // namespace

void TOutputGraph::Create(TAttributeTraceWindow& window, TWindow& pane, const TNodeTrace& trace, int port,
                          int firstId)
{
    Window = &window;
    Pane = &pane;
    Trace = &trace;
    Port = port;
    NumComponents = trace.GetNumComponents(port);
    Mask = (1u << NumComponents) - 1;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &pane;
    ASSERT_TEXT(TWindow::Create(params) && CreateControls(firstId), "0 : Failed to graph window");
}

bool TOutputGraph::CreateControls(int firstId)
{
    TString name;
    name.Format("name%d", Port);
    bool created = Name.Create(Pane, Trace->GetPortName(Port).Print(), name.Print());
    for (int c = 0; created && c < NumComponents; ++c) {
        name.Format("check%d_%d", Port, c);
        created = Checks[c].Create(Pane, firstId + c, Trace->GetLabel(Port, c), name.Print());
        Checks[c].SetCheck(true);
        Checks[c].SetSpokenName(
            TempFormat("%s %s", Trace->GetPortName(Port).Print(), Trace->GetLabel(Port, c)));
    }
    return created;
}

// In a narrow pane the boxes move over the room of the name.
int TOutputGraph::GetBoxesLeft(int width) const
{
    const int free = width - NumComponents * BoxDistance;
    if (free < 0)
        return 0;
    return free < BoxLeft ? free : BoxLeft;
}

void TOutputGraph::Place(int x, int y, int width)
{
    StripX = x;
    StripY = y;
    StripWidth = width;
    constexpr int gap = 4;
    const int boxes = GetBoxesLeft(width);
    Name.MoveTo(x + gap, y + 2, boxes > gap ? boxes - gap : 0, BoxHeight);
    for (int c = 0; c < NumComponents; ++c)
        Checks[c].MoveTo(x + boxes + c * BoxDistance, y + 2, BoxWidth, BoxHeight);
    MoveTo(x, y + StripHeight, width, Height);
}

void TOutputGraph::DrawKeys(TGDIContext& context) const
{
    constexpr int keyHeight = 2;
    context.SetNoPen();
    const int left = StripX + GetBoxesLeft(StripWidth);
    const int top = StripY + StripHeight - keyHeight - 1;
    for (int c = 0; c < NumComponents; ++c) {
        if (!IsDrawn(c))
            continue;
        context.SetBrush(ComponentColours[c]);
        context.Rectangle(left + c * BoxDistance, top, left + c * BoxDistance + KeyWidth, top + keyHeight);
    }
}

void TOutputGraph::OnCheck(int component)
{
    const uint32_t bit = 1u << component;
    Mask = Checks[component].GetCheck() ? Mask | bit : Mask & ~bit;
    Redraw();
    Pane->Redraw();
}

void TOutputGraph::ShowPointer(bool isInside, int x, int y)
{
    HasPointer = isInside;
    PointerX = x;
    PointerY = y;
    Redraw();
}

bool TOutputGraph::OnMessage(const TMessage& message)
{
    const int x = message.GetPixelX();
    const int y = message.GetPixelY();
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_MOUSEMOVE:
        ShowPointer(true, x, y);
        return true;
    case MT_MOUSELEAVE:
        ShowPointer(false, x, y);
        return true;
    case MT_LEFTDOWN:
        TakeFocus();
        Window->SelectPort(Port);
        return true;
    case MT_KEYDOWN:
        if (message.Key != KEY_MENU)
            return false;
        Window->OpenMenu(*this, 0, 0);
        return true;
    case MT_RIGHTUP:
        Window->SelectPort(Port);
        Window->OpenMenu(*this, x, y);
        return true;
    default:
        return false;
    }
}

TTracePlot TOutputGraph::GetPlot() const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    return TTracePlot(width, height);
}

int TOutputGraph::GetNumEntries() const
{
    return Port < Trace->GetNumPorts() ? Trace->GetNumEntries(Port) : 0;
}

int TOutputGraph::GetPointedEntry() const
{
    TTracePlot plot = GetPlot();
    const int entries = GetNumEntries();
    if (!HasPointer || entries == 0 || PointerX < plot.GetLeft() || PointerX >= plot.GetRight())
        return -1;
    plot.SetValues(entries, 0, 0);
    return plot.GetEntry(PointerX);
}

void TOutputGraph::Paint(TGDIContext& context) const
{
    TTracePlot plot = GetPlot();
    if (plot.IsEmpty())
        return;
    DrawFrame(context, plot);
    const int entries = GetNumEntries();
    if (entries == 0 || Mask == 0)
        return;
    float min = 0;
    float max = 0;
    Trace->GetRange(Port, min, max, Mask);
    const int pointed = GetPointedEntry();
    if (plot.SetValues(entries, min, max))
        DrawValues(context, plot, pointed);
    if (pointed >= 0)
        DrawReadout(context, plot, pointed);
}

void TOutputGraph::DrawValues(TGDIContext& context, const TTracePlot& plot, int pointed) const
{
    DrawLines(context, plot);
    // All inside the frame: the smallest value lies on the plot's edge.
    context.SetClip(plot.GetLeft(), plot.GetTop() - 1, plot.GetRight(), plot.GetBottom() + 1);
    if (pointed >= 0) {
        const int x = static_cast<int>(plot.GetX(pointed));
        context.SetPen(PointerColour);
        context.Line(x, plot.GetTop(), x, plot.GetBottom());
    }
    for (int c = 0; c < NumComponents; ++c)
        if (IsDrawn(c))
            DrawCurve(context, plot, c);
    if (pointed >= 0)
        DrawMarks(context, plot, pointed);
    context.ClearClip();
}

void TOutputGraph::DrawFrame(TGDIContext& context, const TTracePlot& plot) const
{
    context.SetPen(Black);
    context.SetBrush(White);
    context.Rectangle(plot.GetLeft() - 1, plot.GetTop() - 2, plot.GetRight() + 1, plot.GetBottom() + 2);
}

void TOutputGraph::DrawLines(TGDIContext& context, const TTracePlot& plot) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    vector<TTracePlot::TLine> lines;
    plot.GetLines(lines);
    context.SetPen(LineColour);
    context.SetTextColour(ValueColour);
    for (const TTracePlot::TLine& line : lines) {
        if (line.Y >= plot.GetTop() && line.Y <= plot.GetBottom())
            context.Line(plot.GetLeft(), line.Y, plot.GetRight(), line.Y);
        TString text;
        text.Format("%.2f", line.Value);
        int textWidth = 0;
        int textHeight = 0;
        context.GetTextExtent(text.Print(), textWidth, textHeight);
        context.SetClip(0, 0, plot.GetLeft() - 1, height);
        context.TextOut(plot.GetLeft() - ValueGap - textWidth, line.Y - textHeight / 2, text.Print());
        context.ClearClip();
    }
}

void TOutputGraph::DrawCurve(TGDIContext& context, const TTracePlot& plot, int component) const
{
    const int entries = Trace->GetNumEntries(Port);
    vector<TGDIPoint> points;
    points.reserve(entries);
    for (int e = 0; e < entries; ++e) {
        const float value = Trace->GetEntry(Port, e, component);
        if (std::isfinite(value))
            points.push_back(TGDIPoint{plot.GetX(e), plot.GetY(static_cast<double>(value))});
    }
    context.SetPen(ComponentColours[component]);
    context.Polyline(points);
}

void TOutputGraph::DrawMarks(TGDIContext& context, const TTracePlot& plot, int entry) const
{
    const int x = static_cast<int>(plot.GetX(entry));
    for (int c = 0; c < NumComponents; ++c) {
        const float value = Trace->GetEntry(Port, entry, c);
        if (!IsDrawn(c) || !std::isfinite(value))
            continue;
        const int y = static_cast<int>(plot.GetY(static_cast<double>(value)));
        context.SetNoPen();
        context.SetBrush(ComponentColours[c]);
        context.Rectangle(x - MarkSize, y - MarkSize, x + MarkSize + 1, y + MarkSize + 1);
    }
}

void TOutputGraph::FillReadout(TReadout& readout, int entry) const
{
    readout.Count = 1;
    readout.Lines[0].Format("Entry %d", entry);
    readout.Colours[0] = TextColour;
    for (int c = 0; c < NumComponents; ++c) {
        if (!IsDrawn(c))
            continue;
        TString value;
        TNodeTrace::FormatValue(value, Trace->GetEntry(Port, entry, c));
        readout.Lines[readout.Count].Format("%s  %s", Trace->GetLabel(Port, c), value.Print());
        readout.Colours[readout.Count++] = ComponentColours[c];
    }
}

// Beside the pointer, on the side that has more room.
void TOutputGraph::DrawReadout(TGDIContext& context, const TTracePlot& plot, int entry) const
{
    TReadout readout;
    FillReadout(readout, entry);
    int width = 0;
    for (int i = 0; i < readout.Count; ++i) {
        int textWidth = 0;
        int textHeight = 0;
        context.GetTextExtent(readout.Lines[i].Print(), textWidth, textHeight);
        width = textWidth > width ? textWidth : width;
    }
    width += 2 * ReadoutMargin;
    const int height = readout.Count * ReadoutLine + ReadoutMargin;
    const bool isLeft = PointerX - plot.GetLeft() > plot.GetRight() - PointerX;
    const int left = isLeft ? PointerX - ReadoutDistance - width : PointerX + ReadoutDistance;
    int top = PointerY - height / 2;
    top = top + height > plot.GetBottom() ? plot.GetBottom() - height : top;
    top = top < plot.GetTop() ? plot.GetTop() : top;
    context.SetPen(ValueColour);
    context.SetBrush(ReadoutPaper);
    context.Rectangle(left, top, left + width, top + height);
    for (int i = 0; i < readout.Count; ++i) {
        context.SetTextColour(readout.Colours[i]);
        context.TextOut(left + ReadoutMargin, top + 2 + i * ReadoutLine, readout.Lines[i].Print());
    }
}
