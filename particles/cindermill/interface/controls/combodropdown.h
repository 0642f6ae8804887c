#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/wheelsteps.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

class TComboBox;
class TControlHost;

// The open list of a combo box: an overlay of the view that it was opened in. Opens upwards where there is no
// room below, and scrolls beyond 12 rows. A left press outside, Escape, loss of the focus, and anything that
// takes the combo box away close it. The button may stay down from the press that opens it to the row where
// it is let go.
class TComboDropDown : public TRegistered<TComboDropDown, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TComboDropDown";
    static constexpr int MaxRows = 12;
    static constexpr float RowHeight = 16.0f;
    TComboDropDown(TControlHost& host, TComboBox& owner);
    ~TComboDropDown() override;

    // In the view whose message is being routed.
    void Open();
    void Close();
    bool IsOpen() const { return GetOverlay() == this; }
    int GetNumRows() const { return NumRows; }
    int GetFirstRow() const { return FirstRow; }
    bool IsUpwards() const { return Origin[1] < 0; }
    // The item that Return chooses. Set, it is brought into sight.
    int GetMarked() const { return Marked; }
    void SetMarked(int item);
    // Takes the wheel while the pointer is inside.
    bool OnWheel(int delta);

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;

private:
    // Scrolls by the strip at the right.
    struct TStripDrag : public TControlDrag
    {
        explicit TStripDrag(TComboDropDown& list) : TControlDrag(list), List(list) {}
        void OnDrag(const TVector2& point, int keyFlags) override;

        TComboDropDown& List;
    };
    // The button that opened the list, still held.
    struct TOpeningDrag : public TControlDrag
    {
        explicit TOpeningDrag(TComboDropDown& list) : TControlDrag(list), List(list) {}
        void OnDrag(const TVector2& point, int keyFlags) override;
        void OnDragEnd() override;

        TComboDropDown& List;
        int Item = -1;
    };

    void Place();
    float MeasureWidth() const;
    bool IsScrolling() const;
    void ScrollTo(int firstRow);
    void ScrollByStrip(float y);
    bool IsOnStrip(const TVector2& point) const;
    int FindItem(const TVector2& point) const;
    bool OnPointer(const TRenderEvent& event);

    TControlHost& Host;
    TComboBox& Owner;
    TControlBox Box;
    TVector2 Size = TVector2(0, 0);
    int NumRows = 0;
    int FirstRow = 0;
    int Marked = -1;
    TWheelSteps Wheel = TWheelSteps(3);
    TStripDrag Strip;
    TOpeningDrag Opening;
};
