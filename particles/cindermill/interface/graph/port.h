#pragma once

#include "library/containers/string.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"

class TNodeObj;

// A port of a node: a disc, hollow while nothing is connected. Its position is the disc's centre.
class TPort : public TRenderObject
{
public:
    // The node is null for a port that is only shown.
    TPort(TNodeObj* node, int index, bool isInput, const TString& label);

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;

    TNodeObj* GetNode() const { return Node; }
    int GetIndex() const { return Index; }
    bool IsInput() const { return Input; }
    const TString& GetLabel() const { return Label; }
    bool IsConnected() const { return Connected; }
    void SetConnected(bool connected);
    // Whether the running drag of an edge may end here, and whether it would now.
    bool IsMarked() const { return Marked; }
    void SetMarked(bool marked);
    bool IsAimedAt() const { return AimedAt; }
    void SetAimedAt(bool aimedAt);
    const TRenderPath& GetPath() const { return Disc; }

private:
    void Rebuild();

    TNodeObj* Node;
    int Index;
    bool Input;
    TString Label;
    bool Connected = false;
    bool Marked = false;
    bool AimedAt = false;
    TRenderPath Disc;
    TRenderPath Hole;
};
