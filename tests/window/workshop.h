#pragma once

#include "support/fakehost.h"
#include "support/testapp.h"
#include "window/program.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/palette.h"

// Does each thing twice: on the screen, with mouse and keys in the program's first document, and by the
// operation that it stands for in a document without windows. What is where on the screen is read off the
// second one.
class TWorkshop
{
public:
    TWorkshop(TScreen& screen, TProgram& program);
    ~TWorkshop();

    // Finds the graph of the empty document that the program shows. False if there is none.
    bool FindGraph();
    // Folds the categories that are not needed, so that all others stand in the palette without scrolling.
    void FoldPalette(const std::vector<std::string>& categories);

    // Chooses a type in the search at the pointer, by some letters that find it.
    TToolNode* Search(const char* letters, const char* type, int x, int y);
    // Drags a type out of the palette to a place of the graph.
    TToolNode* Add(const char* type, int x, int y);
    void Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input);
    // Drags the end of an edge at an input to nowhere.
    void Disconnect(TToolNode* destination, const char* input);
    void MoveSelection(TToolNode* grabbed, int dx, int dy);
    void Select(TToolNode* node);
    // A box round the nodes and nothing else.
    void SelectBox(const std::vector<TToolNode*>& nodes);
    void Bypass(TToolNode* node);
    // By the Node Properties dialog, which Return closes; a render stage has a priority too, -1 to leave it.
    void Rename(TToolNode* node, const char* name, int priority = -1);
    void Copy();
    void Paste();
    void Cut();
    void Delete();
    void Undo();
    void Redo();

    // A place of the graph, on the screen.
    int ScreenX(double x) const { return Graph.X + static_cast<int>(x * Program.GetScale()); }
    int ScreenY(double y) const { return Graph.Y + static_cast<int>(y * Program.GetScale()); }
    const TRectangle& GetGraph() const { return Graph; }
    TRectangle GetPalette() const;
    TCindermillApp& GetApp() { return App.Get(); }
    TDocument& GetDocument() { return *Document; }
    void SetGraph(const TRectangle& graph) { Graph = graph; }
    // An effect of one stage that draws sprites with a texture of the samples.
    void WriteStageFile(const std::string& path, int x, int y);
    // The part of the second document in copying all nodes of a file.
    void CopyFrom(const std::string& path);
    // The newest node of the document.
    TToolNode* GetLast() const;

private:
    int FindPaletteRow(const char* name, bool category) const;
    void PortPosition(const TToolNode* node, bool isInput, int index, int& x, int& y) const;
    void TitlePosition(const TToolNode* node, int& x, int& y) const;

    TScreen& Screen;
    TProgram& Program;
    TQuiet Quiet;
    TTestApp App;
    TFakeHost* Host;
    std::unique_ptr<TDocument> Document;
    TPalette Palette;
    TRectangle Graph;
};
