#pragma once

#include "library/containers/string.h"

enum TAccessibleRole
{
    AR_LIST,
    AR_ITEM,
    AR_TAB,
    AR_PORT,
    AR_LABEL,
    AR_BUTTON,
    // Something that is on or off.
    AR_CHECK,
    AR_TEXT,
    AR_NUMBER,
    // One of some texts.
    AR_CHOICE,
    AR_SLIDER,
    AR_PICTURE,
    // What is below it is told too.
    AR_CURVES,
    AR_COLOUR,
    // A table has rows, and these cells; above its columns stand headers, beside its rows labels.
    AR_TABLE,
    AR_ROW,
    AR_CELL,
    AR_HEADER,
    AR_ROWLABEL,
    // Of windows: tabs side by side, a tree of lists, and whatever else there is.
    AR_TABS,
    AR_TREE,
    AR_WINDOW
};

// What something that is drawn tells tools for those who cannot see it.
struct TAccessibleTraits
{
    TAccessibleRole Role = AR_ITEM;
    TString Name;
    TString Description;
    // As it is shown; of those that have one.
    TString Value;
    // Of numbers and sliders.
    double Number = 0;
    double Least = 0;
    double Most = 0;
    double Step = 0;
    bool IsSelected = false;
    bool IsCheckable = false;
    bool IsChecked = false;
    bool IsEnabled = true;
    bool IsReadOnly = false;
    // The keys can go to it; they do.
    bool TakesFocus = false;
    bool HasFocus = false;
    // Its value changes by itself, too often to be told.
    bool IsLive = false;

    // Whether what a person can change of it is another.
    bool Differs(const TAccessibleTraits& other) const
    {
        return IsSelected != other.IsSelected || IsChecked != other.IsChecked ||
               IsEnabled != other.IsEnabled || HasFocus != other.HasFocus || !(Value == other.Value);
    }
};
