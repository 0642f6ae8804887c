#include "controltest.h"

#include "particles/cindermill/interface/controls/colourpicker.h"
#include "particles/cindermill/interface/controls/controls.h"
#include "particles/cindermill/interface/controls/pickerprograms.h"

#include <cmath>
#include <filesystem>

namespace {

using TFloats = std::vector<float>;

class ColourPicker : public TControlTest
{
protected:
    static constexpr float Left = 10;
    static constexpr float Top = 20;

    void SetUp() override
    {
        TControlTest::SetUp();
        Picker.Build();
        Picker.SetOrigin(TVector2(Left, Top));
        Panel.AddObject(&Picker);
        Panel.OnChange = [this] { Drags.push_back(Picker.GetDrag()); };
        Set({0.2f, 0.4f, 0.6f, 1});
    }
    void Set(const TFloats& rgba) { Picker.SetColour(rgba.data()); }
    TFloats Get() { return TFloats(Picker.GetColour(), Picker.GetColour() + 4); }
    // A place of an area by its shares, y upwards.
    TVector2 Place(TPickerArea area, float x, float y)
    {
        TVector2 min;
        TVector2 max;
        Picker.GetArea(area, min, max);
        return Picker.GetOrigin() + TVector2(min[0] + (max[0] - min[0]) * x, max[1] - (max[1] - min[1]) * y);
    }
    bool PressAt(TPickerArea area, float x, float y)
    {
        const TVector2 place = Place(area, x, y);
        return Press(double(place[0]), double(place[1]));
    }
    void MoveTo(TPickerArea area, float x, float y)
    {
        const TVector2 place = Place(area, x, y);
        Move(double(place[0]), double(place[1]));
    }
    void ReleaseAt(TPickerArea area, float x, float y)
    {
        const TVector2 place = Place(area, x, y);
        Release(double(place[0]), double(place[1]));
    }
    std::string Shown(int i) { return Text(Picker.GetInput(i).GetEdit().GetText()); }
    std::string AllShown()
    {
        std::string result;
        for (int i = 0; i < 4; ++i)
            result += (i > 0 ? " " : "") + Shown(i);
        return result;
    }
    void TypeInto(int i, const std::string& text)
    {
        const TVector2 place = Picker.GetInput(i).GetAbsolutePosition() + TVector2(20, 8);
        Click(double(place[0]), double(place[1]));
        Picker.GetInput(i).GetEdit().SelectAll();
        Type(text);
        Key(KEY_RETURN);
    }
    std::vector<std::string> Labels()
    {
        std::vector<std::string> result;
        for (TRenderObject* object : Picker.GetObjects())
            if (object->GetClassId() == TStatic::NameID())
                result.push_back(Text(static_cast<TStatic*>(object)->GetText()));
        return result;
    }
    int NumChanges() { return CountChanges(Picker); }

    TColourPicker Picker{Host};
    std::vector<int> Drags;
};

} // namespace

TEST_F(ColourPicker, TheClassIsKnownByItsName)
{
    RegisterControlClasses();
    const int id = FindClassByName("TColourPicker");
    ASSERT_NE(id, -1);
    EXPECT_EQ(Picker.GetClassId(), GetClassNameID(id));
}

TEST_F(ColourPicker, StandsAsTheFormTells)
{
    EXPECT_EQ(Picker.GetCombo().GetSize()[0], 100);
    EXPECT_EQ(Picker.GetCombo().GetOrigin(), TVector2(0, 0));
    ASSERT_EQ(Picker.GetCombo().GetNumStrings(), 2);
    EXPECT_EQ(Text(Picker.GetCombo().GetString(0)), "HSL");
    EXPECT_EQ(Text(Picker.GetCombo().GetString(1)), "RGB");
    EXPECT_EQ(Picker.GetMode(), PM_HSL);
    for (int i = 0; i < 4; ++i) {
        TNumberInput& input = Picker.GetInput(i);
        EXPECT_EQ(input.GetOrigin(), TVector2(14, 24.0f * static_cast<float>(i + 1)));
        TVector2 min;
        TVector2 max;
        input.GetBounds(min, max);
        EXPECT_EQ(max[0] - min[0], 100);
        EXPECT_EQ(input.GetMin(), 0);
        EXPECT_EQ(input.GetMax(), 1);
    }
    EXPECT_EQ(Labels(), (std::vector<std::string>{"H:", "S:", "L:", "A:", "H/S:", "L:", "A:", "Colour:"}));
    float right = 114;
    for (const TPickerArea area : {PA_SQUARE, PA_STRIP, PA_ALPHA}) {
        TVector2 min;
        TVector2 max;
        Picker.GetArea(area, min, max);
        EXPECT_EQ(min[1], 12);
        EXPECT_GT(min[0], right);
        right = max[0];
    }
    Picker.SetMode(PM_RGB);
    EXPECT_EQ(Labels(), (std::vector<std::string>{"R:", "G:", "B:", "A:", "R/G:", "B:", "A:", "Colour:"}));
}

