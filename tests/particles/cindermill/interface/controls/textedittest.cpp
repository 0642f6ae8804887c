#include "controltest.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/textedit.h"

#include <memory>

namespace {

// A field from (10, 20), 100 by 18, and one below it.
class TextEdit : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        TTextEdit* const edits[] = {&Edit, &Other};
        float y = 20;
        for (TTextEdit* edit : edits) {
            edit->Build(TVector2(100, 18));
            edit->SetOrigin(TVector2(10, y));
            Panel.AddObject(edit);
            y += 40;
        }
        Edit.SetText("two words");
    }
    // In the middle of the field, so far from where its text begins.
    bool ClickAt(float x, int keyFlags = 0) { return Click(14 + x, 29, keyFlags); }
    // Where a part of the text ends, from where the text begins.
    static float WidthOf(const char* text)
    {
        TFontInstance font;
        font.Create(ControlFont, 10);
        TVector2 size;
        font.GetTextSize(text, size);
        return size[0];
    }
    // So long that the next press is no second one of a double click.
    void Pause() { Wait(500); }
    std::string Selected() const
    {
        int first = 0;
        int end = 0;
        Edit.GetSelection(first, end);
        return std::string(Edit.GetText().Print())
            .substr(static_cast<size_t>(first), static_cast<size_t>(end - first));
    }

    TTextEdit Edit{Host};
    TTextEdit Other{Host};
};

} // namespace

TEST_F(TextEdit, TheFirstClickSelectsAllAndAFurtherOneSetsTheCaret)
{
    EXPECT_TRUE(ClickAt(WidthOf("tw")));
    EXPECT_TRUE(Edit.IsFocused());
    EXPECT_EQ(Selected(), "two words");
    Pause();
    ClickAt(WidthOf("tw"));
    EXPECT_EQ(Selected(), "");
    EXPECT_EQ(Edit.GetCaret(), 2);
    Pause();
    ClickAt(90);
    EXPECT_EQ(Edit.GetCaret(), 9);
}

TEST_F(TextEdit, TwoPressesWithinFourTenthsOfASecondSelectAWord)
{
    ClickAt(WidthOf("two w"));
    Wait(390);
    ClickAt(WidthOf("two w"));
    EXPECT_EQ(Selected(), "words");
    Pause();
    ClickAt(2);
    Wait(410);
    ClickAt(2);
    EXPECT_EQ(Selected(), "");
    // At another place they are two clicks.
    Pause();
    ClickAt(2);
    Wait(100);
    ClickAt(WidthOf("two wor"));
    EXPECT_EQ(Selected(), "");
}

TEST_F(TextEdit, ADragSelectsARange)
{
    Press(14 + WidthOf("t"), 29);
    Move(14 + WidthOf("two w"), 60);
    EXPECT_EQ(Selected(), "wo w");
    EXPECT_EQ(Edit.GetCaret(), 5);
    Move(-100, 29);
    EXPECT_EQ(Selected(), "t");
    Release(-100, 29);
    EXPECT_FALSE(Host.IsDragging());
    EXPECT_EQ(Selected(), "t");
}

TEST_F(TextEdit, AHandThatIsNotStillDragsNothing)
{
    Press(30, 29);
    Move(32, 30);
    Release(32, 30);
    EXPECT_EQ(Selected(), "two words");
}

TEST_F(TextEdit, AShiftClickSelectsUpToIt)
{
    ClickAt(0);
    Pause();
    ClickAt(WidthOf("t"));
    Pause();
    ClickAt(WidthOf("two"), KF_SHIFT);
    EXPECT_EQ(Selected(), "wo");
}

TEST_F(TextEdit, TypingTakesThePlaceOfTheSelection)
{
    ClickAt(0);
    EXPECT_TRUE(Type("abc"));
    EXPECT_STREQ(Edit.GetText(), "abc");
    EXPECT_TRUE(Edit.IsEdited());
    EXPECT_EQ(CountChanges(Edit), 0);
}

TEST_F(TextEdit, ReturnEntersOnceAndKeepsTheFieldSelected)
{
    ClickAt(0);
    Type("abc");
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(CountChanges(Edit), 1);
    EXPECT_TRUE(Edit.IsFocused());
    EXPECT_FALSE(Edit.IsEdited());
    EXPECT_EQ(Selected(), "abc");
    EXPECT_TRUE(Key(KEY_RETURN));
    EXPECT_EQ(CountChanges(Edit), 1);
}

