#pragma once

#include "library/containers/string.h"
#include "library/wimp/wimpcontrol.h"

// A list that folds down, with one selected line; reports code 11 with its id when a person selects. Lines
// have less than 1,024 characters.
class TComboBoxControl : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name);
    void AddString(const char* text);
    // Asserts "delidx != -1 : Attempt to delete non-existent combo box entry".
    void DeleteString(const char* text);
    void Clear();
    int GetNumStrings() const;
    // Asserts "SendMessage(GetHandle(), CB_GETLBTEXTLEN, i, 0) < 1024 : Combo box string length > 1024".
    void GetString(int i, TString& text) const;
    // By position or by text, compared with case. Asserts "0 : Item not found for combo box selection".
    void SetSelection(int index);
    void SetSelection(const char* text);
    void ClearSelection();
    // -1 for none.
    int GetSelection() const;
    int GetId() const { return Id; }

private:
    int Find(const char* text) const;

    int Id = 0;
};
