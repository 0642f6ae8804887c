#include "controltest.h"

#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/pushbutton.h"

#include <memory>

namespace {

constexpr float Row = TComboDropDown::RowHeight;

// A combo box from (10, 20), 100 by 18, with five texts; a button right of it.
class ComboBox : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        Fill(Combo, 5);
        Combo.SetOrigin(TVector2(10, 20));
        Panel.AddObject(&Combo);
        Button.Build("...", TVector2(40, 18));
        Button.SetOrigin(TVector2(300, 20));
        Panel.AddObject(&Button);
    }
    static void Fill(TComboBox& combo, int count)
    {
        combo.Build(TVector2(100, 18));
        for (int i = 0; i < count; ++i)
            combo.AddString((std::string(1, static_cast<char>('A' + i)) + " text").c_str(), 10 * i);
        combo.SetSelection(1);
    }
    void Open() { Click(20, 29); }
    // The middle of a row of the list that opens below.
    static double RowY(int row) { return 38 + 2 + Row * (row + 0.5); }

    TComboBox Combo{Host};
    TPushButton Button{Host};
};

} // namespace

TEST_F(ComboBox, HoldsItsTextsAndTheOwnersData)
{
    EXPECT_EQ(Combo.GetNumStrings(), 5);
    EXPECT_STREQ(Combo.GetString(2), "C text");
    EXPECT_EQ(Combo.GetData(2), 20);
    EXPECT_EQ(Combo.GetSelection(), 1);
    Combo.Clear();
    EXPECT_EQ(Combo.GetNumStrings(), 0);
    EXPECT_EQ(Combo.GetSelection(), -1);
    EXPECT_TRUE(Panel.Events.empty());
}

TEST_F(ComboBox, AClickOpensTheListInTheViewThatItIsMadeIn)
{
    TRenderer other;
    TFakeWindow window(400, 300);
    other.Init(&window);
    Open();
    EXPECT_TRUE(Combo.IsOpen());
    EXPECT_EQ(TRenderObject::FindOverlay(Renderer, Panel), &Combo.GetList());
    EXPECT_EQ(TRenderObject::FindOverlay(other, Panel), nullptr);
    EXPECT_EQ(Combo.GetList().GetMarked(), 1);
}

TEST_F(ComboBox, AClickInTheListChooses)
{
    Open();
    EXPECT_TRUE(Click(20, RowY(3)));
    EXPECT_EQ(Combo.GetSelection(), 3);
    EXPECT_FALSE(Combo.IsOpen());
    EXPECT_EQ(CountChanges(Combo), 1);
}

TEST_F(ComboBox, ChoosingWhatIsChosenSendsNothing)
{
    Open();
    Click(20, RowY(1));
    EXPECT_FALSE(Combo.IsOpen());
    EXPECT_EQ(CountChanges(Combo), 0);
}

TEST_F(ComboBox, TheButtonMayStayDownUpToTheRow)
{
    Press(20, 29);
    Move(20, RowY(2));
    EXPECT_EQ(Combo.GetList().GetMarked(), 2);
    Release(20, RowY(2));
    EXPECT_EQ(Combo.GetSelection(), 2);
    EXPECT_EQ(CountChanges(Combo), 1);
    EXPECT_FALSE(Combo.IsOpen());
}

TEST_F(ComboBox, APressOutsideClosesTheListAndIsConsumed)
{
    Open();
    EXPECT_TRUE(Click(310, 25));
    EXPECT_FALSE(Combo.IsOpen());
    EXPECT_EQ(CountChanges(Button), 0);
    EXPECT_EQ(CountChanges(Combo), 0);
    EXPECT_TRUE(Click(310, 25));
    EXPECT_EQ(CountChanges(Button), 1);
    // Nothing is there.
    Open();
    EXPECT_TRUE(Mouse(MT_LEFTDOWN, 390, 290));
    EXPECT_FALSE(Combo.IsOpen());
}

TEST_F(ComboBox, APressOnItselfClosesIt)
{
    Open();
    Open();
    EXPECT_FALSE(Combo.IsOpen());
}

