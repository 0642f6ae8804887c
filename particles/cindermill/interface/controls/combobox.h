#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/combodropdown.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

class TControlHost;

// A row that shows the chosen one of some texts; a press opens the list. A choice sends RE_VALUECHANGED to
// the parent, choosing what is chosen nothing. With the focus, the arrow keys, Home, End and the first letter
// of a text change the choice, or walk the open list, where Return chooses.
class TComboBox : public TRegistered<TComboBox, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TComboBox";
    explicit TComboBox(TControlHost& host);
    ~TComboBox() override;

    void Build(const TVector2& size, float fontSize = 10.0f);
    void Clear();
    // The data is the owner's.
    void AddString(const char* text, int data = 0);
    int GetNumStrings() const { return Items.size(); }
    const TString& GetString(int i) const { return Items[i].Text; }
    int GetData(int i) const { return Items[i].Data; }
    // -1 for none. Sends nothing.
    void SetSelection(int selection);
    int GetSelection() const { return Selection; }
    // Faint, and takes no presses.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return Enabled; }
    bool IsOpen() const { return DropDown.IsOpen(); }
    void CloseList() { DropDown.Close(); }
    const TComboDropDown& GetList() const { return DropDown; }
    const TVector2& GetSize() const { return Size; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    bool Describe(TAccessibleTraits& traits) override;
    // Chooses the text.
    bool EnterValue(const char* text) override;

private:
    friend class TComboDropDown;
    struct TItem
    {
        TString Text;
        int Data = 0;
    };

    bool OnPress(const TRenderEvent& event);
    bool OnKey(const TRenderEvent& event);
    bool OnCharacter(const TRenderEvent& event);
    // Where a key leads from an item; -1 for a key that leads nowhere.
    int FindByKey(int key, int from) const;
    // As a person's choice.
    void Choose(int selection);

    TControlHost& Host;
    vector<TItem> Items;
    TFontInstance Font;
    TControlBox Box;
    TVector2 Size = TVector2(0, 0);
    int Selection = -1;
    bool Hover = false;
    bool Enabled = true;
    TComboDropDown DropDown;
};
