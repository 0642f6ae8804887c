#pragma once

#include "library/wimp/gl/windowmessage.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/controls/controlhost.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

// Notes what controls ask of the windows that show them. One drag runs at a time.
class TFakeControlHost : public TControlHost
{
public:
    ~TFakeControlHost() override { LoseDrag(); }
    void RedrawGraphs() override { ++NumRedraws; }
    void BeginDrag(TRenderer& renderer, TMouseDrag& drag) override
    {
        EXPECT_EQ(Running, nullptr);
        View = &renderer;
        Running = &drag;
        ++NumDrags;
    }
    void EndDrag(TRenderer& renderer) override
    {
        EXPECT_EQ(View, &renderer);
        View = nullptr;
        Running = nullptr;
    }
    void ShowHelp(const char* text, const TVector2& point) override
    {
        Help.push_back(text);
        HelpPoints.push_back(point);
    }
    void ShowPointer(TRenderObject& object, TPointerShape shape) override
    {
        PointerObject = &object;
        Pointer = shape;
    }
    void Warn() override { ++NumWarnings; }

    bool IsDragging() const { return Running != nullptr; }
    // The mouse as the running drag hears of it: pixels of the view, TMouseButton bits.
    void Drag(double x, double y, int buttons = MB_LEFT)
    {
        ASSERT_NE(Running, nullptr);
        Running->OnMouseMove(x, y, buttons);
    }
    // As when a dialog takes the mouse.
    void LoseDrag()
    {
        if (Running != nullptr)
            Running->OnCaptureLost();
    }

    TRenderer* View = nullptr;
    TRenderObject* PointerObject = nullptr;
    TPointerShape Pointer = PS_NORMAL;
    TMouseDrag* Running = nullptr;
    int NumRedraws = 0;
    int NumDrags = 0;
    int NumWarnings = 0;
    std::vector<std::string> Help;
    std::vector<TVector2> HelpPoints;
};
