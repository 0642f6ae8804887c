#pragma once

#include "library/containers/string.h"
#include "library/wimp/controls/checkbox.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/trace/traceplot.h"

class TAttributeTraceWindow;
class TNodeTrace;

// The graph of one output port: a line for each component over the entries of the chosen particle, and over
// the graph a strip with the port's name and a check box for each component. Shows the entry and the values
// under the pointer.
class TOutputGraph : public TWindow
{
public:
    static constexpr int StripHeight = 25;
    static constexpr int Height = 200;
    static constexpr int MaxComponents = 7;

    // The trace and the window stay the caller's and outlive the graph. The pane holds the graph, its name
    // and its check boxes, and is told by the boxes, whose ids are from `firstId` on. Asserts
    // "0 : Failed to graph window".
    void Create(TAttributeTraceWindow& window, TWindow& pane, const TNodeTrace& trace, int port, int firstId);
    // The top left of the strip.
    void Place(int x, int y, int width);
    int GetPort() const { return Port; }
    // The components that are drawn, one bit for each.
    uint32_t GetMask() const { return Mask; }
    // The entry that the pointer is at; -1 for none.
    int GetPointedEntry() const;
    // Takes over what the box of the component says.
    void OnCheck(int component);
    // In the component's colour, under its check box. For the pane's painting.
    void DrawKeys(TGDIContext& context) const;

    bool OnMessage(const TMessage& message) override;

private:
    static constexpr int BoxDistance = 40;
    static constexpr int BoxLeft = 200;
    static constexpr int BoxWidth = 40;
    static constexpr int KeyWidth = 34;
    static constexpr int BoxHeight = 18;

    // What is told of the entry under the pointer.
    struct TReadout
    {
        TString Lines[MaxComponents + 1];
        TGDIColour Colours[MaxComponents + 1] = {};
        int Count = 0;
    };

    bool CreateControls(int firstId);
    int GetBoxesLeft(int width) const;
    bool IsDrawn(int component) const { return (Mask >> component & 1) != 0; }
    TTracePlot GetPlot() const;
    int GetNumEntries() const;
    void ShowPointer(bool isInside, int x, int y);
    void Paint(TGDIContext& context) const;
    void DrawFrame(TGDIContext& context, const TTracePlot& plot) const;
    // With the pointed entry, if that is not -1, marked.
    void DrawValues(TGDIContext& context, const TTracePlot& plot, int pointed) const;
    void DrawLines(TGDIContext& context, const TTracePlot& plot) const;
    void DrawCurve(TGDIContext& context, const TTracePlot& plot, int component) const;
    void DrawMarks(TGDIContext& context, const TTracePlot& plot, int entry) const;
    void FillReadout(TReadout& readout, int entry) const;
    void DrawReadout(TGDIContext& context, const TTracePlot& plot, int entry) const;

    TAttributeTraceWindow* Window = nullptr;
    const TNodeTrace* Trace = nullptr;
    TWindow* Pane = nullptr;
    int Port = 0;
    uint32_t Mask = 0;
    int NumComponents = 0;
    TLabel Name;
    TCheckBox Checks[MaxComponents];
    // Of the strip, in the pane.
    int StripX = 0;
    int StripY = 0;
    int StripWidth = 0;
    bool HasPointer = false;
    int PointerX = 0;
    int PointerY = 0;
};
