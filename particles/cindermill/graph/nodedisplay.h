#pragma once

#include "library/containers/classregistry.h"

class TEffectNode;
class TRenderer;

// What the preview draws for a node that has a place in space. The class is named by the node's type.
class TNodeDisplay
{
public:
    virtual ~TNodeDisplay() = default;
    static int ClassId();

    virtual void Init(TEffectNode* node) { Node = node; }
    virtual void Render(TRenderer* renderer) { (void)renderer; }
    void SetSelected(bool selected) { Selected = selected; }
    bool IsSelected() const { return Selected; }

protected:
    TEffectNode* Node = nullptr;
    bool Selected = false;
};