TEST_F(ColourPicker, IsHitInItsAreasOnly)
{
    for (const TPickerArea area : {PA_SQUARE, PA_STRIP, PA_ALPHA}) {
        EXPECT_EQ(Picker.HitTest(Place(area, 0.5f, 0.5f)), &Picker);
        EXPECT_EQ(Picker.HitTest(Place(area, 0.0f, 1.0f)), &Picker);
        EXPECT_EQ(Picker.HitTest(Place(area, 0.5f, 1.0f) - TVector2(0, 1)), nullptr);
        EXPECT_EQ(Picker.HitTest(Place(area, 0.5f, 0.0f)), nullptr);
    }
    TVector2 min;
    TVector2 max;
    Picker.GetBounds(min, max);
    // The result is for the eye only.
    EXPECT_EQ(Picker.HitTest(Picker.GetOrigin() + TVector2(Picker.GetSize()[0] - 10, 50)), nullptr);
    EXPECT_NE(Picker.HitTest(Picker.GetOrigin() + TVector2(20, 30)), &Picker);
}

TEST_F(ColourPicker, TheNumbersAreThoseOfTheMode)
{
    EXPECT_EQ(AllShown(), "0.5833 0.5000 0.4000 1.0000");
    Picker.SetMode(PM_RGB);
    EXPECT_EQ(AllShown(), "0.2000 0.4000 0.6000 1.0000");
    EXPECT_EQ(NumChanges(), 0);
    EXPECT_EQ(Get(), (TFloats{0.2f, 0.4f, 0.6f, 1}));
}

TEST_F(ColourPicker, TheComboChangesTheModeAndTellsNobody)
{
    Click(Left + 50, Top + 8);
    ASSERT_TRUE(Picker.GetCombo().IsOpen());
    Key(KEY_DOWN);
    Key(KEY_RETURN);
    EXPECT_EQ(Picker.GetMode(), PM_RGB);
    EXPECT_EQ(Shown(0), "0.2000");
    EXPECT_EQ(NumChanges(), 0);
    EXPECT_EQ(Get(), (TFloats{0.2f, 0.4f, 0.6f, 1}));
}

TEST_F(ColourPicker, SettingTheColourSendsNothing)
{
    Set({1, 0, 0, 0.5f});
    EXPECT_EQ(AllShown(), "0.0000 1.0000 0.5000 0.5000");
    EXPECT_EQ(NumChanges(), 0);
}

TEST_F(ColourPicker, ATypedNumberChangesItsComponentOnly)
{
    Picker.SetMode(PM_RGB);
    TypeInto(1, "0.75");
    EXPECT_EQ(Get(), (TFloats{0.2f, 0.75f, 0.6f, 1}));
    EXPECT_EQ(NumChanges(), 1);
    TypeInto(3, "0.5");
    EXPECT_EQ(Get(), (TFloats{0.2f, 0.75f, 0.6f, 0.5f}));
    EXPECT_EQ(NumChanges(), 2);
    EXPECT_EQ(Drags, (std::vector<int>{0, 0}));
}

TEST_F(ColourPicker, ATypedLuminanceKeepsHueAndSaturationWhateverItIs)
{
    const float hue = Picker.GetHsla()[0];
    const float saturation = Picker.GetHsla()[1];
    TypeInto(2, "0");
    EXPECT_EQ(Get(), (TFloats{0, 0, 0, 1}));
    EXPECT_EQ(AllShown(), "0.5833 0.5000 0.0000 1.0000");
    Set(Get());
    TypeInto(2, "1");
    Set(Get());
    TypeInto(2, "0.4");
    EXPECT_EQ(Picker.GetHsla()[0], hue);
    EXPECT_EQ(Picker.GetHsla()[1], saturation);
    EXPECT_NEAR(Get()[2], 0.6f, 1e-6f);
}

