#pragma once

#include "library/wimp/controls/comboboxcontrol.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/controls/numberedit.h"
#include "library/wimp/controls/table.h"

class TAttributeTraceWindow;
class TNodeTrace;

// The left pane of a trace window: the entries of one port, the newest on top, below the controls that choose
// the port, the particle and the place.
class TTraceTable : public TWindow
{
public:
    // Both stay the caller's and outlive the table. False if the window system refuses.
    bool Create(TAttributeTraceWindow& window, const TNodeTrace& trace);
    // The ports, places and particles of the trace as they are now. The port that was shown stays, and the
    // widths that its columns were dragged to; the first port, if the node has it no more.
    void Rebuild();
    // The place is another one, and so may be the particle.
    void ShowPlace();
    // The port that is shown; -1 for none.
    int GetPort() const { return Port; }
    void SelectPort(int port);
    int GetColumnWidth(int column) const { return Grid.GetColumnWidth(column); }
    // The values are others, or there are more or fewer of them.
    void RefreshRows();
    void RedrawRows() { Grid.RedrawCells(); }
    // The keys are the rows'.
    void SetFocus() override { Grid.SetFocus(); }

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    enum TControlId
    {
        ID_PORT = 1,
        ID_PARTICLE,
        ID_PLACE
    };

    // The rows of the port that is shown.
    class TRows : public TTableProvider
    {
    public:
        explicit TRows(const TTraceTable& table) : Table(table) {}
        int GetNumRows() const override;
        int GetNumColumns() const override;
        void GetHeader(int column, TString& text) const override;
        void GetLabel(int row, TString& text) const override;
        void GetCell(int row, int column, TString& text) const override;

    private:
        int GetEntry(int row) const { return GetNumRows() - 1 - row; }

        const TTraceTable& Table;
    };

    class TGrid : public TTable
    {
    public:
        explicit TGrid(TTraceTable& table) : Table(table) {}
        void OnContext(int x, int y) override;
        void OnWidth(int column) override { Table.KeepWidth(column); }

    private:
        TTraceTable& Table;
    };

    // The widths that somebody dragged a port's columns to, 0 for those that he did not.
    struct TPortWidths
    {
        TString Port;
        vector<int> Widths;
    };

    bool CreateControls();
    bool MakeControls();
    // The port can be read.
    bool HasPort() const;
    void FillPorts();
    void FillPlaces();
    // The port that bears the name of the one that is shown, or was last; the first one if there is none; -1
    // without ports.
    int FindPort() const;
    TPortWidths* FindWidths();
    void KeepWidth(int column);
    void FitColumns();
    void Layout();

    TAttributeTraceWindow* Window = nullptr;
    const TNodeTrace* Trace = nullptr;
    int Port = -1;
    // It keeps its name while the node is not run.
    TString PortName;
    vector<TPortWidths> Kept;
    int ShownRows = 0;
    TRows Rows{*this};
    TLabel PortLabel;
    TComboBoxControl PortCombo;
    TLabel ParticleLabel;
    TNumberEdit ParticleInput;
    TComboBoxControl PlaceCombo;
    TGrid Grid{*this};
};
