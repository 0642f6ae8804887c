#include "controltest.h"

#include "library/containers/classregistry.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/controls.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"
#include "particles/cindermill/interface/controls/numberinput.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/scrollpane.h"
#include "particles/cindermill/interface/controls/tickbox.h"

namespace {

// Three numbers, the last two in a group, and a text.
class FieldWalk : public TControlTest
{
protected:
    void SetUp() override
    {
        TControlTest::SetUp();
        float y = 10;
        for (TNumberInput* number : {&First, &Second, &Third}) {
            number->Build(TVector2(100, 18), true);
            number->SetOrigin(TVector2(10, y));
            y += 24;
        }
        Text.Build(TVector2(100, 18));
        Text.SetOrigin(TVector2(10, y));
        Panel.AddObject(&First);
        Group.AddObject(&Second);
        Group.AddObject(&Third);
        Panel.AddObject(&Group);
        Panel.AddObject(&Text);
        Click(20, 15);
        ASSERT_TRUE(First.GetEdit().IsFocused());
    }
    TTextEdit* Tab(int keyFlags = 0)
    {
        EXPECT_TRUE(Key(KEY_TAB, keyFlags));
        return TTextEdit::GetFocused();
    }

    TNumberInput First{Host};
    TNumberInput Second{Host};
    TNumberInput Third{Host};
    TTextEdit Text{Host};
    class TGroup : public TRenderObjects
    {
        uint32_t GetClassId() const override { return 0; }
    };
    TGroup Group;
};

} // namespace

TEST_F(FieldWalk, TabWalksTheFieldsOfThePanelInTheOrderOfTheTree)
{
    EXPECT_EQ(Tab(), &Second.GetEdit());
    EXPECT_EQ(Tab(), &Third.GetEdit());
    EXPECT_EQ(Tab(), &Text);
    EXPECT_EQ(Tab(), &First.GetEdit());
}

TEST_F(FieldWalk, ShiftTabWalksBack)
{
    EXPECT_EQ(Tab(KF_SHIFT), &Text);
    EXPECT_EQ(Tab(KF_SHIFT), &Third.GetEdit());
    EXPECT_EQ(Tab(KF_SHIFT), &Second.GetEdit());
    EXPECT_EQ(Tab(KF_SHIFT), &First.GetEdit());
}

TEST_F(FieldWalk, TheFieldReachedIsSelected)
{
    Tab();
    int first = 0;
    int end = 0;
    Second.GetEdit().GetSelection(first, end);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(end, 6);
    Type("5");
    EXPECT_STREQ(Second.GetEdit().GetText(), "5");
}

TEST_F(FieldWalk, TheInputOfTheFieldThatIsLeftEnds)
{
    Type("5");
    Tab();
    EXPECT_EQ(First.GetValue(), 5.0);
    EXPECT_EQ(CountChanges(First), 1);
}

TEST_F(FieldWalk, WhatIsHiddenOrReadOnlyIsPassedOver)
{
    Second.SetReadOnly(true);
    EXPECT_EQ(Tab(), &Third.GetEdit());
    TRenderObject::SetFocus(&First.GetEdit(), &Renderer);
    Panel.RemoveObject(&Group);
    EXPECT_EQ(Tab(), &Text);
    EXPECT_EQ(Tab(), &First.GetEdit());
}

TEST_F(FieldWalk, AnotherPanelsFieldsAreNotReached)
{
    TPanel world;
    TPanel other;
    TTextEdit alone(Host);
    world.AddObject(&Panel);
    world.AddObject(&other);
    other.AddObject(&alone);
    EXPECT_EQ(FindNextField(Text, false), &First);
    EXPECT_EQ(FindNextField(alone, false), nullptr);
}

TEST_F(FieldWalk, AFieldWithoutAnotherIsEnteredAndKeepsTheFocus)
{
    Panel.RemoveObject(&Group);
    Panel.RemoveObject(&Text);
    Type("5");
    EXPECT_EQ(Tab(), &First.GetEdit());
    EXPECT_EQ(CountChanges(First), 1);
}

TEST_F(FieldWalk, AScrolledPaneShowsTheFieldThatIsReached)
{
    TScrollPane pane(Host);
    pane.Build(TVector2(120, 40));
    pane.SetOrigin(TVector2(200, 10));
    TTextEdit fields[2] = {TTextEdit(Host), TTextEdit(Host)};
    float y = 0;
    for (TTextEdit& field : fields) {
        field.Build(TVector2(100, 18));
        field.SetOrigin(TVector2(0, y));
        pane.GetContent().AddObject(&field);
        y += 100;
    }
    Panel.AddObject(&pane);
    TRenderObject::SetFocus(&fields[0], &Renderer);
    EXPECT_EQ(Tab(), &fields[1]);
    EXPECT_EQ(pane.GetScroll(), 78.0f);
}

TEST(ControlClasses, AreKnownByTheirNames)
{
    RegisterControlClasses();
    for (const char* name : {"TStatic", "TUpDown", "TTextEdit", "TNumberInput", "TComboBox", "TComboDropDown",
                             "TScrollBar", "TScrollPane", "TScrollPip", "TPushButton", "TTickBox"}) {
        const int id = FindClassByName(name);
        ASSERT_NE(id, -1) << name;
        EXPECT_TRUE(IsClassA(id, FindClassByName("TRenderObject"))) << name;
        EXPECT_STREQ(GetClassName(id), name);
    }
}

TEST_F(FieldWalk, TabWalksOtherControlsToo)
{
    TTickBox tick(Host);
    tick.Build("Open");
    TComboBox combo(Host);
    combo.Build(TVector2(100, 18));
    TPushButton button(Host);
    button.Build("More", TVector2(40, 18));
    Panel.RemoveObject(&Text);
    TRenderObject* const others[] = {&tick, &combo, &button, &Text};
    for (TRenderObject* object : others)
        Panel.AddObject(object);
    TRenderObject::SetFocus(&Third.GetEdit(), &Renderer);
    for (TRenderObject* object : others) {
        Tab();
        EXPECT_EQ(TRenderObject::GetFocus(), object);
    }
    EXPECT_EQ(Tab(), &First.GetEdit());
    Tab(KF_SHIFT);
    Tab(KF_SHIFT);
    EXPECT_EQ(TRenderObject::GetFocus(), &button);
    // What takes no presses takes no keys either.
    combo.SetEnabled(false);
    Tab(KF_SHIFT);
    EXPECT_EQ(TRenderObject::GetFocus(), &tick);
    Type(" ");
    EXPECT_TRUE(tick.IsChecked());
}
