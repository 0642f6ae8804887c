#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/controlhost.h"

class TDocument;
class TNodeParameter;
class TToolNode;

// The controls of one parameter in the open panel of a node. They never write the parameter: each change of a
// person becomes an operation of the document, and the parameter's callback shows what has come of it. The
// group's position is the left top of the controls; the label stands left of it.
class TNodeParameterControls : public TRegistered<TNodeParameterControls, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNodeParameterControls";
    // Of a row.
    static constexpr float RowHeight = 20.0f;
    static constexpr float RowStep = 24.0f;
    // What separates the label from the controls.
    static constexpr float LabelGap = 10.0f;

    ~TNodeParameterControls() override;

    // All that is given stays the caller's and outlives the group.
    void Build(TDocument& document, TToolNode& toolNode, TNodeParameter& parameter, TControlHost& host);
    // Shows the parameter's value; makes no operation. Called for each change of the parameter, and after a
    // change of the graph. Ends with TellSize where the size may have changed.
    virtual void Refresh() = 0;
    // Of the controls, without the label.
    virtual void GetSize(TVector2& size) const = 0;
    // The parameter's help from the node type; false for none.
    bool GetHelpText(TString& text) const;
    float GetLabelWidth() const;
    // In place of the parameter's name, for controls that stand inside another group.
    void SetLabel(const char* label);
    const TString& GetLabel() const { return Label; }
    // The label's left top; its left is below 0.
    const TVector2& GetLabelRect() const { return LabelRect; }
    // The group's position below the panel's top, its left as it is.
    void SetTop(float y);
    TNodeParameter* GetParameter() const { return Parameter; }
    TToolNode* GetToolNode() const { return ToolNode; }

    // The value as a line of text that PasteValue reads; empty for kinds without one.
    virtual void CopyValue(TString& text) const { text = TString(); }
    // False if the text is no such value; nothing has changed then.
    virtual bool PasteValue(const char* text)
    {
        (void)text;
        return false;
    }
    // Back to the default that the node type library's type of the same name tells. Nothing where there is
    // none, or where the value is the default.
    virtual void ResetValue() {}
    // Values that differ are marked at their labels. True where there is no default.
    virtual bool IsDefault() const { return true; }

    void Render(TRenderer& renderer) override;
    // The label included.
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;

protected:
    // Makes the children; the fields below are set. Refresh follows.
    virtual void BuildControls() = 0;
    // A child reports a change: the operation of the kind is made and applied, if the value differs.
    virtual void OnChildChanged(const TRenderEvent& event) = 0;
    // A left press on the group itself, at its label for one, in its own space. False: it is the node's.
    virtual bool OnPress(const TVector2& point)
    {
        (void)point;
        return false;
    }
    // What the pointer tells of a place of the group itself.
    virtual TPointerShape FindShape(const TVector2& point) const
    {
        (void)point;
        return PS_NORMAL;
    }
    // The height that the label stands in the middle of.
    virtual float GetLabelHeight() const;
    // The size may have changed: the parent is told with RE_RELAYOUT if it has.
    void TellSize();
    // The parameter of the library that the parameter's default comes from, of the same kind; null for none.
    const TNodeParameter* FindDefault() const;
    // For a destructor that still changes the parameter: there is nothing left to refresh.
    void StopListening();

    TDocument* Document = nullptr;
    TToolNode* ToolNode = nullptr;
    TNodeParameter* Parameter = nullptr;
    TControlHost* Host = nullptr;
    TFontInstance Font;
    TString Label;
    TVector2 LabelRect = TVector2(0, 0);

private:
    void PlaceLabel();
    static void OnParameterChanged(TNodeParameter* parameter, void* data);

    TVector2 ToldSize = TVector2(0, 0);
    bool Listens = false;
    // As of the last change of the parameter: looked up then, and not for each picture.
    bool Differs = false;
};

// The group of the parameter's kind, built; the caller owns it. Null for a kind that has none.
TNodeParameterControls* CreateParameterControls(TDocument& document, TToolNode& toolNode,
                                                TNodeParameter& parameter, TControlHost& host);