TEST_F(ComboBox, EscapeClosesIt)
{
    Open();
    Key(KEY_DOWN);
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_FALSE(Combo.IsOpen());
    EXPECT_EQ(Combo.GetSelection(), 1);
    EXPECT_EQ(CountChanges(Combo), 0);
}

TEST_F(ComboBox, LossOfTheFocusClosesIt)
{
    Open();
    TRenderObject::SetFocus(&Button, &Renderer);
    EXPECT_FALSE(Combo.IsOpen());
    Open();
    LoseWindowFocus();
    EXPECT_FALSE(Combo.IsOpen());
}

TEST_F(ComboBox, WhatTakesItOutOfTheTreeClosesIt)
{
    Open();
    Panel.RemoveObject(&Combo);
    EXPECT_EQ(TRenderObject::GetOverlay(), nullptr);
    EXPECT_EQ(CountChanges(Combo), 0);
    auto combo = std::make_unique<TComboBox>(Host);
    Fill(*combo, 3);
    combo->SetOrigin(TVector2(10, 20));
    Panel.AddObject(combo.get());
    Press(20, 29);
    ASSERT_EQ(TRenderObject::GetOverlay(), &combo->GetList());
    combo.reset();
    EXPECT_EQ(TRenderObject::GetOverlay(), nullptr);
    EXPECT_FALSE(Host.IsDragging());
}

TEST_F(ComboBox, AListOpensUpwardsWhereThereIsNoRoomBelow)
{
    Open();
    EXPECT_FALSE(Combo.GetList().IsUpwards());
    Key(KEY_ESCAPE);
    Combo.SetOrigin(TVector2(10, 270));
    Click(20, 279);
    EXPECT_TRUE(Combo.GetList().IsUpwards());
    // Its last row ends where the combo box begins.
    EXPECT_TRUE(Click(20, 270 - 2 - Row * 0.5));
    EXPECT_EQ(Combo.GetSelection(), 4);
}

TEST_F(ComboBox, AListScrollsBeyond12Rows)
{
    Combo.Clear();
    Fill(Combo, 12);
    Open();
    EXPECT_EQ(Combo.GetList().GetNumRows(), 12);
    Key(KEY_ESCAPE);
    Combo.Clear();
    Fill(Combo, 20);
    Combo.SetSelection(15);
    Open();
    EXPECT_EQ(Combo.GetList().GetNumRows(), 12);
    // What is chosen is in sight.
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 4);
    Mouse(MT_MOUSEMOVE, 20, RowY(1));
    EXPECT_TRUE(Wheel(20, RowY(1), 120));
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 1);
    EXPECT_TRUE(Wheel(20, RowY(1), 1200));
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 0);
    Click(20, RowY(0));
    EXPECT_EQ(Combo.GetSelection(), 0);
}

TEST_F(ComboBox, TheStripAtTheRightScrolls)
{
    Combo.Clear();
    Fill(Combo, 24);
    Open();
    TVector2 min;
    TVector2 max;
    const_cast<TComboDropDown&>(Combo.GetList()).GetBounds(min, max);
    const double x = 10 + max[0] - 3;
    Press(x, RowY(11));
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 12);
    Move(x, 0);
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 0);
    Release(x, 0);
    EXPECT_TRUE(Combo.IsOpen());
    EXPECT_EQ(CountChanges(Combo), 0);
}

TEST_F(ComboBox, TheWheelIsTakenOnlyWhileThePointerIsInTheOpenList)
{
    Combo.Clear();
    Fill(Combo, 20);
    Click(20, 29);
    EXPECT_FALSE(Wheel(390, 290, -120));
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 0);
    Mouse(MT_MOUSEMOVE, 20, RowY(1));
    EXPECT_TRUE(Wheel(20, RowY(1), -120));
    EXPECT_EQ(Combo.GetList().GetFirstRow(), 3);
    Key(KEY_ESCAPE);
    EXPECT_FALSE(Wheel(20, 29, -120));
    EXPECT_EQ(Combo.GetSelection(), 1);
}

