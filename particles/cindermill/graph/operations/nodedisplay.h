#pragma once

#include "library/containers/classregistry.h"

class TEffectNode;
class TSceneView;

// What the preview draws for a node that has a position in space. The class is named by the node's type.
class TNodeDisplay : public TRegistered<TNodeDisplay>
{
public:
    static constexpr const char* RegisteredName = "TNodeDisplay";
    virtual ~TNodeDisplay() = default;

    virtual void Init(TEffectNode* node) { Node = node; }
    // Between the frames: the time to read files, which may ask or tell the user something. True if what is
    // drawn has changed by that.
    virtual bool Tick() { return false; }
    // With the preview's line program bound.
    virtual void Render(const TSceneView& view) { (void)view; }
    void SetSelected(bool selected) { Selected = selected; }
    bool IsSelected() const { return Selected; }

protected:
    // Only of a class that shows something.
    TNodeDisplay() = default;

    TEffectNode* Node = nullptr;
    bool Selected = false;
};
