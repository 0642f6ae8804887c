#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/window.h"

// A few lines over the view, where the artist looks. Hidden without a text.
class TPreviewNotice : public TWindow
{
public:
    // False if the window system refuses.
    bool Create(TWindow* owner);
    void SetText(const char* text);
    const TString& GetText() const { return Text; }
    // In a view of this size.
    void Place(int viewWidth, int viewHeight);

    bool OnMessage(const TMessage& message) override;

private:
    void Paint(TGDIContext& context) const;

    TString Text;
    vector<TString> Lines;
    int ViewWidth = 0;
    int ViewHeight = 0;
};
