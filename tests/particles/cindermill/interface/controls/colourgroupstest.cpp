#include "groupstest.h"

#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/colourparametercontrols.h"
#include "particles/cindermill/interface/controls/colourpicker.h"

#include <filesystem>

namespace {

class ColourGroup : public TGroupsTest
{
protected:
    ColourGroup() : Group(Make<TNodeColourParameterControls>("Tint")) {}

    void Fold() { Click(MiddleOf(Group.GetSwatch())); }
    TColourPicker& Picker() { return *Group.GetPicker(); }
    TVector2 Place(TPickerArea area, float x, float y)
    {
        TVector2 min;
        TVector2 max;
        Picker().GetArea(area, min, max);
        return Picker().GetAbsolutePosition() +
               TVector2(min[0] + (max[0] - min[0]) * x, max[1] - (max[1] - min[1]) * y);
    }
    void TypeInto(int i, const std::string& text)
    {
        Click(MiddleOf(Picker().GetInput(i).GetEdit()));
        Picker().GetInput(i).GetEdit().SelectAll();
        Write(text);
        Key(KEY_RETURN);
    }
    TVector2 SizeOf()
    {
        TVector2 size;
        Group.GetSize(size);
        return size;
    }
    TFloats SwatchColour()
    {
        return TFloats(Group.GetSwatch().GetColour(), Group.GetSwatch().GetColour() + 4);
    }
    TFloats Tint() { return Floats("Tint"); }

    const TFloats Default = {1, 0.5f, 0.25f, 1};
    TNodeColourParameterControls& Group;
};

} // namespace

TEST_F(ColourGroup, TheSwatchShowsTheColourAndThePickerIsClosedAtFirst)
{
    EXPECT_EQ(SwatchColour(), Default);
    EXPECT_FALSE(Group.IsOpen());
    EXPECT_EQ(Group.GetPicker(), nullptr);
    EXPECT_EQ(SizeOf(), TVector2(100, 20));
    EXPECT_EQ(Text(Group.GetLabel()), "Tint:");
}

TEST_F(ColourGroup, TheSwatchFoldsThePickerOpenAndClosed)
{
    Fold();
    ASSERT_TRUE(Group.IsOpen());
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 1);
    EXPECT_TRUE(Group.HasObject(Group.GetPicker()));
    EXPECT_EQ(Picker().GetOrigin(), TVector2(0, 24));
    EXPECT_EQ(SizeOf(), Picker().GetSize() + TVector2(0, 24));
    EXPECT_EQ(Picker().GetColour()[1], 0.5f);
    Fold();
    EXPECT_FALSE(Group.IsOpen());
    EXPECT_EQ(Root.Count(RE_RELAYOUT), 2);
    EXPECT_FALSE(Group.HasObject(Group.GetPicker()));
    EXPECT_EQ(SizeOf(), TVector2(100, 20));
    EXPECT_EQ(NumOps(), 0);
    EXPECT_FALSE(Document.CanRedo());
}

TEST_F(ColourGroup, OneDragIsOneStepThoughEachMoveChangesOtherComponents)
{
    Fold();
    Press(Place(PA_SQUARE, 0.1f, 0.9f));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TColourParamOp>());
    for (const float x : {0.2f, 0.35f, 0.5f, 0.7f, 0.9f}) {
        PassTime(500);
        Drag(Place(PA_SQUARE, x, 0.5f));
        EXPECT_EQ(SwatchColour(), Tint());
    }
    Release(Place(PA_SQUARE, 0.9f, 0.5f));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_NE(Tint(), Default);
    EXPECT_EQ(Tint()[3], 1);
    Document.Undo();
    EXPECT_EQ(Tint(), Default);
    EXPECT_EQ(SwatchColour(), Default);
    EXPECT_EQ(TFloats(Picker().GetColour(), Picker().GetColour() + 4), Default);
    EXPECT_FALSE(Document.GetOperationStack()->GetPosition() > NumBefore);
}

TEST_F(ColourGroup, AfterTwoSecondsOfSilenceADragMakesAnotherOperationOfItsStep)
{
    Fold();
    Press(Place(PA_SQUARE, 0.1f, 0.9f));
    PassTime(1999);
    Drag(Place(PA_SQUARE, 0.3f, 0.5f));
    EXPECT_EQ(NumOps(), 1);
    PassTime(2000);
    Drag(Place(PA_SQUARE, 0.5f, 0.4f));
    EXPECT_EQ(NumOps(), 2);
    PassTime(2000);
    Drag(Place(PA_SQUARE, 0.6f, 0.3f));
    EXPECT_EQ(NumOps(), 3);
    Release(Place(PA_SQUARE, 0.6f, 0.3f));
    const TFloats dragged = Tint();
    Document.Undo();
    EXPECT_EQ(Tint(), Default);
    EXPECT_EQ(Stack().GetPosition(), NumBefore);
    Document.Redo();
    EXPECT_EQ(Tint(), dragged);
}

