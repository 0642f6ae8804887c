#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// Where the tabs of a strip stand, side by side and each as wide as its text. Where they need more room than
// there is, two arrows at the right end scroll them.
class TTabStrip
{
public:
    // Of a tab, beside its text.
    static constexpr int TextSpace = 12;
    static constexpr int ArrowWidth = 20;

    void SetLabels(const vector<TString>& labels);
    void SetWidth(int width);
    const vector<TString>& GetLabels() const { return Labels; }

    // The right edge is excluded. What lies left of 0 or right of the room is out of sight.
    void GetEdges(int tab, int& left, int& right) const;
    // The tab that is seen there, or -1.
    int FindTab(int x) const;
    // What the arrows leave.
    int GetRoom() const;
    bool HasArrows() const { return GetWhole() > Width; }
    // -1 for the arrow that leads to the left, 1 for the other one, 0 elsewhere.
    int FindArrow(int x) const;
    // Whether there is more in the arrow's direction.
    bool CanScroll(int direction) const;
    // To the next tab that is not wholly in sight. False if there is none.
    bool ScrollTab(int direction);
    bool ScrollBy(int pixels);

private:
    int GetWhole() const { return Ends.empty() ? 0 : Ends.back(); }
    int GetStart(int tab) const { return tab > 0 ? Ends[tab - 1] : 0; }

    vector<TString> Labels;
    // Of each tab, from the left end of the first.
    vector<int> Ends;
    int Width = 0;
    int Scroll = 0;
};
