#include "particles/cindermill/interface/tabstrip.h"

#include "library/wimp/gdi/gdicontext.h"

void TTabStrip::SetLabels(const vector<TString>& labels)
{
    Labels = labels;
    Ends.clear();
    for (const TString& label : labels)
        Ends.push_back(GetWhole() + GetTextWidth(TGDIFont(), label.Print()) + TextSpace);
    ScrollBy(0);
}

void TTabStrip::SetWidth(int width)
{
    Width = width;
    ScrollBy(0);
}

int TTabStrip::GetRoom() const
{
    const int room = HasArrows() ? Width - 2 * ArrowWidth : Width;
    return room > 0 ? room : 0;
}

void TTabStrip::GetEdges(int tab, int& left, int& right) const
{
    left = GetStart(tab) - Scroll;
    right = Ends[tab] - Scroll;
}

int TTabStrip::FindTab(int x) const
{
    if (x < 0 || (HasArrows() && x >= GetRoom()))
        return -1;
    for (int i = 0; i < Ends.size(); ++i)
        if (x + Scroll < Ends[i])
            return i;
    return -1;
}

int TTabStrip::FindArrow(int x) const
{
    if (!HasArrows() || x < GetRoom() || x >= GetRoom() + 2 * ArrowWidth)
        return 0;
    return x < GetRoom() + ArrowWidth ? -1 : 1;
}

bool TTabStrip::CanScroll(int direction) const
{
    return direction < 0 ? Scroll > 0 : Scroll < GetWhole() - GetRoom();
}

bool TTabStrip::ScrollTab(int direction)
{
    int tab = 0;
    if (direction > 0) {
        while (tab < Ends.size() && Ends[tab] - Scroll <= GetRoom())
            ++tab;
        return tab < Ends.size() && ScrollBy(Ends[tab] - Scroll - GetRoom());
    }
    tab = Ends.size() - 1;
    while (tab >= 0 && GetStart(tab) >= Scroll)
        --tab;
    return tab >= 0 && ScrollBy(GetStart(tab) - Scroll);
}

bool TTabStrip::ScrollBy(int pixels)
{
    const int before = Scroll;
    const int last = HasArrows() ? GetWhole() - GetRoom() : 0;
    Scroll += pixels;
    if (Scroll > last)
        Scroll = last;
    if (Scroll < 0)
        Scroll = 0;
    return Scroll != before;
}
