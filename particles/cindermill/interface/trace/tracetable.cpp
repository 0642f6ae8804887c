#include "particles/cindermill/interface/trace/tracetable.h"

#include "library/containers/append.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/cindermill/interface/trace/nodetrace.h"

namespace {

// Room for all columns of up to three components, and for more of them as long as their numbers can be read.
constexpr int ColumnsWidth = 240;
constexpr int WidestColumn = 80;
constexpr int NarrowestColumn = 60;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_attribtracetable_trace", 0, ButtonColour);
    return windowClass;
}

} // namespace

int TTraceTable::TRows::GetNumRows() const
{
    return Table.HasPort() ? Table.Trace->GetNumEntries(Table.Port) : 0;
}

int TTraceTable::TRows::GetNumColumns() const
{
    return Table.HasPort() ? Table.Trace->GetNumComponents(Table.Port) : 0;
}

void TTraceTable::TRows::GetHeader(int column, TString& text) const
{
    text = Table.HasPort() ? Table.Trace->GetLabel(Table.Port, column) : nullptr;
}

void TTraceTable::TRows::GetLabel(int row, TString& text) const
{
    text.Format("%d", GetEntry(row));
}

void TTraceTable::TRows::GetCell(int row, int column, TString& text) const
{
    TNodeTrace::FormatValue(text, Table.Trace->GetEntry(Table.Port, GetEntry(row), column));
}

void TTraceTable::TGrid::OnContext(int x, int y)
{
    Table.Window->OpenMenu(*this, x, y);
}

bool TTraceTable::Create(TAttributeTraceWindow& window, const TNodeTrace& trace)
{
    Window = &window;
    Trace = &trace;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &window;
    if (!TWindow::Create(params) || !CreateControls())
        return false;
    Grid.Create(this, Rows, TTable::FL_RESIZABLEHEADERS);
    Grid.SetTableName("Values, the newest first");
    Layout();
    return true;
}

bool TTraceTable::CreateControls()
{
    if (!MakeControls())
        return false;
    PortLabel.Names(PortCombo);
    ParticleLabel.Names(ParticleInput);
    PlaceCombo.SetSpokenName("Group");
    return true;
}

bool TTraceTable::MakeControls()
{
    return PortLabel.Create(this, "Port:", "portlabel") && PortCombo.Create(this, ID_PORT, "port") &&
           ParticleLabel.Create(this, "Particle:", "particlelabel") &&
           ParticleInput.Create(this, ID_PARTICLE, "particle") && PlaceCombo.Create(this, ID_PLACE, "place");
}

bool TTraceTable::HasPort() const
{
    return Port >= 0 && Port < Trace->GetNumPorts();
}

void TTraceTable::Layout()
{
    if (Grid.GetHandle() == nullptr)
        return;
    constexpr int margin = 5;
    constexpr int rowHeight = 24;
    constexpr int rowDistance = rowHeight + 4;
    constexpr int labelWidth = 58;
    constexpr int particleWidth = 90;
    constexpr int controlsHeight = margin + 2 * rowDistance;
    constexpr int inputLeft = margin + labelWidth;
    constexpr int placeLeft = inputLeft + particleWidth + margin;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const auto rest = [width](int left) { return width > left + margin ? width - left - margin : 0; };
    PortLabel.MoveTo(margin, margin, labelWidth, rowHeight);
    PortCombo.MoveTo(inputLeft, margin, rest(inputLeft), rowHeight);
    ParticleLabel.MoveTo(margin, margin + rowDistance, labelWidth, rowHeight);
    ParticleInput.MoveTo(inputLeft, margin + rowDistance, particleWidth, rowHeight);
    PlaceCombo.MoveTo(placeLeft, margin + rowDistance, rest(placeLeft), rowHeight);
    Grid.MoveTo(0, controlsHeight, width, height > controlsHeight ? height - controlsHeight : 0);
}

void TTraceTable::FillPorts()
{
    PortCombo.Clear();
    for (int port = 0; port < Trace->GetNumPorts(); ++port)
        PortCombo.AddString(Trace->GetPortName(port).Print());
    PortCombo.Enable(Trace->GetNumPorts() > 0);
}

