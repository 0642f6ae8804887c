#pragma once

#include "library/containers/ownerlist.h"
#include "library/containers/vector.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/particles/particlewindow.h"
#include "particles/cindermill/main/documenthost.h"

class TDocWindow;
class TGraphWindow;
class TWindowPlaces;

// The windows of one document: its views, its particle window, and the drawing of its graph, which all views
// share. Speaks for them to the document, and to the render objects of the graph for the view that they are
// used in.
class TDocumentWindows : public TDocumentHost, public TGraphSceneHost, public TParticleWindowHost
{
public:
    // The owner of document windows: the main window, with a client area for them. Who keeps their places
    // stays the caller's.
    explicit TDocumentWindows(TWindow* frame, TWindowPlaces* places = nullptr);
    ~TDocumentWindows() override;

    // The document's.
    bool CreateParticleWindow(TDocument& document) override;
    void ShowParticleWindow(TDocument& document) override;
    bool CreateView(TDocument& document) override;
    bool NewView(TDocument& document) override;
    void DeleteWindows(TDocument& document) override;
    void OnIdle(TDocument& document) override;
    void OnWait(TDocument& document) override;
    bool OwnsWindow(TWindow* window) override;
    void OnDrop(TDocument& document, TWindow* window, int x, int y, const char* path) override;
    void FrameAllNodes(TDocument& document) override;
    void BringIntoSight(TDocument& document, const vector<TToolNode*>& nodes) override;
    void UpdateTitles(TDocument& document) override;
    void RedrawWindows(TDocument& document) override;
    void ScheduleChanged(TDocument& document) override;
    void EngineGoes(TDocument& document) override;
    void ProblemsChanged(TDocument& document) override;
    void AgreementChanged(TDocument& document) override;
    void NodeTypesGo(TDocument& document) override;
    void NodeTypesCame(TDocument& document) override;

    // The graph's render objects'.
    void RedrawGraphs() override;
    void EdgeScroll(TRenderer& renderer, double x, double y) override;
    void NodeOpened(const TRenderer& renderer, const TNodeObj& node) override;
    void PortMarked(const TRenderer& renderer, const TPort& port) override;
    void BeginDrag(TRenderer& renderer, TMouseDrag& drag) override;
    void EndDrag(TRenderer& renderer) override;
    void ShowHelp(const char* text, const TVector2& point) override;
    void ShowPointer(TRenderObject& object, TPointerShape shape) override;
    TRenderer* GetView() override;
    void SearchForWire(TRenderer& renderer, const TVector2& point, const TWireEnd& end) override;
    float GetClearPart(const TRenderer& renderer) override;
    void TellStatus(const char* text) override;
    void NodeLeft(TToolNode& node) override;

    // In the view that was used last.
    void FrameGroup(TDocument& document, int group) override;

    // A view's close box. The last view closes the document, if the user agrees; neither the window nor these
    // windows may be touched afterwards.
    void CloseView(TDocWindow* window);
    // The attribute trace of a node, asked for in a view.
    void OpenTrace(TToolNode& node, TDocWindow& view);
    // Where the first two views and the display stand, for the next time that the file is opened.
    void KeepPlaces(TDocument& document);
    // The view was used last: it gets the shortcuts that are pressed in the effect's display and in traces.
    void CollectShortcuts(TDocWindow& window);

    // In the view that was used last.
    void ShowNode(TToolNode& node);

    // What of a view, from its left edge on, the display in front of it leaves in sight.
    int GetClearWidth(const TGraphWindow& graph) const;
    // The preview draws a group alone, or all again; -1 for all.
    void ShowGroupAlone(int group);

    TDocument& GetDocument() const { return *Document; }
    TGraphScene& GetScene() const { return *Scene; }
    TParticleWindow* GetParticleWindow() const { return ParticleWindow.Get(); }
    int GetNumWindows() const { return Windows.size(); }
    // 0 is the primary view.
    TDocWindow* GetWindow(int i) const { return Windows[i]; }

private:
    bool AddView(TDocument& document);
    void RefreshStrips();
    void PlaceWindows(TDocument& document);
    void BeginInGraph();
    void PlaceDisplay();
    TDocWindow& GetActiveView() const;
    bool IsGraphInSight() const;
    TDocumentWindows* FindOther(int& i) const;
    bool IsNumberTaken(int number) const;
    bool HasNamesake() const;
    void FindNumber();
    void ShowDisplayTitle();
    void DropOtherNumbers();
    TGraphWindow* FindGraph(const TRenderer& renderer) const;

    TWindow* Frame;
    // Where windows stood; null where nobody keeps it.
    TWindowPlaces* Places;
    bool ArePlaced = false;
    // Where the next view beside the only one comes; empty for its place in the cascade.
    TString SecondPlace;
    TDocument* Document = nullptr;
    TOwner<TGraphScene> Scene;
    TOwnerList<TDocWindow> Windows;
    TOwner<TParticleWindow> ParticleWindow;
    // The particle window's, without its number.
    TString DisplayTitle;
    // From 2 on it is shown: another document's display had the title already.
    int DisplayNumber = 1;
};
