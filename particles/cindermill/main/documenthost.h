#pragma once

#include "library/containers/vector.h"

class TDocument;
class TWindow;

// The windows of a document, as far as the document speaks to them. Without a host a document has none: a
// batch run.
class TDocumentHost
{
public:
    virtual ~TDocumentHost() = default;
    virtual bool CreateParticleWindow(TDocument& document) = 0;
    virtual void ShowParticleWindow(TDocument& document) = 0;
    // The document's first view, which becomes the application's active one.
    virtual bool CreateView(TDocument& document) = 0;
    // A further view.
    virtual bool NewView(TDocument& document) = 0;
    // The document is being deleted: traces, views and the particle window go, in this order. Also after a
    // New or Load that failed halfway.
    virtual void DeleteWindows(TDocument& document) = 0;
    // The document's idle pass: ticks of the drawing, the views' animations, the preview's tick.
    virtual void OnIdle(TDocument& document) = 0;
    // The same while a dialog or a menu waits: the preview alone.
    virtual void OnWait(TDocument& document) { (void)document; }
    // Whether the window is one of the document's frames, palettes, headers or graph views.
    virtual bool OwnsWindow(TWindow* window) = 0;
    // A file dropped at a position of the screen onto a window that is the document's: graph views take it.
    virtual void OnDrop(TDocument& document, TWindow* window, int x, int y, const char* path) = 0;
    virtual void FrameAllNodes(TDocument& document) = 0;
    // A view moves, its zoom kept, if nothing of the nodes is in sight.
    virtual void BringIntoSight(TDocument& document, const vector<TToolNode*>& nodes) = 0;
    virtual void UpdateTitles(TDocument& document) = 0;
    virtual void RedrawWindows(TDocument& document) = 0;
    // The schedule was built anew or has gone, or an engine has come: traces and group tabs follow.
    virtual void ScheduleChanged(TDocument& document) = 0;
    // What keeps the effect from running is something else now.
    virtual void ProblemsChanged(TDocument& document) { (void)document; }
    // What is known of how preview and export agree is something else now.
    virtual void AgreementChanged(TDocument& document) { (void)document; }
    // The engine is about to be deleted: who holds nodes or traces of it lets go of them now. May come while
    // a window is painted.
    virtual void EngineGoes(TDocument& document) = 0;
    // The types of the library are about to be deleted: who shows them or drags one lets go of them now. Then
    // there are new ones.
    virtual void NodeTypesGo(TDocument& document) { (void)document; }
    virtual void NodeTypesCame(TDocument& document) { (void)document; }
};
