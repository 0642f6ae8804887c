#include "controltest.h"

#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/numberinput.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/scrollpane.h"
#include "particles/cindermill/interface/controls/static.h"
#include "particles/cindermill/interface/controls/tickbox.h"

#include <filesystem>
#include <memory>

namespace {

const TVector4 PanelFace(0.737f, 0.784f, 0.784f, 1);

// All controls in all states, drawn for real.
class ControlPicture : public testing::Test
{
protected:
    static constexpr int Width = 470;
    static constexpr int Height = 330;
    static constexpr float Column = 110;

    ControlPicture()
    {
        View.Init(&Surface);
        Surface.Focused = true;
        Back.Max = TVector2(Width, Height);
        Back.Draw = [](TRenderer& renderer) {
            renderer.SetColour(PanelFace);
            renderer.DrawRectangle(TVector2(0, 0), TVector2(Width, Height));
        };
        Root.AddObject(&Back);
    }
    ~ControlPicture() override
    {
        TRenderObject::SetFocus(nullptr);
        TRenderObject::SetOverlay(nullptr);
    }

    // Kept until the test ends.
    template <class T, class... TArgs>
    T& Add(float x, float y, TArgs&&... args)
    {
        auto object = std::make_shared<T>(std::forward<TArgs>(args)...);
        object->SetOrigin(TVector2(x, y));
        Root.AddObject(object.get());
        Kept.push_back(object);
        return *object;
    }
    TNumberInput& AddNumber(float x, float y, double value)
    {
        TNumberInput& number = Add<TNumberInput>(x, y, Host);
        number.Build(TVector2(100, 18), true);
        number.SetValue(value);
        return number;
    }
    TPushButton& AddButton(float x, float y, const char* text)
    {
        TPushButton& button = Add<TPushButton>(x, y, Host);
        button.Build(text, TVector2(60, 18));
        return button;
    }
    TTickBox& AddTick(float x, float y, const char* text)
    {
        TTickBox& tick = Add<TTickBox>(x, y, Host);
        tick.Build(text);
        return tick;
    }
    void Route(TMessageType type, double x, double y)
    {
        TMessage message;
        message.Type = type;
        message.X = x;
        message.Y = y;
        TRenderObject::Route(View, Root, message);
    }
    void Hover(TRenderObject& object)
    {
        TRenderEvent event;
        event.Source = &object;
        event.Code = RE_ENTER;
        event.Point = TVector2(2, 2);
        object.Event(event);
    }
    TPicture Paint(float zoom)
    {
        Surface.Resize(static_cast<int>(Width * zoom), static_cast<int>(Height * zoom));
        View.SetScale(TVector2(zoom, zoom));
        View.Render(Root);
        return Surface.Read();
    }
    static void Keep(const TPicture& picture, const std::string& name)
    {
        const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(picture.SavePng(folder + "/" + name + ".png"));
    }

    TFakeControlHost Host;
    TTestWindow Surface{Width, Height};
    TRenderer View;
    TRenderObjects Root;
    TDrawnObject Back;
    std::vector<std::shared_ptr<TRenderObject>> Kept;
};

} // namespace

TEST_F(ControlPicture, AllControlsInAllStates)
{
    const char* const heads[] = {"at rest", "pointer over", "pressed", "disabled"};
    for (int i = 0; i < 4; ++i)
        Add<TStatic>(12 + Column * static_cast<float>(i), 6.0f, heads[i]);

    AddButton(12, 24, "Lock");
    Hover(AddButton(12 + Column, 24, "Lock"));
    AddButton(12 + 2 * Column, 24, "Linear").SetPressed(true);
    AddButton(12 + 3 * Column, 24, "Linear").SetEnabled(false);

    AddTick(12, 50, "Position");
    Hover(AddTick(12 + Column, 50, "Rotation"));
    AddTick(12 + 2 * Column, 50, "Scale").SetChecked(true);
    TTickBox& off = AddTick(12 + 3 * Column, 50, "Open");
    off.SetChecked(true);
    off.SetEnabled(false);

    AddNumber(12, 74, 12.5);
    Hover(AddNumber(12 + Column, 74, -0.1).GetEdit());
    TNumberInput& pressed = AddNumber(12 + 2 * Column, 74, 1e6);
    AddNumber(12 + 3 * Column, 74, 1).SetReadOnly(true);
    AddNumber(12, 98, 0).ShowValue(3.402823466e38);
    AddNumber(12 + Column, 98, 0).ShowValue(std::numeric_limits<double>::infinity());

    TTextEdit& name = Add<TTextEdit>(12 + 2 * Column, 98, Host);
    name.Build(TVector2(100, 18));
    name.SetText("A text that is longer than its field");

    TComboBox& combo = Add<TComboBox>(12, 124, Host);
    combo.Build(TVector2(100, 18));
    for (int i = 0; i < 20; ++i)
        combo.AddString(i == 3 ? "A rather long entry indeed"
                               : (std::string("Entry ") + char('A' + i)).c_str());
    combo.SetSelection(2);
    TComboBox& disabled = Add<TComboBox>(12 + 3 * Column, 124, Host);
    disabled.Build(TVector2(100, 18));
    disabled.AddString("Vector3");
    disabled.SetSelection(0);
    disabled.SetEnabled(false);

    TScrollPane& pane = Add<TScrollPane>(12 + 2 * Column, 124, Host);
    pane.Build(TVector2(100, 80));
    std::vector<std::shared_ptr<TStatic>> lines;
    for (int i = 0; i < 12; ++i) {
        lines.push_back(std::make_shared<TStatic>((std::string("Line ") + std::to_string(i)).c_str()));
        lines.back()->SetOrigin(TVector2(2, 14.0f * static_cast<float>(i)));
        pane.GetContent().AddObject(lines.back().get());
    }
    pane.SetScroll(20);

    TStatic& cut = Add<TStatic>(12 + 3 * Column, 98, "A label that is cut");
    cut.SetWidth(80);

    // The field with the focus has its text selected; the list is open.
    Route(MT_LEFTDOWN, 20, 130);
    Host.Drag(20, 130, 0);
    ASSERT_TRUE(combo.IsOpen());
    Route(MT_MOUSEMOVE, 30, 200);
    for (const float zoom : {0.5f, 1.0f, 2.0f}) {
        const TPicture open = Paint(zoom);
        Keep(open, "controls-open-" + std::to_string(static_cast<int>(zoom * 10)));
        EXPECT_GT(open.Count([](const TPixel& pixel) {
            return IsClose(pixel, TPixel{255, 204, 133, 255});
        }),
                  100);
    }
    View.SetScale(TVector2(1, 1));
    combo.CloseList();
    Route(MT_LEFTDOWN, 20 + 2 * Column, 80);
    Host.Drag(20 + 2 * Column, 80, 0);
    ASSERT_TRUE(pressed.GetEdit().IsFocused());
    for (const float zoom : {0.5f, 1.0f, 2.0f}) {
        const TPicture picture = Paint(zoom);
        Keep(picture, "controls-" + std::to_string(static_cast<int>(zoom * 10)));
        // The ring around the focus.
        EXPECT_GT(picture.Count([](const TPixel& pixel) {
            return IsClose(pixel, TPixel{255, 140, 26, 255}, 30);
        }),
                  100);
    }
}