TEST_F(ComboBox, ArrowKeysChangeTheChoiceOfAClosedOne)
{
    TRenderObject::SetFocus(&Combo, &Renderer);
    EXPECT_TRUE(Key(KEY_DOWN));
    EXPECT_EQ(Combo.GetSelection(), 2);
    EXPECT_EQ(CountChanges(Combo), 1);
    Key(KEY_UP);
    Key(KEY_UP);
    EXPECT_TRUE(Key(KEY_UP));
    EXPECT_EQ(Combo.GetSelection(), 0);
    EXPECT_EQ(CountChanges(Combo), 3);
    Key(KEY_END);
    EXPECT_EQ(Combo.GetSelection(), 4);
    Key(KEY_HOME);
    EXPECT_EQ(Combo.GetSelection(), 0);
    EXPECT_TRUE(Type("d"));
    EXPECT_EQ(Combo.GetSelection(), 3);
}

TEST_F(ComboBox, ArrowKeysWalkAnOpenListAndReturnChooses)
{
    Open();
    Key(KEY_DOWN);
    Key(KEY_DOWN);
    EXPECT_EQ(Combo.GetList().GetMarked(), 3);
    EXPECT_EQ(Combo.GetSelection(), 1);
    EXPECT_EQ(CountChanges(Combo), 0);
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(Combo.GetSelection(), 3);
    EXPECT_EQ(CountChanges(Combo), 1);
    EXPECT_FALSE(Combo.IsOpen());
}

TEST_F(ComboBox, WhatIsSetSendsNothing)
{
    Combo.SetSelection(4);
    Combo.SetSelection(-1);
    EXPECT_EQ(Combo.GetSelection(), -1);
    EXPECT_TRUE(Panel.Events.empty());
    Open();
    Key(KEY_DOWN);
    Key(KEY_RETURN);
    EXPECT_EQ(Combo.GetSelection(), 0);
}

TEST_F(ComboBox, DisabledOrEmptyItDoesNotOpen)
{
    Combo.SetEnabled(false);
    EXPECT_FALSE(Click(20, 29));
    EXPECT_FALSE(Combo.IsOpen());
    Combo.SetEnabled(true);
    Combo.Clear();
    EXPECT_TRUE(Click(20, 29));
    EXPECT_FALSE(Combo.IsOpen());
    Key(KEY_DOWN);
    EXPECT_EQ(Combo.GetSelection(), -1);
}

TEST_F(ComboBox, AListAsHighAsTheViewCanStillBeRead)
{
    Combo.Clear();
    Fill(Combo, 12);
    // At twice the size the view is 150 units high.
    Renderer.SetScale(TVector2(2, 2));
    Click(40, 58);
    EXPECT_TRUE(Combo.IsOpen());
    EXPECT_EQ(Combo.GetList().GetNumRows(), 6);
}

TEST_F(ComboBox, AChoiceMayTakeItAway)
{
    auto combo = std::make_unique<TComboBox>(Host);
    Fill(*combo, 3);
    combo->SetOrigin(TVector2(150, 20));
    Panel.AddObject(combo.get());
    Panel.OnChange = [&] { combo.reset(); };
    Click(160, 29);
    Click(160, RowY(2));
    EXPECT_EQ(combo, nullptr);
}

TEST_F(ComboBox, AListGoesWithThePanelThatItsComboBoxStandsIn)
{
    TPanel inner;
    TComboBox combo(Host);
    Fill(combo, 3);
    combo.SetOrigin(TVector2(150, 20));
    inner.AddObject(&combo);
    Panel.AddObject(&inner);
    Press(160, 29);
    ASSERT_TRUE(combo.IsOpen());
    Panel.RemoveObject(&inner);
    EXPECT_FALSE(combo.IsOpen());
    // The button that opened it is still held.
    if (Host.IsDragging())
        Release(160, RowY(2));
    EXPECT_EQ(combo.GetSelection(), 1);
    for (const TRenderEvent& event : inner.Events)
        EXPECT_NE(event.Code, RE_VALUECHANGED);
}