TEST_F(ColourPicker, WhatIsTypedIsClampedAndWhatIsThereIsNot)
{
    Picker.SetMode(PM_RGB);
    Set({2, -1, 0.5f, 3});
    EXPECT_EQ(AllShown(), "2.0000 -1.0000 0.5000 3.0000");
    TypeInto(2, "7");
    EXPECT_EQ(Get(), (TFloats{2, -1, 1, 3}));
    TypeInto(0, "1.5");
    EXPECT_EQ(Get(), (TFloats{1, -1, 1, 3}));
}

TEST_F(ColourPicker, AStepIsAHundredth)
{
    Picker.SetMode(PM_RGB);
    Picker.GetInput(0).StepBy(1, false, false);
    EXPECT_NEAR(Get()[0], 0.21f, 1e-6f);
    EXPECT_EQ(Get()[1], 0.4f);
    EXPECT_EQ(NumChanges(), 1);
}

TEST_F(ColourPicker, ADragInTheSquareSetsHueAndSaturation)
{
    EXPECT_TRUE(PressAt(PA_SQUARE, 0.25f, 0.5f));
    EXPECT_EQ(Picker.GetDragArea(), PA_SQUARE);
    EXPECT_NEAR(Picker.GetHsla()[0], 0.25f, 1e-5f);
    EXPECT_NEAR(Picker.GetHsla()[1], 0.5f, 1e-5f);
    EXPECT_NEAR(Picker.GetHsla()[2], 0.4f, 1e-5f);
    EXPECT_EQ(NumChanges(), 1);
    MoveTo(PA_SQUARE, 0.75f, 0.25f);
    EXPECT_EQ(Shown(0), "0.7500");
    EXPECT_EQ(Shown(1), "0.2500");
    EXPECT_EQ(NumChanges(), 2);
    ReleaseAt(PA_SQUARE, 0.75f, 0.25f);
    EXPECT_EQ(Picker.GetDragArea(), PA_NONE);
    EXPECT_FALSE(Host.IsDragging());
    EXPECT_NEAR(Picker.GetHsla()[0], 0.75f, 1e-5f);
}

TEST_F(ColourPicker, ADragInTheSquareSetsRedAndGreen)
{
    Picker.SetMode(PM_RGB);
    PressAt(PA_SQUARE, 0.25f, 0.75f);
    EXPECT_NEAR(Get()[0], 0.25f, 1e-5f);
    EXPECT_NEAR(Get()[1], 0.75f, 1e-5f);
    EXPECT_EQ(Get()[2], 0.6f);
    EXPECT_EQ(Get()[3], 1);
    ReleaseAt(PA_SQUARE, 0.25f, 0.75f);
}

TEST_F(ColourPicker, TheStripsSetOneComponentEach)
{
    PressAt(PA_STRIP, 0.5f, 0.75f);
    ReleaseAt(PA_STRIP, 0.5f, 0.75f);
    EXPECT_NEAR(Picker.GetHsla()[2], 0.75f, 1e-5f);
    const TFloats before = Get();
    PressAt(PA_ALPHA, 0.5f, 0.25f);
    ReleaseAt(PA_ALPHA, 0.5f, 0.25f);
    EXPECT_NEAR(Get()[3], 0.25f, 1e-5f);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(Get()[i], before[i]);
    Picker.SetMode(PM_RGB);
    PressAt(PA_STRIP, 0.5f, 0.5f);
    ReleaseAt(PA_STRIP, 0.5f, 0.5f);
    EXPECT_EQ(Get()[0], before[0]);
    EXPECT_EQ(Get()[1], before[1]);
    EXPECT_NEAR(Get()[2], 0.5f, 1e-5f);
}

TEST_F(ColourPicker, ADragBeyondTheEdgesStopsAtZeroAndOne)
{
    PressAt(PA_SQUARE, 0.5f, 0.5f);
    MoveTo(PA_SQUARE, -3, 9);
    EXPECT_EQ(Picker.GetHsla()[0], 0);
    EXPECT_EQ(Picker.GetHsla()[1], 1);
    MoveTo(PA_SQUARE, 9, -3);
    EXPECT_EQ(Picker.GetHsla()[0], 1);
    EXPECT_EQ(Picker.GetHsla()[1], 0);
    ReleaseAt(PA_SQUARE, 9, -3);
    for (const TPickerArea area : {PA_STRIP, PA_ALPHA}) {
        PressAt(area, 0.5f, 0.5f);
        MoveTo(area, 0.5f, 2);
        EXPECT_EQ(Picker.GetHsla()[area == PA_STRIP ? 2 : 3], 1);
        MoveTo(area, 0.5f, -2);
        EXPECT_EQ(Picker.GetHsla()[area == PA_STRIP ? 2 : 3], 0);
        ReleaseAt(area, 0.5f, -2);
    }
}

