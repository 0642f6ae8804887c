#pragma once

#include "library/wimp/wimp.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/controls/controlhost.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

// Notes what controls ask of the windows that show them. A drag runs as the framework's, of which there is
// one at a time.
class TFakeControlHost : public TControlHost
{
public:
    ~TFakeControlHost() override { LoseDrag(); }
    void RedrawGraphs() override { ++NumRedraws; }
    void BeginDrag(TRenderer& renderer, TMouseDrag& drag) override
    {
        EXPECT_EQ(View, nullptr);
        View = &renderer;
        ++NumDrags;
        TWimp::Get().SetMouseDrag(&drag, Window);
    }
    void EndDrag(TRenderer& renderer) override
    {
        EXPECT_EQ(View, &renderer);
        View = nullptr;
        TWimp::Get().ClearMouseDrag();
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

    bool IsDragging() const { return View != nullptr; }
    // The mouse as the running drag hears of it: pixels of the view, TMouseButton bits.
    static void Drag(double x, double y, int buttons = MB_LEFT)
    {
        ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
        TWimp::Get().GetMouseDrag()->OnMouseMove(x, y, buttons);
    }
    // As when a dialog takes the mouse.
    static void LoseDrag() { TWimp::Get().LoseMouseDrag(); }

    // Never shown: the framework asks for one.
    TWindow Window;
    TRenderer* View = nullptr;
    TRenderObject* PointerObject = nullptr;
    TPointerShape Pointer = PS_NORMAL;
    int NumRedraws = 0;
    int NumDrags = 0;
    int NumWarnings = 0;
    std::vector<std::string> Help;
    std::vector<TVector2> HelpPoints;
};
