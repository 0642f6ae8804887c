#pragma once

#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/controldrag.h"

class TControlHost;

// A control that is clicked: the button goes down on it and is let go over it. A press takes the focus, and
// with the focus the space key clicks.
class TClickable : public TRenderObject
{
public:
    explicit TClickable(TControlHost& host) : Host(host), Press(*this) {}

    // Faint, and takes no presses.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return Enabled; }
    bool Event(const TRenderEvent& event) override;
    bool Activate() override;

protected:
    // Of all that are clicked.
    void DescribeClickable(TAccessibleTraits& traits) const;

    // The object may be gone after what a click brings about.
    virtual void OnClick() = 0;
    // TControlLook bits. Held down, it looks pressed while the pointer is over it.
    int GetLook() const;
    bool IsHeldOver() const { return Press.IsRunning() && Press.Over; }
    void Redraw();

    TControlHost& Host;

private:
    struct TPress : public TControlDrag
    {
        explicit TPress(TClickable& owner) : TControlDrag(owner), Owner(owner) {}
        void OnDrag(const TVector2& point, int keyFlags) override;
        void OnDragEnd() override;
        void OnDragCancel() override { Owner.Redraw(); }

        TClickable& Owner;
        bool Over = false;
    };

    bool OnPress(const TRenderEvent& event);

    TPress Press;
    bool Hover = false;
    bool Enabled = true;
};
