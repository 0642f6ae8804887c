#pragma once

#include "library/containers/owner.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/numberinput.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/rampdrag.h"
#include "particles/cindermill/interface/controls/ramphit.h"
#include "particles/cindermill/interface/controls/rampmodel.h"
#include "particles/cindermill/interface/controls/ramppaths.h"
#include "particles/cindermill/interface/controls/rampview.h"

class TOperation;

// The editor of a ramp's curves. It edits a copy of them; a finished change goes to the parent as
// RE_VALUECHANGED, with an operation to be taken. What becomes of the parameter is shown by Refresh.
class TRamp : public TRegistered<TRamp, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TRamp";

    explicit TRamp(TControlHost& host);
    ~TRamp() override;

    // One to four components, with a list of points each. May be called again; the view is a fit then.
    void Build(const TVector2& size, int componentCount, bool colour, bool linear,
               const vector<TRampPoint>* pointLists);
    // One for each of the four.
    void SetLocks(const int* locks);
    void SetPoints(int component, const vector<TRampPoint>& points);
    // Whose operations are made; stays the caller's. Without one the ramp only shows.
    void SetParameter(TNodeRampParameter* parameter) { Parameter = parameter; }
    // Shows the parameter's curves, locks and kind as they are now. Ends a drag; a selection stays if its
    // point is still there.
    void Refresh();

    // The value at a time, of the curve that the component follows.
    float GetValue(int component, float time) const { return Model.Evaluate(component, time); }
    const TRampModel& GetModel() const { return Model; }
    const TRampView& GetView() const { return View; }
    const TRampSelection& GetSelection() const { return Selected; }
    const TRampLayout& GetLayout() const { return Layout; }
    // None for a component's button of a ramp with one.
    TPushButton* GetComponentButton(int component);
    TPushButton& GetLockButton() { return LockButton; }
    TPushButton& GetLinearButton() { return LinearButton; }
    TNumberInput& GetTimeInput() { return TimeInput; }
    TNumberInput& GetValueInput() { return ValueInput; }
    bool IsDragging() const { return Drag.IsRunning(); }
    // What the buttons and the size take.
    float GetWidth() const { return RowEnd > Layout.Size[0] ? RowEnd : Layout.Size[0]; }

    // To be called for RE_VALUECHANGED; the caller owns it. What nobody takes does not happen.
    TOperation* TakeOperation();

    // The curves that are shown, as text, and the same put in their place by a person: a curve for each
    // component, or one for the selected one. Locked ones keep their own. False if the text is not that.
    void CopyValue(TString& text) const;
    bool PasteValue(const char* text);

    // The ramp that has the focus itself, not in one of its inputs; null for none.
    static TRamp* GetFocused();

    // An inner anchor, with its handles. Asserts that it is one.
    void RemovePoint(int component, int point);

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;
    bool Describe(TAccessibleTraits& traits) override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    bool EnterValue(const char* text) override { return PasteValue(text); }
    void TakeKeys(TRenderer* renderer) override;

private:
    friend class TRampDrag;
    static constexpr int MaxComponents = TRampModel::MaxComponents;

    void BuildRow(bool colour);
    float PlaceButton(TPushButton& button, const char* text, float x, float width, float shownWidth,
                      float above);
    void AddMissing(TRenderObject& object);

    // For the drag.
    void ShowView(const TRampView& view);
    void ShowDragged(const TRampCurve& curve, const TVector2& place);
    void EndDrag();

    bool OnOwnEvent(const TRenderEvent& event);
    bool OnChildEvent(const TRenderEvent& event);
    TRampHit FindHit(const TVector2& place);
    TPointerShape FindShape(const TVector2& place);
    void OnPress(const TVector2& place);
    void OnPressAxes(const TVector2& place);
    void OnPressCurve(int component, const TVector2& place);
    bool IsDoublePress(const TVector2& place);
    bool OnWheel(int delta);
    bool OnKey(int key);
    bool OnArrow(int key);
    bool WalkPoints(int step);
    void OnFocusLost(const TRenderObject* source);
    void OnPointer(const TVector2& place, bool inside);
    void OnInput(const TRenderObject* input);
    void OnButton(const TRenderObject* button);

    void Select(const TRampSelection& selection);
    void KeepSelection(const TRampCurve& before);
    void DropLostSelection();
    void RemoveSelected();
    // What is shown follows the model.
    void Changed();
    void UpdateRow();
    void Commit(int component);
    void Send(TOperation* operation);

    TControlHost& Host;
    TNodeRampParameter* Parameter = nullptr;
    TOwner<TOperation> Pending;
    TRampLayout Layout;
    TRampModel Model;
    TRampView View;
    TRampPaths Paths;
    TRampSelection Selected;
    TRampDrag Drag;
    TFontInstance Font;
    float Samples[TRampModel::NumSamples][MaxComponents] = {};
    bool ColourStrip = false;
    float RowEnd = 0.0f;
    TPushButton ComponentButtons[MaxComponents];
    TPushButton LockButton;
    TPushButton LinearButton;
    TNumberInput TimeInput;
    TNumberInput ValueInput;
    // The pointer rests over the plot of the view of this renderer.
    TRendererWatch PointerView;
    TVector2 Pointer = TVector2(0, 0);
    bool PointerInPlot = false;
    bool HasPress = false;
    uint32_t PressTime = 0;
    TVector2 PressPlace = TVector2(0, 0);
};
