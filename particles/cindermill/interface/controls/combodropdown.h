#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"

class TComboBox;

// The open list of a combo box: an overlay of the view that it was opened in. Opens upwards where there is no
// room below, and scrolls beyond 12 rows. A left press outside, Escape, loss of the focus, and anything that
// takes the combo box away close it.
class TComboDropDown : public TRegistered<TComboDropDown, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TComboDropDown";
    static constexpr int MaxRows = 12;
    explicit TComboDropDown(TComboBox& owner) : Owner(owner) {}
    ~TComboDropDown() override;

    void Open();
    void Close();
    bool IsOpen() const;

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;

private:
    TComboBox& Owner;
    int FirstRow = 0;
    int Marked = -1;
};
