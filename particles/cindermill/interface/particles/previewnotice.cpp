#include "particles/cindermill/interface/particles/previewnotice.h"

#include "library/wimp/gdi/brokentext.h"

#include <algorithm>

namespace {

constexpr TGDIFont NoticeFont = {nullptr, 13, 400};
constexpr TGDIColour NoticeColour = 0xFFF8DC;
TWindowClass NoticeClass("cindermill_particlewindow_notice", 0, NoticeColour);
constexpr TGDIColour EdgeColour = 0xB0A060;
constexpr TGDIColour TextColour = 0x302810;
constexpr int LineHeight = 19;
constexpr int Border = 8;
// From the edges of the view.
constexpr int Margin = 12;
// More than any text has; what does not fit into the view is not shown at all.
constexpr int MaxLines = 100;

} // namespace

bool TPreviewNotice::Create(TWindow* owner)
{
    TWindowParams params;
    params.Class = &NoticeClass;
    params.Owner = owner;
    if (!TWindow::Create(params))
        return false;
    Hide();
    return true;
}

void TPreviewNotice::SetText(const char* text)
{
    if (Text.Compare(text, true) == 0)
        return;
    Text = text;
    SetTip(text);
    Place(ViewWidth, ViewHeight);
}

void TPreviewNotice::Place(int viewWidth, int viewHeight)
{
    ViewWidth = viewWidth;
    ViewHeight = viewHeight;
    Lines.clear();
    BreakText(NoticeFont, Text.Print(), viewWidth - 2 * (Margin + Border), MaxLines, Lines);
    int width = 0;
    for (const TString& line : Lines)
        width = std::max(width, GetTextWidth(NoticeFont, line));
    width += 2 * Border;
    const int height = Lines.size() * LineHeight + 2 * Border;
    MoveTo((viewWidth - width) / 2, Margin, width, height);
    Show(!Text.IsEmpty() && height + Margin <= viewHeight);
    Redraw();
}

bool TPreviewNotice::OnMessage(const TMessage& message)
{
    if (message.Type != MT_PAINT)
        return TWindow::OnMessage(message);
    Paint(*message.Context);
    return true;
}

void TPreviewNotice::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    context.SetPen(EdgeColour);
    context.SetBrush(NoticeColour);
    context.Rectangle(0, 0, width, height);
    context.SetFont(NoticeFont);
    context.SetTextColour(TextColour);
    for (int i = 0; i < Lines.size(); ++i)
        context.TextOut(Border, Border + i * LineHeight, Lines[i]);
}