TEST_F(TextEdit, EscapePutsTheOldTextBack)
{
    ClickAt(0);
    Type("abc");
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_STREQ(Edit.GetText(), "two words");
    EXPECT_EQ(Selected(), "two words");
    EXPECT_TRUE(Edit.IsFocused());
    Key(KEY_RETURN);
    EXPECT_EQ(CountChanges(Edit), 0);
}

TEST_F(TextEdit, LossOfTheFocusEndsTheInput)
{
    ClickAt(0);
    Type("abc");
    Click(20, 65);
    EXPECT_TRUE(Other.IsFocused());
    EXPECT_EQ(CountChanges(Edit), 1);
    EXPECT_STREQ(Edit.GetText(), "abc");
    Type("x");
    LoseWindowFocus();
    EXPECT_EQ(CountChanges(Other), 1);
}

TEST_F(TextEdit, TheSameTextTypedAgainIsNoChange)
{
    ClickAt(0);
    Type("two words");
    Key(KEY_RETURN);
    Click(20, 65);
    EXPECT_EQ(CountChanges(Edit), 0);
}

TEST_F(TextEdit, WhatIsSetSendsNothingAndDropsWhatWasTyped)
{
    ClickAt(0);
    Type("abc");
    Edit.SetText("new");
    EXPECT_STREQ(Edit.GetText(), "new");
    Click(20, 65);
    EXPECT_EQ(CountChanges(Edit), 0);
}

TEST_F(TextEdit, KeysThatEditAreConsumedAlsoWhereTheyDoNothing)
{
    Edit.SetText("");
    ClickAt(0);
    for (const int key :
         {KEY_DELETE, KEY_BACKSPACE, KEY_ESCAPE, KEY_LEFT, KEY_RIGHT, KEY_HOME, KEY_END, KEY_RETURN, KEY_TAB})
        EXPECT_TRUE(Key(key)) << key;
    EXPECT_EQ(CountEvents(RE_KEY), 0);
    EXPECT_STREQ(Edit.GetText().Print(), "");
}

TEST_F(TextEdit, UpAndDownGoOnToTheParent)
{
    ClickAt(0);
    Key(KEY_UP);
    Key(KEY_DOWN);
    EXPECT_EQ(CountEvents(RE_KEY), 2);
}

TEST_F(TextEdit, CharactersOutsideOf32To126AreConsumedAndNoText)
{
    ClickAt(0);
    for (const uint32_t character : {8u, 13u, 31u, 127u, 0xe4u, 0x20acu}) {
        TMessage message;
        message.Type = MT_CHAR;
        message.Character = character;
        EXPECT_TRUE(Route(message));
    }
    EXPECT_STREQ(Edit.GetText(), "two words");
    Type(" ~");
    EXPECT_STREQ(Edit.GetText(), " ~");
}

TEST_F(TextEdit, OnlyAllowedCharactersAreTyped)
{
    Edit.SetAllowed("abc");
    ClickAt(0);
    EXPECT_TRUE(Type("xaybzc"));
    EXPECT_STREQ(Edit.GetText(), "abc");
}

TEST_F(TextEdit, ArrowsMoveTheCaretAndLeaveASelectionAtItsSide)
{
    ClickAt(0);
    Key(KEY_LEFT);
    EXPECT_EQ(Edit.GetCaret(), 0);
    EXPECT_EQ(Selected(), "");
    Key(KEY_LEFT);
    EXPECT_EQ(Edit.GetCaret(), 0);
    Key(KEY_RIGHT);
    EXPECT_EQ(Edit.GetCaret(), 1);
    Edit.SelectAll();
    Key(KEY_RIGHT);
    EXPECT_EQ(Edit.GetCaret(), 9);
    EXPECT_EQ(Selected(), "");
    Key(KEY_RIGHT);
    EXPECT_EQ(Edit.GetCaret(), 9);
    Key(KEY_HOME);
    EXPECT_EQ(Edit.GetCaret(), 0);
    Key(KEY_END);
    EXPECT_EQ(Edit.GetCaret(), 9);
}