TEST_F(ColourPicker, EachDragHasANumberOfItsOwn)
{
    PressAt(PA_SQUARE, 0.5f, 0.5f);
    MoveTo(PA_SQUARE, 0.6f, 0.5f);
    ReleaseAt(PA_SQUARE, 0.6f, 0.5f);
    PressAt(PA_ALPHA, 0.5f, 0.5f);
    ReleaseAt(PA_ALPHA, 0.5f, 0.5f);
    ASSERT_GE(Drags.size(), 3u);
    EXPECT_NE(Drags[0], 0);
    EXPECT_EQ(Drags[0], Drags[1]);
    EXPECT_NE(Drags[0], Drags.back());
    EXPECT_NE(Drags.back(), 0);
    EXPECT_EQ(Picker.GetDrag(), 0);
}

TEST_F(ColourPicker, TheArrowKeysMoveTheMarkerOfTheAreaThatWasPressed)
{
    Picker.SetMode(PM_RGB);
    PressAt(PA_SQUARE, 0.5f, 0.5f);
    // Not during a drag.
    Key(KEY_RIGHT);
    ReleaseAt(PA_SQUARE, 0.5f, 0.5f);
    EXPECT_EQ(Picker.GetKeyArea(), PA_SQUARE);
    Set({0.5f, 0.5f, 0.6f, 1});
    const int before = NumChanges();
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_NEAR(Get()[0], 0.51f, 1e-6f);
    EXPECT_TRUE(Key(KEY_LEFT));
    EXPECT_TRUE(Key(KEY_LEFT));
    EXPECT_NEAR(Get()[0], 0.49f, 1e-6f);
    EXPECT_TRUE(Key(KEY_UP, KF_SHIFT));
    EXPECT_NEAR(Get()[1], 0.501f, 1e-6f);
    EXPECT_EQ(Get()[2], 0.6f);
    EXPECT_EQ(Shown(1), "0.5010");
    EXPECT_EQ(NumChanges() - before, 4);
    EXPECT_EQ(Drags.back(), 0);
    PressAt(PA_STRIP, 0.5f, 0.25f);
    ReleaseAt(PA_STRIP, 0.5f, 0.25f);
    Set({0.5f, 0.5f, 0.25f, 1});
    EXPECT_TRUE(Key(KEY_DOWN));
    EXPECT_NEAR(Get()[2], 0.24f, 1e-6f);
    // A strip has one way only.
    EXPECT_TRUE(Key(KEY_RIGHT));
    EXPECT_NEAR(Get()[2], 0.24f, 1e-6f);
    EXPECT_EQ(Get()[0], 0.5f);
    PressAt(PA_ALPHA, 0.5f, 0.5f);
    ReleaseAt(PA_ALPHA, 0.5f, 0.5f);
    Set({0.5f, 0.5f, 0.5f, 0.5f});
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_NEAR(Get()[3], 0.51f, 1e-6f);
}

TEST_F(ColourPicker, TheArrowKeysStopAtTheEdgesAndSendNothingThere)
{
    Picker.SetMode(PM_RGB);
    PressAt(PA_ALPHA, 0.5f, 0.5f);
    ReleaseAt(PA_ALPHA, 0.5f, 0.5f);
    Set({0.5f, 0.5f, 0.5f, 0.995f});
    const int before = NumChanges();
    Key(KEY_UP);
    EXPECT_EQ(Get()[3], 1);
    Key(KEY_UP);
    EXPECT_EQ(NumChanges() - before, 1);
    // A value outside is shown at the edge, and stays until it moves away from there.
    Set({0.5f, 0.5f, 0.5f, 3});
    Key(KEY_UP);
    EXPECT_EQ(Get()[3], 3);
    Key(KEY_DOWN);
    EXPECT_NEAR(Get()[3], 0.99f, 1e-6f);
    Set({0.5f, 0.5f, 0.5f, -3});
    Key(KEY_UP);
    EXPECT_NEAR(Get()[3], 0.01f, 1e-6f);
}

