#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobject.h"

class TControlHost;

// A line of text that can be edited. RE_VALUECHANGED goes to the parent when the input ends, by Return or by
// loss of the focus, and the text is another than when it was last set or ended. With the focus the edit
// consumes every key that edits, also where it does nothing.
class TTextEdit : public TRegistered<TTextEdit, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TTextEdit";
    explicit TTextEdit(TControlHost& host);
    ~TTextEdit() override;

    void Build(const TVector2& size, float fontSize = 10.0f);
    // The characters that can be typed or pasted; null for all from 32 to 126. The text is not copied.
    void SetAllowed(const char* characters) { Allowed = characters; }
    // Shown but not edited.
    void SetReadOnly(bool readOnly);
    // Sends nothing; drops what was typed.
    void SetText(const char* text);
    // What is shown, typed characters included.
    const TString& GetText() const { return Text; }
    // Whether something was typed and not yet ended.
    bool IsEdited() const;
    // Ends the input as Return does.
    void EndInput();
    // Puts the text back that was there before typing.
    void Revert();
    void SelectAll();
    int GetCaret() const { return Caret; }
    void GetSelection(int& first, int& end) const;
    // Of the person's clipboard.
    void Cut();
    void Copy();
    void Paste();

    // The edit that has the focus, or null.
    static TTextEdit* GetFocused();
    // Ends the input of the focused edit, if there is one: before anything that reads the document.
    static void EndFocusedInput();

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;

private:
    TControlHost& Host;
    TString Text;
    TString Ended;
    TFontInstance Font;
    TVector2 Size = TVector2(0, 0);
    const char* Allowed = nullptr;
    bool ReadOnly = false;
    int Caret = 0;
    int Anchor = 0;
};