void TTraceTable::FillPlaces()
{
    PlaceCombo.Clear();
    for (int place = 0; place < Trace->GetNumPlaces(); ++place) {
        TString text;
        text.Format("Group %d", Trace->GetPlaceGroup(place));
        PlaceCombo.AddString(text.Print());
    }
    PlaceCombo.Show(Trace->GetNumPlaces() > 1);
}

void TTraceTable::Rebuild()
{
    FillPorts();
    FillPlaces();
    ShowPlace();
    SelectPort(FindPort());
}

// A node's ports may have one name: then it is the one that was shown.
int TTraceTable::FindPort() const
{
    const int ports = Trace->GetNumPorts();
    const auto isNamed = [this](int port) { return Trace->GetPortName(port).Compare(PortName) == 0; };
    if (HasPort() && isNamed(Port))
        return Port;
    for (int port = 0; port < ports; ++port)
        if (isNamed(port))
            return port;
    return ports > 0 ? 0 : -1;
}

void TTraceTable::ShowPlace()
{
    if (Trace->GetNumPlaces() > 0)
        PlaceCombo.SetSelection(Trace->GetPlace());
    ParticleInput.SetRange(0, static_cast<float>(Trace->GetLastParticle()));
    ParticleInput.SetValue(static_cast<float>(Trace->GetParticle()));
    ParticleInput.Enable(Trace->IsConnected());
    RefreshRows();
}

void TTraceTable::SelectPort(int port)
{
    Port = port;
    if (HasPort()) {
        PortName = Trace->GetPortName(port);
        PortCombo.SetSelection(port);
    }
    Grid.Refresh();
    FitColumns();
    RefreshRows();
}

TTraceTable::TPortWidths* TTraceTable::FindWidths()
{
    for (TPortWidths& kept : Kept)
        if (kept.Port.Compare(PortName) == 0)
            return &kept;
    return nullptr;
}

void TTraceTable::KeepWidth(int column)
{
    if (FindWidths() == nullptr)
        Append(Kept, TPortWidths{PortName, {}});
    vector<int>& widths = FindWidths()->Widths;
    while (widths.size() <= column)
        Append(widths, 0);
    widths[column] = Grid.GetColumnWidth(column);
}

void TTraceTable::FitColumns()
{
    const int columns = Rows.GetNumColumns();
    const TPortWidths* kept = FindWidths();
    for (int i = 0; i < columns; ++i) {
        const int share = ColumnsWidth / columns;
        const int fitting = share > WidestColumn      ? WidestColumn
                            : share < NarrowestColumn ? NarrowestColumn
                                                      : share;
        const bool isKept = kept != nullptr && i < kept->Widths.size() && kept->Widths[i] != 0;
        Grid.SetColumnWidth(i, isKept ? kept->Widths[i] : fitting);
    }
}

void TTraceTable::RefreshRows()
{
    const int rows = Rows.GetNumRows();
    if (rows != ShownRows)
        Grid.Refresh();
    else
        Grid.RedrawCells();
    ShownRows = rows;
}

bool TTraceTable::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_SIZE:
        Layout();
        return true;
    case MT_KEYDOWN:
        // What was typed is entered: the keys are the rows' again.
        if (message.Key != KEY_RETURN)
            return false;
        SetFocus();
        return true;
    default:
        return false;
    }
}

void TTraceTable::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    // While the engine is being made anew there is nothing to choose from.
    if ((code != CC_SELECTION && code != CC_EDITED) || !Trace->IsConnected()) {
        TWindow::OnCommand(control, argument, code);
        return;
    }
    switch (argument) {
    case ID_PORT:
        Window->SelectPort(PortCombo.GetSelection());
        break;
    case ID_PARTICLE:
        Window->SelectParticle(static_cast<int>(ParticleInput.GetValue()));
        break;
    case ID_PLACE:
        Window->SelectPlace(PlaceCombo.GetSelection());
        break;
    default:
        break;
    }
}