TEST_F(ColourPicker, InHslTheKeysKeepTheHueOfBlack)
{
    PressAt(PA_STRIP, 0.5f, 0.02f);
    ReleaseAt(PA_STRIP, 0.5f, 0.02f);
    const float hue = Picker.GetHsla()[0];
    for (int i = 0; i < 5; ++i)
        Key(KEY_DOWN);
    EXPECT_EQ(Get(), (TFloats{0, 0, 0, 1}));
    Key(KEY_UP);
    EXPECT_EQ(Picker.GetHsla()[0], hue);
    EXPECT_NEAR(Picker.GetHsla()[2], 0.01f, 1e-6f);
}

TEST_F(ColourPicker, TheKeysAreLostWithTheFocusAndTabLeadsToTheModeAndTheFields)
{
    EXPECT_EQ(Picker.GetKeyArea(), PA_NONE);
    PressAt(PA_SQUARE, 0.5f, 0.5f);
    ReleaseAt(PA_SQUARE, 0.5f, 0.5f);
    EXPECT_TRUE(Key(KEY_TAB));
    EXPECT_EQ(Picker.GetKeyArea(), PA_NONE);
    EXPECT_EQ(TRenderObject::GetFocus(), &Picker.GetCombo());
    EXPECT_TRUE(Key(KEY_TAB));
    EXPECT_EQ(TRenderObject::GetFocus(), &Picker.GetInput(0).GetEdit());
}

TEST_F(ColourPicker, EscapeAndALostMouseTakeADragBack)
{
    for (const bool escape : {true, false}) {
        std::vector<bool> takenBack;
        Panel.OnChange = [&] { takenBack.push_back(Picker.IsTakenBack()); };
        PressAt(PA_SQUARE, 0.5f, 0.5f);
        MoveTo(PA_SQUARE, 0.9f, 0.9f);
        EXPECT_NE(Get(), (TFloats{0.2f, 0.4f, 0.6f, 1}));
        if (escape) {
            EXPECT_TRUE(Key(KEY_ESCAPE));
        } else {
            Host.LoseDrag();
        }
        EXPECT_EQ(Get(), (TFloats{0.2f, 0.4f, 0.6f, 1}));
        EXPECT_EQ(takenBack, (std::vector<bool>{false, false, true}));
        EXPECT_FALSE(Picker.IsTakenBack());
        EXPECT_EQ(Picker.GetDragArea(), PA_NONE);
        EXPECT_FALSE(Host.IsDragging());
        EXPECT_EQ(AllShown(), "0.5833 0.5000 0.4000 1.0000");
    }
    // With no drag the key is another's.
    EXPECT_FALSE(Key(KEY_ESCAPE));
}

TEST_F(ColourPicker, APressEndsWhatIsBeingTyped)
{
    Picker.SetMode(PM_RGB);
    const TVector2 place = Picker.GetInput(0).GetAbsolutePosition() + TVector2(20, 8);
    Click(double(place[0]), double(place[1]));
    Picker.GetInput(0).GetEdit().SelectAll();
    Type("0.875");
    PressAt(PA_ALPHA, 0.5f, 0.5f);
    ReleaseAt(PA_ALPHA, 0.5f, 0.5f);
    EXPECT_EQ(Get()[0], 0.875f);
    EXPECT_NEAR(Get()[3], 0.5f, 1e-5f);
}

TEST_F(ColourPicker, AGreyTakesAHueThatShowsOnceItIsSaturated)
{
    Set({0.5f, 0.5f, 0.5f, 1});
    TypeInto(0, "0.3333");
    EXPECT_EQ(Get(), (TFloats{0.5f, 0.5f, 0.5f, 1}));
    Set(Get());
    TypeInto(1, "1");
    EXPECT_NEAR(Get()[1], 1, 1e-3f);
    EXPECT_NEAR(Get()[0], 0, 1e-3f);
}

namespace {

class ColourPickerPicture : public testing::Test
{
protected:
    static constexpr int Width = 410;
    static constexpr int Height = 140;
    static constexpr float Left = 12;
    static constexpr float Top = 12;

