#include "controltest.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/numberinput.h"

#include <climits>
#include <cmath>
#include <limits>

namespace {

// A float from (10, 20) and a whole number from (10, 60), each 100 by 18.
class NumberInput : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        Float.Build(TVector2(100, 18), true);
        Whole.Build(TVector2(100, 18), false);
        Float.SetOrigin(TVector2(10, 20));
        Whole.SetOrigin(TVector2(10, 60));
        Panel.AddObject(&Float);
        Panel.AddObject(&Whole);
    }
    void Enter(TNumberInput& input, const std::string& text)
    {
        Focus(input);
        if (text.empty())
            Key(KEY_DELETE);
        Type(text);
        Key(KEY_RETURN);
    }
    void Focus(TNumberInput& input)
    {
        Wait(500);
        TRenderObject::SetFocus(nullptr);
        Click(20, &input == &Float ? 29 : 69);
    }
    static std::string TextOf(TNumberInput& input) { return input.GetEdit().GetText().Print(); }

    TNumberInput Float{Host};
    TNumberInput Whole{Host};
};

} // namespace

TEST_F(NumberInput, StartsAtZero)
{
    EXPECT_EQ(TextOf(Float), "0.0000");
    EXPECT_EQ(TextOf(Whole), "0");
    EXPECT_EQ(Float.GetMin(), -1000000.0);
    EXPECT_EQ(Float.GetMax(), 1000000.0);
    EXPECT_EQ(Whole.GetMin(), double(INT_MIN));
    EXPECT_EQ(Whole.GetMax(), double(INT_MAX));
}

TEST_F(NumberInput, TheEditFillsTheWidthLess16AndTheArrowsTakeTheLast14)
{
    TVector2 min;
    TVector2 max;
    ASSERT_EQ(Float.GetObjects().size(), 2);
    Float.GetObjects()[0]->GetBounds(min, max);
    EXPECT_EQ(Float.GetObjects()[0]->GetOrigin() + max, TVector2(84, 18));
    Float.GetObjects()[1]->GetBounds(min, max);
    EXPECT_EQ(Float.GetObjects()[1]->GetOrigin(), TVector2(86, 0));
    EXPECT_EQ(max, TVector2(14, 18));
}

TEST_F(NumberInput, OnlyWhatANumberIsMadeOfCanBeTyped)
{
    Focus(Float);
    EXPECT_TRUE(Type("a+1e.5, "));
    EXPECT_EQ(TextOf(Float), "1.5");
    Focus(Whole);
    EXPECT_TRUE(Type("-1.5"));
    EXPECT_EQ(TextOf(Whole), "-15");
}

TEST_F(NumberInput, WhatIsEnteredIsShownWithFourPlacesAndAllDigitsCount)
{
    Enter(Float, "0.123456789");
    EXPECT_EQ(TextOf(Float), "0.1235");
    EXPECT_EQ(Float.GetValue(), 0.123456789);
    EXPECT_EQ(CountChanges(Float), 1);
    Enter(Float, ".5");
    EXPECT_EQ(Float.GetValue(), 0.5);
    Enter(Float, "-7.");
    EXPECT_EQ(TextOf(Float), "-7.0000");
}

TEST_F(NumberInput, PassingThroughAFieldRoundsNothing)
{
    Float.ShowValue(0.123456789);
    Focus(Float);
    Key(KEY_RETURN);
    Focus(Whole);
    EXPECT_EQ(Float.GetValue(), 0.123456789);
    EXPECT_EQ(CountChanges(Float), 0);
}

TEST_F(NumberInput, TheValueThatIsThereAlreadyIsNoChange)
{
    Float.SetValue(2);
    Enter(Float, "2");
    EXPECT_EQ(CountChanges(Float), 0);
    EXPECT_EQ(TextOf(Float), "2.0000");
}