TEST_F(TextEdit, ShiftSelectsWithArrowsHomeAndEnd)
{
    ClickAt(0);
    Key(KEY_HOME);
    Key(KEY_RIGHT, KF_SHIFT);
    Key(KEY_RIGHT, KF_SHIFT);
    EXPECT_EQ(Selected(), "tw");
    Key(KEY_LEFT, KF_SHIFT);
    EXPECT_EQ(Selected(), "t");
    Key(KEY_END, KF_SHIFT);
    EXPECT_EQ(Selected(), "two words");
    Key(KEY_END);
    Key(KEY_LEFT);
    Key(KEY_HOME, KF_SHIFT);
    EXPECT_EQ(Selected(), "two word");
}

TEST_F(TextEdit, CtrlStepsByWord)
{
    Edit.SetText("two  words, more");
    ClickAt(0);
    Key(KEY_HOME);
    std::vector<int> places;
    for (int i = 0; i < 4; ++i) {
        Key(KEY_RIGHT, KF_CTRL);
        places.push_back(Edit.GetCaret());
    }
    EXPECT_EQ(places, (std::vector<int>{5, 10, 12, 16}));
    places.clear();
    for (int i = 0; i < 5; ++i) {
        Key(KEY_LEFT, KF_CTRL);
        places.push_back(Edit.GetCaret());
    }
    EXPECT_EQ(places, (std::vector<int>{12, 10, 5, 0, 0}));
    Key(KEY_RIGHT, KF_CTRL | KF_SHIFT);
    EXPECT_EQ(Selected(), "two  ");
}

TEST_F(TextEdit, BackspaceAndDeleteEraseBesideTheCaretOrTheSelection)
{
    ClickAt(0);
    Key(KEY_END);
    Key(KEY_BACKSPACE);
    EXPECT_STREQ(Edit.GetText(), "two word");
    Key(KEY_DELETE);
    EXPECT_STREQ(Edit.GetText(), "two word");
    Key(KEY_HOME);
    Key(KEY_BACKSPACE);
    EXPECT_STREQ(Edit.GetText(), "two word");
    Key(KEY_DELETE);
    EXPECT_STREQ(Edit.GetText(), "wo word");
    Key(KEY_RIGHT, KF_SHIFT);
    Key(KEY_DELETE);
    EXPECT_STREQ(Edit.GetText(), "o word");
    Key(KEY_END);
    Key(KEY_BACKSPACE, KF_CTRL);
    EXPECT_STREQ(Edit.GetText(), "o ");
    Edit.SelectAll();
    Key(KEY_BACKSPACE);
    EXPECT_TRUE(Edit.GetText().IsEmpty());
    Key(KEY_RETURN);
    EXPECT_EQ(CountChanges(Edit), 1);
}

TEST_F(TextEdit, TheClipboardTakesAndGivesTheSelection)
{
    ClickAt(0);
    Key(KEY_HOME);
    Key(KEY_RIGHT, KF_CTRL | KF_SHIFT);
    Edit.Copy();
    EXPECT_STREQ(Edit.GetText(), "two words");
    Key(KEY_END);
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "two wordstwo ");
    Edit.SelectAll();
    Edit.Cut();
    EXPECT_TRUE(Edit.GetText().IsEmpty());
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "two wordstwo ");
    // Nothing selected leaves the clipboard as it is.
    Edit.Cut();
    Edit.Copy();
    TString text;
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_STREQ(text, "two wordstwo ");
}

TEST_F(TextEdit, PastedLinesBecomeOneAndOnlyAllowedCharactersCome)
{
    SetClipboardText("a\nb\x01\xc3\xa4");
    ClickAt(0);
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "a b");
    Edit.SetAllowed("0123456789");
    Edit.SelectAll();
    SetClipboardText("1x2");
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "12");
    // What holds nothing allowed changes nothing.
    Edit.SelectAll();
    SetClipboardText("xyz");
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "12");
    SetClipboardText("");
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "12");
}

TEST_F(TextEdit, ATextThatIsTooLongIsRefusedAsAWhole)
{
    ClickAt(0);
    const std::string most(TTextEdit::MaxLength, 'm');
    SetClipboardText(most.c_str());
    Edit.Paste();
    EXPECT_EQ(Edit.GetText().Length(), TTextEdit::MaxLength);
    EXPECT_EQ(Host.NumWarnings, 0);
    Type("x");
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), most.c_str());
    EXPECT_EQ(Host.NumWarnings, 2);
}