TEST_F(ColourGroup, ASecondDragInOtherComponentsIsAnotherStep)
{
    Fold();
    Press(Place(PA_SQUARE, 0.1f, 0.9f));
    Release(Place(PA_SQUARE, 0.1f, 0.9f));
    Press(Place(PA_ALPHA, 0.5f, 0.5f));
    Release(Place(PA_ALPHA, 0.5f, 0.5f));
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(ColourGroup, EscapeTakesADragOutOfTheHistory)
{
    Fold();
    TypeInto(3, "0.5");
    ASSERT_EQ(NumOps(), 1);
    PassTime();
    Press(Place(PA_SQUARE, 0.1f, 0.9f));
    PassTime();
    Drag(Place(PA_SQUARE, 0.3f, 0.5f));
    EXPECT_EQ(NumOps(), 3);
    Key(KEY_ESCAPE);
    EXPECT_EQ(Tint(), (TFloats{1, 0.5f, 0.25f, 0.5f}));
    EXPECT_EQ(Stack().GetPosition(), NumBefore + 1);
    EXPECT_EQ(SwatchColour(), Tint());
    // The step before it stays what the next undo takes back.
    Document.Undo();
    EXPECT_EQ(Tint(), Default);
}

// However soon it follows, and whatever it changes.
TEST_F(ColourGroup, EscapeTakesBackOneDragAndNotTheOneBefore)
{
    Fold();
    Press(Place(PA_STRIP, 0.5f, 0.6f));
    Release(Place(PA_STRIP, 0.5f, 0.6f));
    const TFloats first = Tint();
    ASSERT_NE(first, Default);
    Press(Place(PA_STRIP, 0.5f, 0.7f));
    Drag(Place(PA_STRIP, 0.5f, 0.8f));
    ASSERT_NE(Tint(), first);
    Key(KEY_ESCAPE);
    EXPECT_EQ(Tint(), first);
    EXPECT_EQ(SwatchColour(), first);
    EXPECT_EQ(TFloats(Picker().GetColour(), Picker().GetColour() + 4), first);
    Document.Undo();
    EXPECT_EQ(Tint(), Default);
}

TEST_F(ColourGroup, EscapeBeforeAnythingChangedLeavesTheHistory)
{
    Fold();
    TypeInto(3, "0.5");
    PassTime();
    Press(Place(PA_ALPHA, 0.5f, 0.5f));
    const int position = Stack().GetPosition();
    Key(KEY_ESCAPE);
    EXPECT_EQ(Tint()[3], 0.5f);
    EXPECT_LE(Stack().GetPosition(), position);
    EXPECT_EQ(Stack().GetPosition(), NumBefore + 1);
}

TEST_F(ColourGroup, ATypedNumberIsOneStepOfOneComponent)
{
    Fold();
    Picker().SetMode(PM_RGB);
    TypeInto(0, "0.75");
    EXPECT_EQ(Tint(), (TFloats{0.75f, 0.5f, 0.25f, 1}));
    EXPECT_EQ(NumOps(), 1);
    TypeInto(0, "0.75");
    EXPECT_EQ(NumOps(), 1);
    TypeInto(3, "0");
    EXPECT_EQ(Tint(), (TFloats{0.75f, 0.5f, 0.25f, 0}));
    EXPECT_EQ(NumOps(), 2);
    Document.Undo();
    EXPECT_EQ(Text(Picker().GetInput(3).GetEdit().GetText()), "1.0000");
}

TEST_F(ColourGroup, AComponentOutOfRangeOutlivesEditsOfOthers)
{
    const float hot[4] = {3, 0.5f, -1, 2};
    Param<TNodeColourParameter>("Tint").SetValue(hot);
    Fold();
    Picker().SetMode(PM_RGB);
    EXPECT_EQ(Text(Picker().GetInput(0).GetEdit().GetText()), "3.0000");
    TypeInto(1, "0.25");
    EXPECT_EQ(Tint(), (TFloats{3, 0.25f, -1, 2}));
    Picker().SetMode(PM_HSL);
    TypeInto(3, "1");
    EXPECT_EQ(Tint(), (TFloats{3, 0.25f, -1, 1}));
}

TEST_F(ColourGroup, HueAndSaturationOutliveADragToBlackAndBack)
{
    Fold();
    Press(Place(PA_STRIP, 0.5f, 0.5f));
    const float hue = Picker().GetHsla()[0];
    const float saturation = Picker().GetHsla()[1];
    Drag(Place(PA_STRIP, 0.5f, -1));
    EXPECT_EQ(Tint(), (TFloats{0, 0, 0, 1}));
    EXPECT_EQ(Picker().GetHsla()[0], hue);
    Drag(Place(PA_STRIP, 0.5f, 0.5f));
    Release(Place(PA_STRIP, 0.5f, 0.5f));
    EXPECT_EQ(Picker().GetHsla()[0], hue);
    EXPECT_EQ(Picker().GetHsla()[1], saturation);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ColourGroup, AHueOfGreyMakesNoStep)
{
    const float grey[4] = {0.5f, 0.5f, 0.5f, 1};
    Param<TNodeColourParameter>("Tint").SetValue(grey);
    Fold();
    TypeInto(0, "0.25");
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Text(Picker().GetInput(0).GetEdit().GetText()), "0.2500");
}

