#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderobjects.h"

class TControlHost;
class TDocument;
class TNodeParameter;
class TToolNode;

// The controls of one parameter in the open panel of a node. They never write the parameter: each change of a
// person becomes an operation of the document, and the parameter's callback shows what has come of it. The
// group's place is the left top of the controls; the label stands left of it.
class TNodeParameterControls : public TRegistered<TNodeParameterControls, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNodeParameterControls";
    // Of a row.
    static constexpr float RowHeight = 20.0f;
    static constexpr float RowStep = 24.0f;

    ~TNodeParameterControls() override;

    // All that is given stays the caller's and outlives the group, or Forget is called first.
    void Build(TDocument& document, TToolNode& toolNode, TNodeParameter& parameter, TControlHost& host);
    // Shows the parameter's value; makes no operation. Called for each change of the parameter, and after a
    // change of the graph. Sends RE_RELAYOUT to the parent where the size has changed.
    virtual void Refresh() = 0;
    // Of the controls, without the label.
    virtual void GetSize(TVector2& size) const = 0;
    // The parameter's help from the node type; false for none.
    bool GetHelpText(TString& text) const;
    float GetLabelWidth() const;
    // The group's place below the panel's top, its left as it is.
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
    // Back to the default that the node type library's type of the same name tells.
    virtual void ResetValue() {}
    virtual bool IsDefault() const { return true; }

    void Render(TRenderer& renderer) override;
    // The label included.
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;

protected:
    // Makes the children; the fields below are set.
    virtual void BuildControls() = 0;
    // A child reports a change: the operation of the kind is made and applied, if the value differs.
    virtual void OnChildChanged(const TRenderEvent& event) = 0;

    TDocument* Document = nullptr;
    TToolNode* ToolNode = nullptr;
    TNodeParameter* Parameter = nullptr;
    TControlHost* Host = nullptr;
    TFontInstance Font;
    TString Label;
    TVector2 LabelRect = TVector2(0, 0);

private:
    static void OnParameterChanged(TNodeParameter* parameter, void* data);
};

// The group of the parameter's kind, built; the caller owns it. Null for a kind that has none.
TNodeParameterControls* CreateParameterControls(TDocument& document, TToolNode& toolNode,
                                                TNodeParameter& parameter, TControlHost& host);
