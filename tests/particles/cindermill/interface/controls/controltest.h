#pragma once

#include "support/fakecontrolhost.h"
#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/renderobjects.h"

// A view with a panel, and a person's mouse and keys.
class TControlTest : public testing::Test
{
protected:
    // What controls tell their parent.
    class TPanel : public TRenderObjects
    {
    public:
        bool Event(const TRenderEvent& event) override
        {
            Events.push_back(event);
            if (event.Code == RE_VALUECHANGED && OnChange)
                OnChange();
            return event.Code == RE_VALUECHANGED;
        }
        bool IsInputHome() const override { return true; }
        bool IsFieldPanel() const override { return true; }
        uint32_t GetClassId() const override { return 0; }

        std::vector<TRenderEvent> Events;
        std::function<void()> OnChange;
    };

    void SetUp() override
    {
        Renderer.Init(&Window);
        Window.Focused = true;
    }
    void TearDown() override
    {
        TRenderObject::SetFocus(nullptr);
        TRenderObject::SetOverlay(nullptr);
    }

    bool Route(const TMessage& message) { return TRenderObject::Route(Renderer, Panel, message); }
    bool Mouse(TMessageType type, double x, double y, int keyFlags = 0)
    {
        TMessage message;
        message.Type = type;
        message.X = x;
        message.Y = y;
        message.KeyFlags = keyFlags;
        return Route(message);
    }
    bool Press(double x, double y, int keyFlags = 0)
    {
        Mouse(MT_MOUSEMOVE, x, y, keyFlags);
        return Mouse(MT_LEFTDOWN, x, y, keyFlags);
    }
    // With the button held, if it is.
    void Move(double x, double y)
    {
        if (Host.IsDragging())
            Host.Drag(x, y);
        else
            Mouse(MT_MOUSEMOVE, x, y);
    }
    void Release(double x, double y)
    {
        if (Host.IsDragging())
            Host.Drag(x, y, 0);
        else
            Mouse(MT_LEFTUP, x, y);
    }
    bool Click(double x, double y, int keyFlags = 0)
    {
        const bool consumed = Press(x, y, keyFlags);
        Release(x, y);
        return consumed;
    }
    bool Wheel(double x, double y, int delta, int keyFlags = 0)
    {
        TMessage message;
        message.Type = MT_WHEEL;
        message.X = x;
        message.Y = y;
        message.Delta = delta;
        message.KeyFlags = keyFlags;
        return Route(message);
    }
    bool Key(int key, int keyFlags = 0)
    {
        TMessage message;
        message.Type = MT_KEYDOWN;
        message.Key = key;
        message.KeyFlags = keyFlags;
        return Route(message);
    }
    bool Type(const std::string& text)
    {
        bool all = true;
        for (const char c : text) {
            TMessage message;
            message.Type = MT_CHAR;
            message.Character = static_cast<unsigned char>(c);
            all = Route(message) && all;
        }
        return all;
    }
    void LoseWindowFocus()
    {
        TMessage message;
        message.Type = MT_FOCUSLOST;
        Window.Focused = false;
        Route(message);
    }
    // Idle passes, each 10 milliseconds after the one before.
    void Wait(int milliseconds)
    {
        for (int i = 0; i < milliseconds; i += 10) {
            Now += 10;
            Clock.Set(Now);
            TRenderObject::RunTicks(&Renderer);
        }
    }
    int CountChanges(const TRenderObject& source) const
    {
        int count = 0;
        for (const TRenderEvent& event : Panel.Events)
            count += event.Code == RE_VALUECHANGED && event.Source == &source ? 1 : 0;
        return count;
    }
    int CountEvents(int code) const
    {
        int count = 0;
        for (const TRenderEvent& event : Panel.Events)
            count += event.Code == code ? 1 : 0;
        return count;
    }

    uint32_t Now = 10000;
    TFakeClock Clock{10000};
    TFakeControlHost Host;
    TFakeWindow Window{400, 300};
    TRenderer Renderer;
    TPanel Panel;
};
