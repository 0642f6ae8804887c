#pragma once

#include "window/programfixture.h"

#include <cmath>

// An effect's display under mouse and keys.
class ProgramPreview : public Program
{
protected:
    using Program::Program;

    // Parts of the controls.
    static constexpr int TimeField = 170;
    static constexpr int SeekLeft = 324;
    static constexpr int SeekStart = SeekLeft + 4;
    static constexpr int ControlGap = 4;
    static constexpr int MenuWidth = 28;
    static constexpr int SpeedWidth = 46;
    static constexpr int SeekLabelWidth = 42;
    static constexpr int BudgetRow = 18;

    // Entries of the menu that can be chosen, counted from 1, or back from -1.
    static constexpr int Speed = 4;
    static constexpr int Loop = 5;
    static constexpr int AnotherSeed = 7;
    static constexpr int Births = -8;
    static constexpr int Background = -6;
    static constexpr int Show = -5;
    static constexpr int OnlyGroup = -4;
    static constexpr int Budget = -3;
    static constexpr int SavePicture = -2;
    static constexpr int ReloadTypes = -1;

    // Opens it, with the keys in its display and the effect paused.
    void OpenPaused(TProgram& program, const std::string& path)
    {
        ASSERT_TRUE(program.IsUp()) << program.GetOutput();
        Open(program, path);
        ASSERT_FALSE(HasFatalFailure());
        ClickView();
        ASSERT_TRUE(Screen.WaitUntilActive(DisplayTitle));
        Screen.Key("space");
        ASSERT_TRUE(Screen.WaitUntilStill(GetView()));
    }
    // The effect alone, without the budget below it.
    TRectangle GetView() const
    {
        TRectangle view = GetPreview();
        view.Height -= BudgetRows * BudgetRow;
        return view;
    }
    // Beside the effect.
    void ClickView(int button = 1)
    {
        constexpr int aside = 12;
        const TRectangle view = GetView();
        Screen.Click(view.X + aside, view.Y + aside, button);
    }
    // One place for the menu, and one for each menu that opens from it.
    void Choose(const std::vector<int>& places)
    {
        ClickView(3);
        std::vector<std::string> keys;
        for (size_t level = 0; level < places.size(); ++level) {
            // The first entry of a menu that has been opened by a key is marked already.
            const int marked = level > 0 && places[level] > 0 ? 1 : 0;
            keys.insert(keys.end(), static_cast<size_t>(std::abs(places[level]) - marked),
                        places[level] > 0 ? "Down" : "Up");
            keys.push_back(level + 1 < places.size() ? "Right" : "Return");
        }
        Screen.Keys(keys);
    }
    TRectangle GetDisplay() const { return Screen.GetPosition(Screen.FindWindow(DisplayTitle)); }
    int GetSpeedLeft() const { return GetDisplay().Width - 2 * ControlGap - MenuWidth - SpeedWidth; }
    TPicture GrabSpeed() const
    {
        const TRectangle display = GetDisplay();
        return Screen.Grab(TRectangle{display.X + GetSpeedLeft(),
                                      display.Y + display.Height - TransportHeight, SpeedWidth,
                                      TransportHeight});
    }
    // Where the bar, which ends at a time, has another one.
    int GetSeekX(double time, double end) const
    {
        const int right = GetSpeedLeft() - ControlGap - SeekLabelWidth;
        return SeekStart + static_cast<int>(time / end * (right - SeekStart));
    }
    // By the field, which gives the keys back to the view.
    std::string CopyTime()
    {
        {
            const THandFlow flow(Screen);
            ClickTransport(TimeField);
            Screen.Keys({"ctrl+a", "ctrl+c", "Escape"});
        }
        return Screen.ReadClipboard();
    }
    // A clipboard that nobody answers for is not the time 0.
    double ReadTime()
    {
        std::string time;
        EXPECT_TRUE(WaitUntil([&] {
            time = CopyTime();
            return !time.empty();
        }));
        return std::strtod(time.c_str(), nullptr);
    }
    void TypeTime(const std::string& text, const std::string& end = "Return")
    {
        const THandFlow flow(Screen);
        ClickTransport(TimeField);
        Screen.Key("ctrl+a");
        Screen.Type(text);
        Screen.Key(end);
    }
    // The picture at a time that a paused effect has run up to.
    TPicture SeekPicture(const std::string& time)
    {
        TypeTime(time);
        EXPECT_TRUE(WaitUntil([&] { return CopyTime() == time; })) << time;
        return GrabStill();
    }
    TPicture GrabStill()
    {
        EXPECT_TRUE(Screen.WaitUntilStill(GetView()));
        return Screen.Grab(GetView());
    }
    uint32_t GetCorner() const { return Screen.Grab(GetView()).At(3, 3); }
    bool WaitForCorner(uint32_t colour) const
    {
        return WaitUntil([&] { return GetCorner() == colour; });
    }
    static int CountColour(const TPicture& picture, uint32_t colour, int near = 1)
    {
        int count = 0;
        for (const uint32_t pixel : picture.Pixels) {
            int distance = 0;
            for (int shift = 0; shift < 24; shift += 8)
                distance += std::abs(static_cast<int>(pixel >> shift & 0xFF) -
                                     static_cast<int>(colour >> shift & 0xFF));
            count += distance < near ? 1 : 0;
        }
        return count;
    }

    // Of the budget, where it is shown.
    int BudgetRows = 0;
};
