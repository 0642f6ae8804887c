#pragma once

#include "bench/windowscenes.h"

#include <string>
#include <vector>

class TControlDrag;
class TDocWindow;
class TNodeObj;
class TNumberParameterControls;
class TToolNode;

// The node types with controls, those with the largest open panels first.
const std::vector<std::string>& GetTypesByPanel();

// A document in whose view a node is opened for the first time: one of the type with the largest panel.
class TOpeningPicture
{
public:
    explicit TOpeningPicture(int);
    ~TOpeningPicture();
    bool IsGood() const { return Graph != nullptr; }
    void Show(bool shown);
    // A new closed node in the place of the one before, painted.
    void AddNode();
    // Presses its button and paints what comes of it.
    void Open();

private:
    TDocument* Document = nullptr;
    TDocumentWindows* Windows = nullptr;
    TGraphWindow* Graph = nullptr;
    TToolNode* Node = nullptr;
    TPaintCounter Counter;
};

// So many open nodes, each of another type as far as there are such, all in a view of the scenes' size.
class TPanelsPicture : public TGraphPicture
{
public:
    explicit TPanelsPicture(int nodes);
};

// The campfire running in its preview, and a number of an open panel that is being dragged.
class TDragPicture
{
public:
    explicit TDragPicture(int);
    ~TDragPicture();
    bool IsGood() const { return Numbers != nullptr; }
    void Show(bool shown);
    // One step of the drag, an idle pass, and both windows painted.
    void Step();

private:
    void FindNumber();
    void BeginDrag();

    TDocument* Document = nullptr;
    TDocumentWindows* Windows = nullptr;
    TGraphWindow* Graph = nullptr;
    TParticleRenderWindow* Preview = nullptr;
    TNumberParameterControls* Numbers = nullptr;
    TPaintCounter Counter;
    TPreviewCounter PreviewCounter;
    int NumSteps = 0;
};
