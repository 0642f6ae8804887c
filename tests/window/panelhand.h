#pragma once

#include "support/fakecontrolhost.h"
#include "window/workshop.h"

#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/graph/nodeexp.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/polytypeparameter.h"

#include <stdexcept>

class TComboBox;
class TNumberInput;
class TOperation;

// The panel of a node, used by hand on the screen, and by operations in the document without windows. Where
// its controls stand is read off a panel of that document that is never drawn. What one call does is one
// gesture: a step of the history, if it changes a value.
class TPanelHand
{
public:
    // Opens it.
    TPanelHand(TScreen& screen, TWorkshop& workshop, TToolNode* node);
    void Close() { ClickButton(Panel.GetSize()[0]); }

    // By the dotted path of a parameter, or the name of an input. Of a port of several types it is also the
    // value of the type in force.
    template <class TParameter>
    TParameter& Param(const char* name) const
    {
        for (TNodeParameter* parameter : FindParameters(name))
            if (auto* found = dynamic_cast<TParameter*>(parameter))
                return *found;
        throw std::runtime_error(std::string("no parameter ") + name);
    }
    template <class TControls>
    TControls& Find(const char* name)
    {
        std::vector<TNodeParameterControls*> all;
        for (int i = 0; i < Panel.GetNumControls(); ++i)
            Gather(Panel.GetControls(i), all);
        for (const TNodeParameter* parameter : FindParameters(name))
            for (TNodeParameterControls* controls : all)
                if (controls->GetParameter() == parameter)
                    if (auto* found = dynamic_cast<TControls*>(controls))
                        return *found;
        throw std::runtime_error(std::string("no controls for ") + name);
    }
    TNumberInput& Field(const char* name, int field = 0);

    void Click(TRenderObject& object);
    // The distance in pixels.
    void Drag(const TVector2& from, int dx, int dy);
    void DragLabel(const char* name, int field, int dx);
    // Clicks a number, types another and ends with the key.
    void Enter(const char* name, const char* text, int field = 0, const char* key = "Return");
    // The text into the number that has the keys.
    void EnterNext(const char* name, const char* text, int field, const char* key = "Return");
    void TypeInto(TNumberInput& input, const char* text);
    // One of the arrows of a number input; the operation is the caller's.
    void ClickArrow(TNumberInput& input, bool up);
    // From the lower arrow, the distance in pixels.
    void DragArrowDown(TNumberInput& input, int distance);
    void Choose(const char* name, int item);
    // The row of a list that opens.
    void ChooseRow(TComboBox& combo, int row);
    void ChooseType(const char* name, int type);
    void TickBool(const char* name, bool set);
    void TickGroup(const char* name, bool set);
    // What a number becomes.
    void ApplyNumber(const char* name, int field, double value);
    // Null does nothing.
    void Apply(TOperation* operation);
    // After a group has changed its size.
    void Layout();

    static TVector2 MiddleOf(TRenderObject& object);
    int ScreenX(const TVector2& place) const { return Workshop.ScreenX(double(place[0])); }
    int ScreenY(const TVector2& place) const { return Workshop.ScreenY(double(place[1])); }
    // The pixel at a place, moved, in the space of an object.
    TVector2 PixelIn(TRenderObject& object, const TVector2& place, int dx = 0, int dy = 0) const;
    TScreen& GetScreen() { return Screen; }
    TToolNode* GetNode() { return Node; }

private:
    std::vector<TNodeParameter*> FindParameters(const char* name) const;
    // The controls and all that stand within them.
    static void Gather(TNodeParameterControls& controls, std::vector<TNodeParameterControls*>& all);
    void AddControls(TNodeParameter& parameter, int port);
    void ClickButton(float width);

    TScreen& Screen;
    TWorkshop& Workshop;
    TToolNode* Node;
    TNodeType& Type;
    TFakeControlHost Host;
    TNodeExp Panel;
};