    ColourPickerPicture()
    {
        View.Init(&Surface);
        Back.Max = TVector2(Width, Height);
        Back.Draw = [](TRenderer& renderer) {
            renderer.SetColour(TVector4(0.737f, 0.784f, 0.784f, 1));
            renderer.DrawRectangle(TVector2(0, 0), TVector2(Width, Height));
        };
        Root.AddObject(&Back);
        Picker.Build();
        Picker.SetOrigin(TVector2(Left, Top));
        Root.AddObject(&Picker);
    }
    void Show(TPickerMode mode, const TFloats& rgba)
    {
        Picker.SetMode(mode);
        Picker.SetColour(rgba.data());
    }
    TPicture Paint(float zoom = 1)
    {
        Surface.Resize(static_cast<int>(Width * zoom), static_cast<int>(Height * zoom));
        View.SetScale(TVector2(zoom, zoom));
        View.Render(Root);
        return Surface.Read();
    }
    TPixel At(const TPicture& picture, TPickerArea area, float x, float y)
    {
        TVector2 min;
        TVector2 max;
        Picker.GetArea(area, min, max);
        return picture.At(static_cast<int>(Left + min[0] + (max[0] - min[0]) * x),
                          static_cast<int>(Top + max[1] - (max[1] - min[1]) * y));
    }
    // The share at the middle of the pixel that At reads for one.
    float Middle(TPickerArea area, int axis, float share)
    {
        TVector2 min;
        TVector2 max;
        Picker.GetArea(area, min, max);
        const float from = axis == 0 ? Left + min[0] : Top + max[1];
        const float length = axis == 0 ? max[0] - min[0] : min[1] - max[1];
        return (std::floor(from + length * share) + 0.5f - from) / length;
    }
    static TPixel PixelOf(float r, float g, float b)
    {
        auto channel = [](float value) { return static_cast<int>(value * 255.0f + 0.5f); };
        return TPixel{channel(r), channel(g), channel(b), 255};
    }
    static TPixel HslPixel(float hue, float saturation, float luminance)
    {
        const float hsl[3] = {hue, saturation, luminance};
        float rgb[3];
        HslToRgb(hsl, rgb);
        return PixelOf(rgb[0], rgb[1], rgb[2]);
    }
    static void Keep(const TPicture& picture, const std::string& name)
    {
        const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(picture.SavePng(folder + "/" + name + ".png"));
    }
    // Looks at all areas but for the markers, at the middles of a grid.
    void CheckAreas(int tolerance)
    {
        Show(PM_HSL, {0.2f, 0.4f, 0.6f, 1});
        TPicture picture = Paint();
        for (int i = 1; i < 8; ++i)
            for (int j = 1; j < 8; ++j) {
                const float x = Middle(PA_SQUARE, 0, static_cast<float>(i) / 8);
                const float y = Middle(PA_SQUARE, 1, static_cast<float>(j) / 8);
                // The marker.
                if (std::abs(x - 0.5833f) <= 0.1f && std::abs(y - 0.5f) <= 0.1f)
                    continue;
                EXPECT_TRUE(IsClose(At(picture, PA_SQUARE, x, y), HslPixel(x, y, 0.4f), tolerance))
                    << x << " " << y << " " << At(picture, PA_SQUARE, x, y);
            }
        for (const float y : {0.1f, 0.25f, 0.6f, 0.75f, 0.9f})
            EXPECT_TRUE(IsClose(At(picture, PA_STRIP, 0.5f, y), HslPixel(7 / 12.0f, 0.5f, y), tolerance))
                << y << At(picture, PA_STRIP, 0.5f, y);
        Show(PM_RGB, {0.2f, 0.4f, 0.6f, 1});
        picture = Paint();
        for (const float x : {0.5f, 0.75f, 0.95f})
            for (const float y : {0.1f, 0.6f, 0.95f})
                EXPECT_TRUE(IsClose(At(picture, PA_SQUARE, x, y), PixelOf(x, y, 0.6f), tolerance))
                    << x << " " << y << At(picture, PA_SQUARE, x, y);
        for (const float y : {0.1f, 0.3f, 0.9f})
            EXPECT_TRUE(IsClose(At(picture, PA_STRIP, 0.5f, y), PixelOf(0.2f, 0.4f, y), tolerance))
                << y << At(picture, PA_STRIP, 0.5f, y);
        // Nearly all of the colour above, nearly all of the squares below.
        EXPECT_TRUE(IsClose(At(picture, PA_ALPHA, 0.5f, 0.9f), PixelOf(0.2f, 0.4f, 0.6f), 30));
        const TPixel low = At(picture, PA_ALPHA, 0.5f, 0.06f);
        EXPECT_GT(low.R, 130) << low;
    }

