#pragma once

#include "support/windowtest.h"

#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderobject.h"

// The upper half in one colour, the lower one in another.
class THalves : public TRenderObject
{
public:
    void Render(TRenderer& renderer) override
    {
        TVector2 min;
        TVector2 max;
        renderer.GetVisibleRect(min, max);
        const float middle = (min[1] + max[1]) * 0.5f;
        renderer.SetColour(Upper);
        renderer.DrawRectangle(min, TVector2(max[0], middle));
        renderer.SetColour(Lower);
        renderer.DrawRectangle(TVector2(min[0], middle), max);
    }
    void GetBounds(TVector2& min, TVector2& max) override
    {
        min = TVector2(-1e6f, -1e6f);
        max = TVector2(1e6f, 1e6f);
    }

    TVector4 Upper = TVector4(0, 0, 0, 1);
    TVector4 Lower = TVector4(0, 0, 0, 1);
};

class THalvesWindow : public TRecordingWindow
{
public:
    ~THalvesWindow() override { Renderer.Release(); }
    bool OnMessage(const TMessage& message) override
    {
        if (message.Type == MT_PAINT)
            Renderer.Render(Root);
        return TRecordingWindow::OnMessage(message);
    }

    TRenderer Renderer;
    THalves Root;
};
