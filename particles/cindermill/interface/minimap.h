#pragma once

#include "library/maths/vector2.h"
#include "library/wimp/window.h"

class TDocWindow;
class TGraphWindow;

// The whole graph, small, in a corner of its view, with a frame around what is in sight. A press and a drag
// move the view there. Not there at first.
class TMinimap : public TWindow
{
public:
    explicit TMinimap(TGraphWindow& graph) : Graph(graph) {}
    void Toggle(TDocWindow& docWindow);
    // The view has another size.
    void Place();
    bool OnMessage(const TMessage& message) override;

private:
    // Where the world is in the map.
    struct TMapping
    {
        TVector2 Corner = TVector2(0, 0);
        float Scale = 1;
        TVector2 Inset = TVector2(0, 0);
    };

    TMapping FindMapping() const;
    TVector2 ToMap(const TVector2& point) const;
    void GetView(TVector2& min, TVector2& max) const;
    void Paint(TGDIContext& context);
    // As many pixels larger, but never too small to be seen.
    void PaintBox(TGDIContext& context, const TVector2& min, const TVector2& max, int grown = 0) const;
    void PaintView(TGDIContext& context, const TVector2& min, const TVector2& max) const;
    void MoveView(const TMessage& message);

    TGraphWindow& Graph;
    TDocWindow* DocWindow = nullptr;
    // Of the last picture; during a drag it stays.
    TMapping Mapping;
    bool IsDragging = false;
};
