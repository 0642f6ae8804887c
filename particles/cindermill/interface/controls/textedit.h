#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

#include <cstdint>

class TControlHost;

// A line of text that can be edited. RE_VALUECHANGED goes to the parent when the input ends, by Return or by
// loss of the focus, and the text is another than when it was last set or ended. With the focus the edit
// consumes every key that edits, also where it does nothing. Up, Down and the wheel go on to the parent.
class TTextEdit : public TRegistered<TTextEdit, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TTextEdit";
    static constexpr int MaxLength = 1000;
    explicit TTextEdit(TControlHost& host);
    ~TTextEdit() override;

    void Build(const TVector2& size, float fontSize = 10.0f);
    // The characters that can be typed or pasted; null for all from 32 to 126. The text is not copied.
    void SetAllowed(const char* characters) { Allowed = characters; }
    // What is pasted goes through it first. Null for none.
    void SetPasteFilter(void (*filter)(const char* text, TString& result)) { PasteFilter = filter; }
    // Shown but not edited. Parts of it can still be selected and copied.
    void SetReadOnly(bool readOnly);
    bool IsReadOnly() const { return ReadOnly; }
    // Sends nothing; drops what was typed.
    void SetText(const char* text);
    // What is shown, typed characters included.
    const TString& GetText() const { return Text; }
    // Whether something was typed and not yet ended.
    bool IsEdited() const { return !(Text == Ended); }
    // Takes the focus, with all of the text selected, in the view whose message is being routed.
    void TakeFocus();
    bool IsFocused() const { return GetFocus() == this; }
    // Ends the input as Return does.
    void EndInput();
    // Puts the text back that was there before typing.
    void Revert();
    void SelectAll();
    int GetCaret() const { return Caret; }
    void GetSelection(int& first, int& end) const;
    bool HasSelection() const { return Caret != Anchor; }
    // Of the person's clipboard.
    void Cut();
    void Copy();
    void Paste();

    // The edit that has the focus, or null.
    static TTextEdit* GetFocused();
    // Ends the input of the focused edit, if there is one: before anything that reads the document.
    static void EndFocusedInput();
    // Forgets what was typed into it: before its document or view goes.
    static void DropFocusedInput();

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;
    bool Describe(TAccessibleTraits& traits) override;
    bool EnterValue(const char* text) override;
    void TakeKeys(TRenderer* renderer) override;

private:
    // Selects a range.
    struct TSelect : public TControlDrag
    {
        explicit TSelect(TTextEdit& owner) : TControlDrag(owner), Owner(owner) {}
        void OnDrag(const TVector2& point, int keyFlags) override;

        TTextEdit& Owner;
        // Where the pointer went down, and whether it has left that place.
        TVector2 From = TVector2(0, 0);
        bool Moved = false;
    };

    bool OnPress(const TRenderEvent& event);
    bool OnKey(const TRenderEvent& event);
    bool OnCharacter(int character);
    void OnFocusLost();
    bool MoveByKey(int key, bool select, bool byWord);
    void MoveCaret(int caret, bool select);
    void Erase(int key, bool byWord);
    void Insert(const char* text);
    void Replace(int first, int end, const char* text);
    bool IsAllowed(char character) const;
    int FindWord(int from, int step) const;
    void SelectWord(int at);
    void SetRange(int anchor, int caret);
    float GetPosition(int index) const;
    int FindIndex(float x) const;
    void ScrollToCaret();
    void Redraw();
    void StartBlinking();
    bool IsBlinkOn() const;
    void RenderMarks(TRenderer& renderer, bool keyboard);

    TControlHost& Host;
    TString Text;
    TString Ended;
    TFontInstance Font;
    TControlBox Box;
    TVector2 Size = TVector2(0, 0);
    const char* Allowed = nullptr;
    void (*PasteFilter)(const char* text, TString& result) = nullptr;
    bool ReadOnly = false;
    bool Hover = false;
    int Caret = 0;
    int Anchor = 0;
    // What is hidden at the left.
    float Scroll = 0.0f;
    TSelect Select;
    // Of the last press: two close ones are a double click.
    uint32_t PressTime = 0;
    TVector2 PressPoint = TVector2(0, 0);
    bool PressCounts = false;
    uint32_t BlinkStart = 0;
    bool BlinkShown = true;
};
