#pragma once

#include "library/wimp/controls/splitwindow.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/trace/nodetrace.h"
#include "particles/cindermill/interface/trace/tracegraphs.h"
#include "particles/cindermill/interface/trace/traceplace.h"
#include "particles/cindermill/interface/trace/tracetable.h"

// A window that shows the values which one node's output ports took, frame by frame, for one particle: as a
// table of numbers and as graphs. All such windows of the program stand in one list, which owns them; a
// window goes when it is closed, when its node leaves the graph, with its document, and with the program.
class TAttributeTraceWindow : public TWindow
{
public:
    ~TAttributeTraceWindow() override;

    // Opens a node's window, or brings the one that it has to the front. The document and the node stay the
    // caller's; CloseAll and Close are to be called before they go. Asserts
    // "0 : Failed to create attrib trace window". A new one stays in front of the main window, if one is
    // given, as long as that leaves the graph in sight. The only one comes where the last one stood, and each
    // tells that when it goes; the text must stay as long.
    static bool Open(TDocument& document, TToolNode& node, TWindow* main = nullptr,
                     const TWindow* graph = nullptr, TString* place = nullptr);
    // The node's window; null for none.
    static TAttributeTraceWindow* Find(const TToolNode& node);
    static int GetNumWindows(const TDocument& document);
    // The program ends, while the window system is still there.
    static void CloseAll();
    // The document goes, or the node leaves its graph.
    static void CloseAll(const TDocument& document);
    static void Close(const TToolNode& node);

    // The document's engine goes. Nothing but memory is touched: a window may be being painted.
    static void EngineGoes(const TDocument& document);
    // The schedule was built anew. A window whose engine has run on keeps what it shows.
    static void ScheduleChanged(const TDocument& document);
    // After a step of the engine: what the nodes have written since the last one is drawn.
    static void Repaint(const TDocument& document);
    // Whose shortcuts work in the document's windows too.
    static void SetKeyOwners(const TDocument& document, TWindow* window);

    // Finds the node in the engine and makes the panes anew.
    void Rebuild();
    void SelectPlace(int place);
    void SelectParticle(int particle);
    // The one that the table shows.
    void SelectPort(int port);
    int GetPort() const { return Table.GetPort(); }
    int GetColumnWidth(int column) const { return Table.GetColumnWidth(column); }
    const TNodeTrace& GetTrace() const { return Trace; }
    const TTraceGraphs& GetGraphs() const { return Graphs; }
    // The table's text, as it goes to the clipboard; empty without a port.
    void GetText(TString& text) const;
    void OpenMenu(TWindow& window, int x, int y);

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    TAttributeTraceWindow(TDocument& document, TToolNode& node);
    static TTracePlace FindPlace(const TWindow* main, const TWindow* graph);
    void Create(const TWindowArea& place);
    void ShowTitle();
    void RepaintTouched();
    bool CopyTable();

    TNodeTrace Trace;
    TTraceTable Table;
    TTraceGraphs Graphs;
    TSplitWindow Split;
    TKeyboardShortcut Shortcuts;
    // Null where nobody wants it.
    TString* LastPlace = nullptr;
    // The panes are being made anew: what their controls report is no choice of a person's.
    bool Rebuilding = false;
    // The engine has gone since the panes were made.
    bool IsStale = false;
};
