#pragma once

#include "library/containers/owner.h"
#include "library/containers/ownerlist.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/numberinput.h"

class TNumberParameterControls;
class TOperation;

// The drag on a number's label: a step for each 2 units across. What it shows on its way stands in the
// parameter and not in the history; letting go makes one operation of it all, losing the mouse none.
class TNumberScrub : public TControlDrag
{
public:
    TNumberScrub(TNumberParameterControls& owner, int field);
    ~TNumberScrub() override;

    void Start(const TVector2& point);
    // A number on the way.
    void Show(TOperation* change);
    void OnDrag(const TVector2& point, int keyFlags) override;
    void OnDragEnd() override;
    void OnDragCancel() override;

private:
    void Restore();

    TNumberParameterControls& Owner;
    int Field;
    // The first change, done and not applied: it knows the value from before.
    TOwner<TOperation> First;
    float LastX = 0;
    // What was dragged and is not yet a step.
    double Rest = 0;
};

// Number inputs over the numbers of a parameter. A change takes its one number from the input, and all others
// from the parameter as it stands.
class TNumberParameterControls : public TNodeParameterControls
{
public:
    static constexpr float FieldWidth = 100.0f;

    ~TNumberParameterControls() override;

    void Refresh() override;
    void GetSize(TVector2& size) const override;
    void Render(TRenderer& renderer) override;
    void NamePart(const TRenderObject& part, TString& name) const override;

    int GetNumFields() const { return Fields.size(); }
    TNumberInput& GetInput(int field) { return Fields[field]->Input; }
    bool IsFieldVisible(int field) const { return Fields[field]->Visible; }
    // The middle of what is dragged to change the field's number.
    TVector2 GetScrubPoint(int field) const;

    // Of the parameter, as it stands.
    virtual double GetNumber(int field) const = 0;
    // Within what a person may enter.
    double ClampNumber(int field, double value) const;
    // The number in the history and in the parameter, if it is another.
    void ApplyNumber(int field, double value);
    TDocument& GetDocument() const { return *Document; }
    // The keys go to the field, all of it selected.
    void FocusField(int field);

protected:
    // What a field is made with. A group with one field is dragged at its own label.
    struct TFieldLook
    {
        const char* Label;
        TVector2 Place;
        float LabelWidth;
        double Min;
        double Max;
        double Step;
        bool IsFloat;
    };

    void AddField(const TFieldLook& look);
    void SetFieldVisible(int field, bool visible);
    void MoveField(int field, const TVector2& place);
    // For a field whose number is not the parameter's.
    virtual bool IsFixed(int field) const
    {
        (void)field;
        return false;
    }
    // The edit that gives the number of the field this value; null if it has it. The caller owns it.
    virtual TOperation* MakeOperation(int field, double value) const = 0;
    void OnChildChanged(const TRenderEvent& event) override;
    bool OnPress(const TVector2& point) override;
    TPointerShape FindShape(const TVector2& point) const override;

private:
    struct TField
    {
        TField(TNumberParameterControls& owner, TControlHost& host, int index, const TFieldLook& look)
            : Input(host), Scrub(owner, index), Look(look)
        {
        }

        TNumberInput Input;
        TNumberScrub Scrub;
        // Range and step are the input's now.
        TFieldLook Look;
        bool Visible = false;
    };

    int FindScrub(const TVector2& point) const;
    void TakeNumber(int field);
    void GetScrubRect(int field, TVector2& min, TVector2& max) const;

    TOwnerList<TField> Fields;
    // Smaller than the names of parameters: the longest of the labels stands in 30 units.
    TFontInstance FieldFont;
};