TEST_F(ColourGroup, AHueOfGreyOutOfRangeMakesNoStepEither)
{
    const float bright[4] = {2, 2, 2, 1};
    Param<TNodeColourParameter>("Tint").SetValue(bright);
    Fold();
    TypeInto(0, "0.25");
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Tint(), (TFloats{2, 2, 2, 1}));
}

TEST_F(ColourGroup, TheValueIsCopiedAndPastedAsHexOrNumbers)
{
    EXPECT_EQ(Copied(Group), "1, 0.5, 0.25, 1");
    EXPECT_TRUE(Group.PasteValue("#FF800040"));
    EXPECT_EQ(Tint(), (TFloats{1, 128 / 255.0f, 0, 64 / 255.0f}));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TColourParamOp>());
    EXPECT_EQ(Copied(Group), "#FF800040");
    EXPECT_TRUE(Group.PasteValue("#FF800040"));
    EXPECT_EQ(NumOps(), 1);
    PassTime();
    EXPECT_TRUE(Group.PasteValue("0.5, 0.25, 1"));
    EXPECT_EQ(Tint(), (TFloats{0.5f, 0.25f, 1, 64 / 255.0f}));
    EXPECT_FALSE(Group.PasteValue("blue"));
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(ColourGroup, TheDefaultIsTheTypesAndResetLeadsThere)
{
    EXPECT_TRUE(Group.IsDefault());
    Group.ResetValue();
    EXPECT_EQ(NumOps(), 0);
    Group.PasteValue("0, 0, 0, 0");
    EXPECT_FALSE(Group.IsDefault());
    PassTime();
    Group.ResetValue();
    EXPECT_TRUE(Group.IsDefault());
    EXPECT_EQ(Tint(), Default);
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(ColourGroup, FoldingWhileTypingKeepsWhatWasTyped)
{
    Fold();
    Picker().SetMode(PM_RGB);
    Click(MiddleOf(Picker().GetInput(0).GetEdit()));
    Picker().GetInput(0).GetEdit().SelectAll();
    Write("0.125");
    Group.SetOpen(false);
    EXPECT_EQ(Tint()[0], 0.125f);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(ColourGroup, ThePictureShowsPickerAndSwatch)
{
    TTestWindow surface(680, 240);
    TRenderer view;
    view.Init(&surface);
    TRenderObjects root;
    TDrawnObject back([](TRenderer& renderer) {
        renderer.SetColour(TVector4(0.737f, 0.784f, 0.784f, 1));
        renderer.DrawRectangle(TVector2(0, 0), TVector2(680, 220));
    });
    root.AddObject(&back);
    Group.PasteValue("#F27A1AB0");
    Root.RemoveObject(&Group);
    root.AddObject(&Group);
    Group.SetOrigin(TVector2(70, 14));
    Group.SetOpen(true);
    view.SetScale(TVector2(1.4f, 1.4f));
    view.Render(root);
    const TPicture picture = surface.Read();
    std::filesystem::create_directories(std::string(CINDERMILL_BINARY_DIR) + "/pictures");
    EXPECT_TRUE(picture.SavePng(std::string(CINDERMILL_BINARY_DIR) + "/pictures/group-colour.png"));
    // The colour over the light squares.
    EXPECT_GT(
        picture.Count([](const TPixel& pixel) { return pixel.R > 220 && pixel.B < 110 && pixel.G > 100; }),
        500);
}
