#include "groupstest.h"

#include "particles/cindermill/interface/controls/groupparametercontrols.h"
#include "particles/cindermill/interface/controls/polytypeparametercontrols.h"
#include "particles/cindermill/interface/controls/transformparametercontrols.h"

#include <filesystem>

namespace {

const TVector4 PanelFace(0.737f, 0.784f, 0.784f, 1);

// The groups of a node, drawn for real.
class GroupsPicture : public TGroupsTest
{
protected:
    static constexpr int Width = 560;
    static constexpr int Height = 620;

    GroupsPicture()
    {
        View.Init(&Surface);
        Back.Max = TVector2(Width, Height);
        Back.Draw = [](TRenderer& renderer) {
            renderer.SetColour(PanelFace);
            renderer.DrawRectangle(TVector2(0, 0), TVector2(Width, Height));
        };
        Root.AddObjectFront(&Back);
    }
    TPicture Paint()
    {
        View.Render(Root);
        return Surface.Read();
    }
    static void Keep(const TPicture& picture, const std::string& name)
    {
        const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(picture.SavePng(folder + "/" + name + ".png"));
    }
    // One below the other, as in a panel.
    void Place()
    {
        float left = 0;
        for (const auto& group : Groups) {
            TVector2 min;
            TVector2 max;
            group->GetBounds(min, max);
            left = std::min(left, min[0]);
        }
        float top = 14;
        for (const auto& group : Groups) {
            TVector2 size;
            group->GetSize(size);
            group->SetOrigin(TVector2(14 - left, top));
            top += size[1] + 5;
        }
    }

    TTestWindow Surface{Width, Height};
    TRenderer View;
    TDrawnObject Back;
};

bool IsDot(const TPixel& pixel)
{
    return pixel.R > 180 && pixel.G < 110 && pixel.B < 60;
}

TEST_F(GroupsPicture, EveryPlainKind)
{
    for (const char* name : {"Speed", "Size", "Direction", "Turn", "Area", "Loop", "Blend", "Count"})
        Make(name);
    auto& place = Make<TNodeTransformParameterControls>("Place");
    place.SetOpen(true);
    place.ShowTab(TNodeTransformParameterControls::TT_SCALE);
    auto& offset = Make<TNodeTransformParameterControls>("Extras.Offset");
    offset.SetOpen(true);
    offset.ShowTab(TNodeTransformParameterControls::TT_ROTATE);
    auto& extras = Make<TNodeGroupParameterControls>("Extras");
    Param<TNodeGroupParameter>("Extras").SetValue(true);
    Make("Any");
    auto& loose = Make<TNodePolytypeParameterControls>("Loose");
    EXPECT_FALSE(loose.HasChoice());
    Make("Gain");
    Place();
    EXPECT_TRUE(extras.GetTickBox().IsChecked());
    const TPicture picture = Paint();
    Keep(picture, "controlgroups");
    View.SetScale(TVector2(2, 2));
    Keep(Paint(), "controlgroups2");
    View.SetScale(TVector2(0.5f, 0.5f));
    Keep(Paint(), "controlgroupshalf");
}

TEST_F(GroupsPicture, AValueThatDiffersIsMarked)
{
    TNumberParameterControls& speed = MakeNumbers("Speed");
    Place();
    const TVector2 place = speed.GetOrigin();
    auto countDots = [&] {
        return Paint().Count(IsDot, static_cast<int>(place[0]) - 10, static_cast<int>(place[1]), 10, 20);
    };
    auto countInk = [&] {
        auto isInk = [](const TPixel& pixel) { return pixel.R < 70 && pixel.G < 70 && pixel.B < 75; };
        return Paint().Count(isInk, 0, static_cast<int>(place[1]), static_cast<int>(place[0]) - 10, 20);
    };
    EXPECT_EQ(countDots(), 0);
    const int faint = countInk();
    Type(speed, 0, "3");
    EXPECT_GE(countDots(), 9);
    EXPECT_GT(countInk(), faint + 10);
    Document.Undo();
    EXPECT_EQ(countDots(), 0);
    EXPECT_EQ(countInk(), faint);
}

} // namespace
