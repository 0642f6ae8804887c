#pragma once

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/window.h"

class TSeekBar;

// The bar as a slider of seconds.
class TSeekAccess : public TAccessibleContents
{
public:
    explicit TSeekAccess(TSeekBar& bar) : Bar(bar) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int) override {}
    void FocusItem(int item) override;
    bool EnterItem(int item, const char* text) override;

private:
    TSeekBar& Bar;
};

// The way of an effect through its time: a bar that a person drags to another place, or moves by the arrow
// keys. Reports code 12 with its id whenever a place was chosen.
class TSeekBar : public TWindow
{
public:
    // False if the window system refuses.
    bool Create(TWindow* owner, int id);
    // Seconds at the bar's end, and where on it the effect is. It is painted only if that moves something.
    void SetTime(float time, float range);
    // Where the effect is to come to, while it is on its way; below 0 for nowhere.
    void SetTarget(float time);
    bool IsDragged() const { return Dragged; }
    // The place chosen last, in seconds.
    float GetChosen() const { return Chosen; }
    float GetRange() const { return Range; }
    float GetTime() const { return Time; }
    // As a drag to a place and its end do.
    void ChooseTime(float time);

    bool OnMessage(const TMessage& message) override;

private:
    void Paint(TGDIContext& context) const;
    void PaintMarks(TGDIContext& context) const;
    bool OnKey(int key);
    void Choose(double x);
    void EndDrag();
    // The time at its end.
    void GetLabel(TString& label) const;
    void GetTrough(int& left, int& right) const;
    int GetPlace(float time) const;

    TSeekAccess Access{*this};
    int Id = 0;
    float Time = 0;
    float Range = 1;
    float Target = -1;
    float Chosen = 0;
    bool Dragged = false;
};