TEST_F(TextEdit, WhatIsReadOnlyCanBeCopiedAndNotChanged)
{
    Edit.SetReadOnly(true);
    ClickAt(0);
    EXPECT_TRUE(Type("x"));
    EXPECT_TRUE(Key(KEY_DELETE));
    Edit.Cut();
    SetClipboardText("y");
    Edit.Paste();
    EXPECT_STREQ(Edit.GetText(), "two words");
    Edit.Copy();
    TString text;
    GetClipboardText(text);
    EXPECT_STREQ(text, "two words");
}

TEST_F(TextEdit, TheFocusedInputIsEndedPutBackOrDroppedFromOutside)
{
    EXPECT_EQ(TTextEdit::GetFocused(), nullptr);
    TTextEdit::EndFocusedInput();
    ClickAt(0);
    EXPECT_EQ(TTextEdit::GetFocused(), &Edit);
    Type("abc");
    TTextEdit::EndFocusedInput();
    EXPECT_EQ(CountChanges(Edit), 1);
    TTextEdit::EndFocusedInput();
    EXPECT_EQ(CountChanges(Edit), 1);
    Type("x");
    TTextEdit::DropFocusedInput();
    EXPECT_STREQ(Edit.GetText(), "abc");
    Click(20, 65);
    EXPECT_EQ(CountChanges(Edit), 1);
}

TEST_F(TextEdit, AFieldThatIsHiddenEndsItsInput)
{
    ClickAt(0);
    Type("abc");
    Panel.RemoveObject(&Edit);
    EXPECT_EQ(CountChanges(Edit), 1);
    EXPECT_EQ(TRenderObject::GetFocus(), &Panel);
}

TEST_F(TextEdit, AFieldThatGoesDropsItsText)
{
    auto edit = std::make_unique<TTextEdit>(Host);
    edit->Build(TVector2(100, 18));
    edit->SetOrigin(TVector2(200, 20));
    Panel.AddObject(edit.get());
    Press(210, 25);
    Type("abc");
    edit.reset();
    EXPECT_EQ(CountEvents(RE_VALUECHANGED), 0);
    EXPECT_FALSE(Host.IsDragging());
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST_F(TextEdit, AFieldWhoseViewGoesDropsItsText)
{
    auto view = std::make_unique<TRenderer>();
    TFakeWindow window(400, 300);
    window.Focused = true;
    view->Init(&window);
    TMessage message;
    message.Type = MT_LEFTDOWN;
    message.X = 20;
    message.Y = 29;
    TRenderObject::Route(*view, Panel, message);
    Host.Drag(20, 29, 0);
    ASSERT_TRUE(Edit.IsFocused());
    message.Type = MT_CHAR;
    message.Character = 'x';
    TRenderObject::Route(*view, Panel, message);
    ASSERT_TRUE(Edit.IsEdited());
    view.reset();
    Wait(10);
    EXPECT_EQ(CountChanges(Edit), 0);
    EXPECT_STREQ(Edit.GetText(), "two words");
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST_F(TextEdit, TheCaretBlinksWhileItHasTheFocusAndCostsNothingOtherwise)
{
    EXPECT_FALSE(TRenderObject::HasTicks());
    ClickAt(0);
    Host.NumRedraws = 0;
    Wait(3000);
    EXPECT_GE(Host.NumRedraws, 4);
    EXPECT_LE(Host.NumRedraws, 8);
    Panel.RemoveObject(&Other);
    TRenderObject::SetFocus(nullptr);
    EXPECT_FALSE(TRenderObject::HasTicks());
    Host.NumRedraws = 0;
    Wait(3000);
    EXPECT_EQ(Host.NumRedraws, 0);
}

TEST_F(TextEdit, ALongTextScrollsSoThatTheCaretIsInSight)
{
    Edit.SetText("abcdefghijklmnopqrstuvwxyz0123456789");
    ClickAt(0);
    Key(KEY_END);
    Pause();
    ClickAt(90);
    EXPECT_GE(Edit.GetCaret(), 35);
    Key(KEY_HOME);
    Pause();
    ClickAt(0);
    EXPECT_EQ(Edit.GetCaret(), 0);
    // Without the focus its beginning is seen.
    Key(KEY_END);
    Click(20, 65);
    EXPECT_EQ(Edit.GetCaret(), 0);
}

TEST_F(TextEdit, ADragThatTheMouseIsTakenFromLeavesTheSelection)
{
    Press(14, 29);
    Move(14 + WidthOf("two"), 29);
    Host.LoseDrag();
    EXPECT_FALSE(Host.IsDragging());
    EXPECT_EQ(Selected(), "two");
}