    TFakeControlHost Host;
    TTestWindow Surface{Width, Height};
    TRenderer View;
    TRenderObjects Root;
    TDrawnObject Back;
    TColourPicker Picker{Host};
};

// A driver that takes none of the programs.
class TRefusingDevice : public TGraphicsDevice
{
public:
    explicit TRefusingDevice(TGraphicsDevice& device) : Device(device) {}
    bool IsCurrent() const override { return Device.IsCurrent(); }
    bool HasVendorPrograms() const override { return Device.HasVendorPrograms(); }
    bool CanDrawInstances() const override { return Device.CanDrawInstances(); }
    void CheckError() override { Device.CheckError(); }
    void UploadTexture(unsigned& name, TTextureFormat format, int width, int height, uint8_t* pixels) override
    {
        Device.UploadTexture(name, format, width, height, pixels);
    }
    void BindTexture(int unit, unsigned name) override { Device.BindTexture(unit, name); }
    void DeleteTexture(unsigned name) override { Device.DeleteTexture(name); }
    unsigned AssembleProgram(TArbTarget, const char*) override
    {
        ++NumRefused;
        return 0;
    }
    void BindProgram(TArbTarget target, unsigned name) override { Device.BindProgram(target, name); }
    void DisableProgram(TArbTarget target) override { Device.DisableProgram(target); }
    void SetLocal(TArbTarget target, int slot, const float* value) override
    {
        Device.SetLocal(target, slot, value);
    }
    void SetEnv(TArbTarget target, int slot, const float* value) override
    {
        Device.SetEnv(target, slot, value);
    }
    void DeleteProgram(unsigned name) override { Device.DeleteProgram(name); }
    void UploadBuffer(unsigned& name, const void* data, size_t size) override
    {
        Device.UploadBuffer(name, data, size);
    }
    void DeleteBuffer(unsigned name) override { Device.DeleteBuffer(name); }
    void SetAttributeArray(unsigned attribute, const TVertexArray& array) override
    {
        Device.SetAttributeArray(attribute, array);
    }
    void SetAttributeValue(unsigned attribute, const float* value) override
    {
        Device.SetAttributeValue(attribute, value);
    }
    void Draw(int primitive, int numVertices) override { Device.Draw(primitive, numVertices); }
    void DrawInstances(int primitive, int numVertices, int numItems) override
    {
        Device.DrawInstances(primitive, numVertices, numItems);
    }
    void ResetAttributes(unsigned numAttributes) override { Device.ResetAttributes(numAttributes); }
    void SetStates(const TDrawStates& states) override { Device.SetStates(states); }
    void ClearStates(const TDrawStates& states) override { Device.ClearStates(states); }

    int NumRefused = 0;

private:
    TGraphicsDevice& Device;
};

} // namespace

TEST_F(ColourPickerPicture, TheAreasShowWhatAPickThereGives)
{
    CheckAreas(4);
    for (int i = 0; i < PP_NUMPROGRAMS; ++i)
        EXPECT_NE(TPickerPrograms::GetShared().Get(static_cast<TPickerProgram>(i)), nullptr);
}

TEST_F(ColourPickerPicture, WhereTheDriverTakesNoProgramTheAreasShowTheSame)
{
    Paint();
    TPickerPrograms programs;
    Picker.SetPrograms(programs);
    TGraphicsDevice& device = *GetGraphicsDevice();
    TRefusingDevice refusing(device);
    SetGraphicsDevice(&refusing);
    CheckAreas(6);
    Keep(Paint(), "colour-picker-without-programs");
    SetGraphicsDevice(&device);
    // Asked once, not for every picture.
    EXPECT_EQ(refusing.NumRefused, PP_NUMPROGRAMS);
}

TEST_F(ColourPickerPicture, TheAreaThatTheKeysMoveInHasAFrame)
{
    const auto countBlue = [](const TPicture& picture) {
        return picture.Count([](const TPixel& pixel) {
            return IsClose(pixel, TPixel{26, 107, 230, 255}, 12);
        });
    };
    Show(PM_RGB, {0.5f, 0.2f, 0.1f, 0.5f});
    EXPECT_EQ(countBlue(Paint()), 0);
    TVector2 min;
    TVector2 max;
    Picker.GetArea(PA_ALPHA, min, max);
    const TVector2 place = Picker.GetOrigin() + (min + max) * 0.5f;
    TMessage message;
    message.Type = MT_LEFTDOWN;
    message.X = double(place[0]);
    message.Y = double(place[1]);
    message.Buttons = MB_LEFT;
    TRenderObject::Route(View, Root, message);
    Host.Drag(message.X, message.Y, 0);
    const TPicture picture = Paint();
    Keep(picture, "colour-picker-focus");
    EXPECT_GT(countBlue(picture), 200);
    EXPECT_GT(countBlue(Paint(0.5f)), 50);
    TRenderObject::SetFocus(nullptr);
    EXPECT_EQ(countBlue(Paint()), 0);
}

