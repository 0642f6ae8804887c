#include "library/wimp/keyboardshortcut.h"

#include "library/wimp/wimp.h"
#include "support/windowtest.h"

namespace {

std::vector<std::pair<int, void*>> Calls;

bool Take(int code, void* context)
{
    Calls.push_back({code, context});
    return true;
}

bool Leave(int code, void* context)
{
    Calls.push_back({code, context});
    return false;
}

class TKeyboardShortcutTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        Calls.clear();
        ShowTopWindow(Window, Class);
    }

    TWindowClass Class{"test_shortcuts"};
    TRecordingWindow Window;
};

} // namespace

TEST_F(TKeyboardShortcutTest, ModifierBitsAreThoseOfTheTable)
{
    EXPECT_EQ(SM_SHIFT, 0x10000);
    EXPECT_EQ(SM_CTRL, 0x20000);
    EXPECT_EQ(SM_ALT, 0x40000);
}

TEST_F(TKeyboardShortcutTest, KeepsItsOwnModifierState)
{
    TKeyboardShortcut table;
    table.Add('S' | SM_CTRL | SM_SHIFT, Take);
    table.Attach(&Window);
    EXPECT_FALSE(table.OnKey('S', &Window, true));
    EXPECT_FALSE(table.OnKey(KEY_CTRL, &Window, true));
    EXPECT_FALSE(table.OnKey('S', &Window, true));
    EXPECT_FALSE(table.OnKey(KEY_SHIFT, &Window, true));
    EXPECT_TRUE(table.OnKey('S', &Window, true));
    EXPECT_FALSE(table.OnKey(KEY_CTRL, &Window, false));
    EXPECT_FALSE(table.OnKey('S', &Window, true));
    ASSERT_EQ(Calls.size(), 1u);
    EXPECT_EQ(Calls[0].first, 'S' | SM_CTRL | SM_SHIFT);
}

TEST_F(TKeyboardShortcutTest, AModifierKeyAloneIsNeverLookedUp)
{
    TKeyboardShortcut table;
    table.Add(KEY_CTRL, Take);
    table.Add(KEY_CTRL | SM_CTRL, Take);
    EXPECT_FALSE(table.OnKey(KEY_CTRL, &Window, true));
    EXPECT_TRUE(Calls.empty());
}

TEST_F(TKeyboardShortcutTest, KeyUpIsNotLookedUp)
{
    TKeyboardShortcut table;
    table.Add('F', Take);
    EXPECT_FALSE(table.OnKey('F', &Window, false));
    EXPECT_TRUE(Calls.empty());
}

TEST_F(TKeyboardShortcutTest, AHeldKeyDoesAgainWhatMayRepeat)
{
    TKeyboardShortcut table;
    table.Add('F', Take);
    table.AddOnce('G', Take);
    table.Attach(&Window);
    TMessage message;
    message.Type = MT_KEYDOWN;
    for (const int key : {'F', 'G'}) {
        message.Key = key;
        message.IsRepeat = false;
        EXPECT_TRUE(TWimp::Get().HandleKey(Window, message));
        message.IsRepeat = true;
        EXPECT_EQ(TWimp::Get().HandleKey(Window, message), key == 'F');
    }
    EXPECT_EQ(Calls.size(), 3u);
}

TEST_F(TKeyboardShortcutTest, TheFirstTrueResultConsumesTheKey)
{
    TKeyboardShortcut table;
    table.Add('F', Leave);
    table.Add('F', Take);
    table.Add('F', Leave);
    EXPECT_TRUE(table.OnKey('F', &Window, true));
    EXPECT_EQ(Calls.size(), 2u);
}

TEST_F(TKeyboardShortcutTest, TheContextIsTheAttachedWindow)
{
    TKeyboardShortcut table;
    table.Add('F', Take);
    table.Attach(&Window);
    EXPECT_TRUE(table.OnKey('F', &Window, true));
    ASSERT_EQ(Calls.size(), 1u);
    EXPECT_EQ(Calls[0].second, static_cast<TWindow*>(&Window));
}

TEST_F(TKeyboardShortcutTest, AFixedContextComesBeforeTheWindow)
{
    int context = 0;
    TKeyboardShortcut table(&context);
    table.Add('F', Take);
    table.Attach(&Window);
    EXPECT_TRUE(table.OnKey('F', &Window, true));
    ASSERT_EQ(Calls.size(), 1u);
    EXPECT_EQ(Calls[0].second, &context);
}

TEST_F(TKeyboardShortcutTest, TheFrameworkAsksTheTablesOfTheWindowOnly)
{
    TKeyboardShortcut table;
    table.Add('F', Take);
    TMessage message;
    message.Type = MT_KEYDOWN;
    message.Key = 'F';
    EXPECT_FALSE(TWimp::Get().HandleKey(Window, message));
    table.Attach(&Window);
    EXPECT_TRUE(TWimp::Get().HandleKey(Window, message));
    TRecordingWindow other;
    ShowTopWindow(other, Class);
    EXPECT_FALSE(TWimp::Get().HandleKey(other, message));
    table.Detach();
    EXPECT_FALSE(TWimp::Get().HandleKey(Window, message));
}

TEST_F(TKeyboardShortcutTest, SeveralTablesOfAWindowAreAskedInOrder)
{
    TKeyboardShortcut first;
    TKeyboardShortcut second;
    int firstContext = 0;
    TKeyboardShortcut third(&firstContext);
    first.Add('F', Leave);
    third.Add('F', Take);
    first.Attach(&Window);
    second.Attach(&Window);
    third.Attach(&Window);
    TMessage message;
    message.Type = MT_KEYDOWN;
    message.Key = 'F';
    EXPECT_TRUE(TWimp::Get().HandleKey(Window, message));
    ASSERT_EQ(Calls.size(), 2u);
    EXPECT_EQ(Calls[1].second, &firstContext);
}

TEST_F(TKeyboardShortcutTest, ATableOutlivesItsWindow)
{
    TKeyboardShortcut table;
    {
        TRecordingWindow gone;
        ShowTopWindow(gone, Class);
        table.Attach(&gone);
    }
    table.Detach();
    table.Add('F', Take);
    table.Attach(&Window);
    EXPECT_TRUE(table.OnKey('F', &Window, true));
}

static void CloseWindow(TRecordingWindow* window)
{
    window->Destroy();
}

TEST_F(TKeyboardShortcutTest, AHandlerMayCloseTheWindow)
{
    TKeyboardShortcut table;
    table.Add('F', [](int, void* context) {
        CloseWindow(static_cast<TRecordingWindow*>(static_cast<TWindow*>(context)));
        return true;
    });
    table.Attach(&Window);
    TMessage message;
    message.Type = MT_KEYDOWN;
    message.Key = 'F';
    EXPECT_TRUE(TWimp::Get().HandleKey(Window, message));
    EXPECT_EQ(Window.GetHandle(), nullptr);
}
