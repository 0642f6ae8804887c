#pragma once

#include "library/wimp/gl/renderobject.h"
#include "library/wimp/window.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class TDocument;
class TDocumentWindows;
class TGraphWindow;
class TParticleRenderWindow;
class TSampleBuilder;

// The size of every picture that is measured.
constexpr int SceneWidth = 1200;
constexpr int SceneHeight = 800;

// The program with its main window, over settings of its own. False with a line on the standard error.
bool StartProgram();
// One idle pass of the program.
void RunIdlePass();

// Turns the loop for what a new or moved window still has to do.
void SettleWindows();
// Gives a window the size at which the child has that of the scenes.
void FitWindow(TWindow& window, const TWindow& child);
TDocumentWindows& GetWindows(const TDocument& document);
// Opens what was built as a user opens a file, and stops its effect; null if that fails.
TDocument* OpenBuilt(TSampleBuilder& effect, const std::string& leaf);
TDocument* OpenFile(const std::string& path);
// The buttons of a preview.
void PressPause(TDocument& document);
void PressPlay(TDocument& document);

// Turns the loop until the window has been painted, by a counter of its paints.
void PaintWindow(TWindow& window, const int& paints);

// Counts how often the graph that it is part of is drawn.
class TPaintCounter : public TRenderObject
{
public:
    void Render(TRenderer&) override { ++Count; }
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2&) override { return nullptr; }

    int Count = 0;
};

// The same for a preview.
class TPreviewCounter : public TNodeDisplay
{
public:
    void Render(const TSceneView&) override { ++Count; }

    int Count = 0;
};

// A document window with a graph of so many nodes, all in a view of the scenes' size.
class TGraphPicture
{
public:
    explicit TGraphPicture(int nodes);
    virtual ~TGraphPicture();
    TGraphPicture(const TGraphPicture&) = delete;
    TGraphPicture& operator=(const TGraphPicture&) = delete;
    bool IsGood() const { return Graph != nullptr; }
    void Show(bool shown);
    // Everything in sight, or the middle at its true size.
    void FrameAll();
    void FrameMiddle();
    // Moves the view and paints the window.
    void PaintPanned();
    // The drawing alone, without what the window system does to bring it to the screen.
    void DrawPanned();
    // Clearing and scaling down, with nothing in the frame.
    void DrawEmpty();

protected:
    TGraphPicture() = default;
    // Opens what was built.
    void Take(TSampleBuilder& effect, const std::string& leaf);
    TDocument& GetDocument() { return *Document; }

private:
    void Pan();

    TDocument* Document = nullptr;
    TDocumentWindows* Windows = nullptr;
    TGraphWindow* Graph = nullptr;
    TPaintCounter Counter;
    int NumPans = 0;
};

// A preview of so many particles in a view of the scenes' size.
class TPreviewPicture
{
public:
    explicit TPreviewPicture(int particles);
    ~TPreviewPicture();
    bool IsGood() const { return Window != nullptr; }
    void Show(bool shown);
    // One step of the effect and its picture.
    void Paint();

private:
    void Fill();
    int CountParticles() const;

    TDocument* Document = nullptr;
    TDocumentWindows* Windows = nullptr;
    TParticleRenderWindow* Window = nullptr;
    TPreviewCounter Counter;
};

// A window that clears itself and, if wanted, draws textured squares of the size that particles have: what
// the same picture costs at least.
class TPlainPicture : public TWindow
{
public:
    explicit TPlainPicture(int quads);
    bool IsGood() const { return Good; }
    void Paint() { PaintWindow(Child, NumPaints); }

private:
    class TChild : public TWindow
    {
    public:
        explicit TChild(TPlainPicture& picture) : Picture(picture) {}
        bool OnMessage(const TMessage& message) override;

    private:
        TPlainPicture& Picture;
    };
    struct TVertex
    {
        float Point[2];
        float TexCoord[2];
        float Colour[4];
    };

    void Draw();
    void MakeTexture();
    void FillVertices();

    TChild Child{*this};
    std::vector<TVertex> Vertices;
    unsigned Texture = 0;
    int NumPaints = 0;
    bool Good = false;
};