TEST_F(ColourPickerPicture, SaturationZeroIsGreyInAllHues)
{
    Show(PM_HSL, {0.9f, 0.3f, 0.3f, 1});
    const TPicture picture = Paint();
    for (const float x : {0.1f, 0.3f, 0.5f, 0.7f, 0.9f}) {
        const TPixel pixel = At(picture, PA_SQUARE, x, 0.008f);
        EXPECT_TRUE(IsClose(pixel, PixelOf(0.6f, 0.6f, 0.6f), 5)) << pixel;
    }
}

TEST_F(ColourPickerPicture, TheHslStripGoesFromBlackOverTheHueToWhite)
{
    Show(PM_HSL, {0, 0.8f, 0, 1});
    const TPicture picture = Paint();
    EXPECT_TRUE(IsClose(At(picture, PA_STRIP, 0.5f, 0.01f), TPixel{0, 0, 0, 255}, 12));
    EXPECT_TRUE(IsClose(At(picture, PA_STRIP, 0.5f, 0.505f), TPixel{0, 255, 0, 255}, 6));
    EXPECT_TRUE(IsClose(At(picture, PA_STRIP, 0.5f, 0.995f), TPixel{255, 255, 255, 255}, 12));
}

TEST_F(ColourPickerPicture, TheResultShowsSquaresThroughAColourThatIsNotOpaque)
{
    auto result = [this](const TPicture& picture, float x, float y) {
        TVector2 min;
        TVector2 max;
        Picker.GetArea(PA_ALPHA, min, max);
        const float left = max[0] + 12;
        return picture.At(static_cast<int>(Left + left + x), static_cast<int>(Top + min[1] + y));
    };
    Show(PM_RGB, {1, 0, 0, 1});
    TPicture picture = Paint();
    for (const float x : {3.0f, 9.0f, 15.0f, 21.0f})
        EXPECT_TRUE(IsClose(result(picture, x, 3), TPixel{255, 0, 0, 255}));
    Show(PM_RGB, {1, 0, 0, 0});
    picture = Paint();
    EXPECT_NE(result(picture, 3, 3), result(picture, 9, 3));
    EXPECT_EQ(result(picture, 3, 3), result(picture, 15, 3));
    EXPECT_EQ(result(picture, 3, 3), result(picture, 9, 9));
}

TEST_F(ColourPickerPicture, TheMarkersCanBeSeenOnEveryColour)
{
    auto isDark = [](const TPixel& pixel) { return pixel.R + pixel.G + pixel.B < 120; };
    auto isLight = [](const TPixel& pixel) { return pixel.R + pixel.G + pixel.B > 690; };
    for (const TFloats& rgba : {TFloats{0, 0, 0, 1}, TFloats{1, 1, 1, 1}, TFloats{0.5f, 0.5f, 0.5f, 0.5f},
                                TFloats{0.9f, 0.8f, 0.1f, 1}, TFloats{5, -3, 0.2f, 9}}) {
        Show(PM_RGB, rgba);
        const TPicture picture = Paint(2);
        for (const TPickerArea area : {PA_SQUARE, PA_STRIP, PA_ALPHA}) {
            TVector2 min;
            TVector2 max;
            Picker.GetArea(area, min, max);
            const float x = area == PA_SQUARE ? ClampToUnit(rgba[0]) : 0.5f;
            const float y = ClampToUnit(rgba[area == PA_SQUARE ? 1 : area == PA_STRIP ? 2 : 3]);
            const int middleX = static_cast<int>(2 * (Left + min[0] + (max[0] - min[0]) * x));
            const int middleY = static_cast<int>(2 * (Top + max[1] - (max[1] - min[1]) * y));
            EXPECT_GT(picture.Count(isDark, middleX - 13, middleY - 13, 26, 26), 10) << area;
            EXPECT_GT(picture.Count(isLight, middleX - 13, middleY - 13, 26, 26), 10) << area;
        }
    }
}

TEST_F(ColourPickerPicture, PicturesOfBothModes)
{
    for (const float zoom : {0.5f, 1.0f, 2.0f}) {
        const std::string scale = std::to_string(static_cast<int>(zoom * 10));
        Show(PM_HSL, {0.9f, 0.45f, 0.1f, 0.6f});
        Keep(Paint(zoom), "colour-picker-hsl-" + scale);
        Show(PM_RGB, {0.2f, 0.4f, 0.6f, 1});
        Keep(Paint(zoom), "colour-picker-rgb-" + scale);
    }
}