TEST_F(NumberInput, ATextThatIsNoNumberPutsTheShownValueBack)
{
    Float.SetValue(3.25);
    for (const char* text : {"", "-", ".", "-.", "1-2", "1.2.3", "--1", "1-"}) {
        Enter(Float, text);
        EXPECT_EQ(TextOf(Float), "3.2500") << text;
        EXPECT_EQ(Float.GetValue(), 3.25) << text;
    }
    Whole.SetValue(3);
    for (const char* text : {"", "-", "1-2"}) {
        Enter(Whole, text);
        EXPECT_EQ(TextOf(Whole), "3") << text;
    }
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(NumberInput, WhatAPersonEntersIsClamped)
{
    Enter(Float, "1000000.5");
    EXPECT_EQ(Float.GetValue(), 1000000.0);
    Enter(Float, "-" + std::string(400, '9'));
    EXPECT_EQ(Float.GetValue(), -1000000.0);
    Enter(Float, "0." + std::string(400, '0') + "1");
    EXPECT_EQ(Float.GetValue(), 0.0);
    Float.SetRange(0, 1);
    Enter(Float, "7");
    EXPECT_EQ(TextOf(Float), "1.0000");
    Enter(Whole, "99999999999");
    EXPECT_EQ(Whole.GetInt(), INT_MAX);
    Enter(Whole, "-99999999999");
    EXPECT_EQ(Whole.GetInt(), INT_MIN);
}

TEST_F(NumberInput, WholeNumbersAreHeldExactly)
{
    for (const int value : {16777217, INT_MAX, INT_MIN, INT_MAX - 1, -123456789}) {
        Whole.ShowValue(value);
        EXPECT_EQ(Whole.GetInt(), value);
        EXPECT_EQ(TextOf(Whole), std::to_string(value));
        Whole.SetValue(0);
        Enter(Whole, std::to_string(value));
        EXPECT_EQ(Whole.GetInt(), value);
    }
}

TEST_F(NumberInput, ASetValueIsClampedAndOneOfTheDocumentIsShownAsItIs)
{
    Float.SetRange(0, 1);
    Float.SetValue(2);
    EXPECT_EQ(Float.GetValue(), 1.0);
    Float.ShowValue(2);
    EXPECT_EQ(Float.GetValue(), 2.0);
    EXPECT_EQ(TextOf(Float), "2.0000");
    Focus(Float);
    Key(KEY_RETURN);
    EXPECT_EQ(Float.GetValue(), 2.0);
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(NumberInput, WhatIsNotFiniteIsShownAsItPrints)
{
    Float.ShowValue(std::numeric_limits<double>::infinity());
    EXPECT_EQ(TextOf(Float), "inf");
    Float.ShowValue(-std::numeric_limits<double>::infinity());
    EXPECT_EQ(TextOf(Float), "-inf");
    Float.ShowValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(TextOf(Float), "nan");
    Focus(Float);
    Key(KEY_UP);
    EXPECT_EQ(TextOf(Float), "nan");
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
    Type("1");
    Key(KEY_RETURN);
    EXPECT_EQ(Float.GetValue(), 1.0);
    EXPECT_EQ(CountChanges(Float), 1);
}

TEST_F(NumberInput, TheProgramsOwnChangesSendNothing)
{
    Float.SetValue(4);
    Float.ShowValue(5);
    Float.SetFormat("%.2f");
    EXPECT_EQ(TextOf(Float), "5.00");
    EXPECT_TRUE(Panel.Events.empty());
}

TEST_F(NumberInput, ARefreshWithTheSameValueLeavesWhatIsBeingTyped)
{
    Float.SetValue(4);
    Focus(Float);
    Type("12");
    Float.ShowValue(4);
    EXPECT_EQ(TextOf(Float), "12");
    Float.ShowValue(5);
    EXPECT_EQ(TextOf(Float), "5.0000");
    Key(KEY_RETURN);
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
}

TEST_F(NumberInput, UpAndDownStepAFieldWithTheFocus)
{
    Focus(Float);
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_EQ(TextOf(Float), "0.1000");
    EXPECT_TRUE(Key(KEY_UP, KF_SHIFT));
    EXPECT_EQ(TextOf(Float), "1.1000");
    EXPECT_TRUE(Key(KEY_DOWN, KF_CTRL));
    EXPECT_EQ(TextOf(Float), "1.0900");
    EXPECT_TRUE(Key(KEY_DOWN));
    EXPECT_EQ(TextOf(Float), "0.9900");
    EXPECT_EQ(CountChanges(Float), 4);
    Focus(Whole);
    Key(KEY_UP);
    Key(KEY_UP, KF_SHIFT);
    // A whole number has no tenths.
    Key(KEY_UP, KF_CTRL);
    EXPECT_EQ(Whole.GetInt(), 12);
}

TEST_F(NumberInput, StepsFromARoundValueLeadToRoundValues)
{
    Focus(Float);
    for (int i = 0; i < 1000; ++i)
        Key(KEY_UP);
    EXPECT_EQ(static_cast<float>(Float.GetValue()), 100.0f);
    Float.ShowValue(0.1f);
    Key(KEY_UP);
    EXPECT_EQ(static_cast<float>(Float.GetValue()), 0.2f);
    Float.ShowValue(0.25);
    Key(KEY_UP);
    EXPECT_EQ(static_cast<float>(Float.GetValue()), 0.35f);
    Float.SetValue(0.1234567);
    Key(KEY_UP);
    EXPECT_NEAR(Float.GetValue(), 0.2234567, 1e-12);
}

TEST_F(NumberInput, AStepBeginsAtWhatWasTypedAndBothAreOneChange)
{
    Focus(Float);
    Type("5");
    Key(KEY_UP);
    EXPECT_EQ(TextOf(Float), "5.1000");
    EXPECT_EQ(CountChanges(Float), 1);
    // No number: the shown value is where it begins.
    Key(KEY_DELETE);
    Type("-");
    Key(KEY_UP);
    EXPECT_EQ(TextOf(Float), "5.2000");
}

TEST_F(NumberInput, AStepFromWhatWasTypedBackToTheValueIsShownAndNoChange)
{
    Whole.SetValue(5);
    Focus(Whole);
    Type("4");
    Key(KEY_UP);
    EXPECT_EQ(Whole.GetInt(), 5);
    EXPECT_EQ(TextOf(Whole), "5");
    EXPECT_EQ(CountChanges(Whole), 0);
}

TEST_F(NumberInput, StepsEndAtTheRangeWithoutAnEvent)
{
    Float.SetRange(0, 1);
    Float.SetValue(0.95);
    Focus(Float);
    Key(KEY_UP);
    EXPECT_EQ(Float.GetValue(), 1.0);
    EXPECT_EQ(CountChanges(Float), 1);
    Key(KEY_UP);
    EXPECT_EQ(CountChanges(Float), 1);
    // What the document holds beyond the end is not brought back by a step away from it.
    Float.ShowValue(3);
    Key(KEY_UP);
    EXPECT_EQ(Float.GetValue(), 3.0);
    EXPECT_EQ(CountChanges(Float), 1);
    Key(KEY_DOWN);
    EXPECT_EQ(Float.GetValue(), 1.0);
    Whole.SetValue(INT_MAX);
    Focus(Whole);
    Key(KEY_UP);
    EXPECT_EQ(Whole.GetInt(), INT_MAX);
}

TEST_F(NumberInput, TheWheelStepsTheFieldThatHasTheFocusAndThePointer)
{
    EXPECT_FALSE(Wheel(20, 29, 120));
    Focus(Float);
    EXPECT_TRUE(Wheel(20, 29, 120));
    EXPECT_EQ(TextOf(Float), "0.1000");
    EXPECT_TRUE(Wheel(20, 29, -240));
    EXPECT_EQ(TextOf(Float), "-0.1000");
    EXPECT_TRUE(Wheel(20, 29, 120, KF_SHIFT));
    EXPECT_EQ(TextOf(Float), "0.9000");
    EXPECT_TRUE(Wheel(20, 29, 120, KF_CTRL));
    EXPECT_EQ(TextOf(Float), "0.9100");
    // Parts of a notch add up.
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Wheel(20, 29, 30));
    EXPECT_EQ(TextOf(Float), "1.0100");
    Mouse(MT_MOUSEMOVE, 300, 200);
    EXPECT_FALSE(Wheel(300, 200, 120));
    EXPECT_EQ(TextOf(Float), "1.0100");
    EXPECT_EQ(CountEvents(RE_WHEEL), 1);
}

TEST_F(NumberInput, TheArrowsStepAndGiveTheFieldTheFocus)
{
    Press(100, 24);
    EXPECT_EQ(TextOf(Float), "0.1000");
    EXPECT_TRUE(Float.GetEdit().IsFocused());
    Release(100, 24);
    Press(100, 34);
    Release(100, 34);
    EXPECT_EQ(TextOf(Float), "0.0000");
    EXPECT_EQ(CountChanges(Float), 2);
}

TEST_F(NumberInput, APasteKeepsOnlyWhatMakesANumber)
{
    const struct
    {
        const char* Text;
        const char* Float;
        const char* Whole;
    } cases[] = {{"12.5", "12.5", "12"},    {" 12.5 px", "12.5", "12"}, {"x = -3", "-3", "-3"},
                 {"1, 2, 3", "1", "1"},     {"1-2", "1", "1"},          {"1.2.3", "1.2", "1"},
                 {"1.5e-3", "0.0015", "1"}, {"\n7\n", "7", "7"},        {"two", "0.0000", "0"},
                 {"-", "0.0000", "0"}};
    for (const auto& test : cases) {
        SetClipboardText(test.Text);
        Focus(Float);
        Key(KEY_ESCAPE);
        Float.GetEdit().Paste();
        EXPECT_EQ(TextOf(Float), test.Float) << test.Text;
        Float.SetValue(0);
        Focus(Whole);
        Whole.GetEdit().Paste();
        EXPECT_EQ(TextOf(Whole), test.Whole) << test.Text;
        Whole.SetValue(0);
    }
}

TEST_F(NumberInput, WhatIsReadOnlyShowsItsValueAndTakesNoInput)
{
    Float.SetReadOnly(true);
    Float.ShowValue(1);
    EXPECT_FALSE(Click(20, 29));
    EXPECT_FALSE(Click(100, 24));
    Float.StepBy(1, false, false);
    EXPECT_EQ(TextOf(Float), "1.0000");
    EXPECT_FALSE(Float.GetEdit().IsFocused());
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
    EXPECT_EQ(CountEvents(RE_LEFTDOWN), 2);
}

TEST_F(NumberInput, AChangeMayTakeTheInputAway)
{
    auto input = std::make_unique<TNumberInput>(Host);
    input->Build(TVector2(100, 18), true);
    input->SetOrigin(TVector2(200, 20));
    Panel.AddObject(input.get());
    Panel.OnChange = [&] { input.reset(); };
    Click(210, 29);
    Type("4");
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(input, nullptr);
    EXPECT_EQ(TRenderObject::GetFocus(), &Panel);
}

TEST_F(NumberInput, ZeroHasNoSign)
{
    Float.SetValue(0.3);
    Focus(Float);
    for (int i = 0; i < 3; ++i)
        Key(KEY_DOWN);
    EXPECT_EQ(TextOf(Float), "0.0000");
    Enter(Float, "-0");
    EXPECT_EQ(TextOf(Float), "0.0000");
    Enter(Whole, "-0");
    EXPECT_EQ(TextOf(Whole), "0");
}
