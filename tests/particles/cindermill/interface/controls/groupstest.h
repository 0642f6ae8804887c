#pragma once

#include "support/gltest.h"

#include "support/fakecontrolhost.h"
#include "support/fakehost.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/numberparametercontrols.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <memory>
#include <stdexcept>

// A node type with every kind of parameter, and one that its inputs can be wired to.
inline std::string MakeTypesFolder(const TTempFolder& folder)
{
    WriteBytes(folder.Path("everything.xml"), R"(<?xml version="1.0"?>
<node>
    <name>Everything</name>
    <description>One of each.</description>
    <type>process</type>
    <colour>cyan</colour>
    <parameters>
        <Scalar><name>Speed</name><Description>How fast it goes.</Description><defaultvalue>2.5</defaultvalue></Scalar>
        <Scale><name>Size</name><defaultvalue>1, 2</defaultvalue></Scale>
        <Vector3><name>Direction</name><defaultvalue>0, 1, 0</defaultvalue></Vector3>
        <Quaternion><name>Turn</name><defaultvalue>0, 90, 0</defaultvalue></Quaternion>
        <Colour><name>Tint</name><defaultvalue>1, 0.5, 0.25, 1</defaultvalue></Colour>
        <Transform><name>Place</name><defaultposition>1, 2, 3</defaultposition><defaultrotation>10, 20, 30</defaultrotation></Transform>
        <TextureCoords><name>Area</name></TextureCoords>
        <Bool><name>Loop</name><defaultvalue>true</defaultvalue></Bool>
        <Enum><name>Blend</name><value>Add=4</value><value>Multiply=7</value><value>Replace=9</value><defaultvalue>Multiply</defaultvalue></Enum>
        <Int><name>Count</name><defaultvalue>16</defaultvalue></Int>
        <Texture><name>Picture</name></Texture>
        <Ramp><name>Curve</name><type>scalar</type></Ramp>
        <PolyRamp><name>Shape</name><output>Out</output></PolyRamp>
        <Group><name>Extras</name><Description>More of it.</Description><defaultvalue>false</defaultvalue><parameters>
            <Scalar><name>Speed</name><defaultvalue>7</defaultvalue></Scalar>
            <Transform><name>Offset</name></Transform>
            <Group><name>Deeper</name><defaultvalue>true</defaultvalue><parameters>
                <Bool><name>Loop</name></Bool>
            </parameters></Group>
        </parameters></Group>
        <Animation><name>Path</name></Animation>
        <Polytype><name>Loose</name><validtypes><scalar/><vector3/></validtypes></Polytype>
    </parameters>
    <inputs>
        <Scalar><name>Gain</name><defaultvalue>1</defaultvalue></Scalar>
        <Polytype><name>Any</name><Description>Takes what comes.</Description><validtypes>
            <scalar><defaultvalue>3</defaultvalue></scalar>
            <vector3><defaultvalue>4, 5, 6</defaultvalue></vector3>
            <transform/>
        </validtypes></Polytype>
    </inputs>
    <outputs>
        <Polytype><name>Out</name><linkinput>Any</linkinput><validtypes><Scalar/><Vector3/><Transform/></validtypes></Polytype>
    </outputs>
    <code><classname>TEverything</classname></code>
</node>
)");
    WriteBytes(folder.Path("constant.xml"), R"(<?xml version="1.0"?>
<node>
    <name>Constant</name>
    <type>process</type>
    <colour>red</colour>
    <inputs><Polytype><name>Value</name><validtypes><scalar/><vector3/></validtypes></Polytype></inputs>
    <code><classname>TConstant</classname></code>
</node>
)");
    WriteBytes(folder.Path("vectors.xml"), R"(<?xml version="1.0"?>
<node>
    <name>Vectors</name>
    <type>process</type>
    <colour>red</colour>
    <outputs><Vector3><name>Out</name></Vector3></outputs>
    <code><classname>TVectors</classname></code>
</node>
)");
    return folder.GetFolder();
}

// Where the keys go that nothing else has.
class TGroupsRoot : public TRenderObjects
{
public:
    bool IsInputHome() const override { return true; }
    bool Event(const TRenderEvent& event) override
    {
        Events.push_back(event);
        return TRenderObjects::Event(event);
    }
    int Count(int code) const
    {
        int count = 0;
        for (const TRenderEvent& event : Events)
            count += event.Code == code ? 1 : 0;
        return count;
    }
    std::vector<TRenderEvent> Events;
};

// Control groups of a node of a document, used by mouse and keys: a world unit is a pixel.
class TGroupsTest : public testing::Test
{
protected:
    TGroupsTest() : App(nullptr, MakeTypesFolder(Types)), Document(App.Get(), &Host)
    {
        Renderer.Init(&Window);
        EXPECT_TRUE(Document.New());
        Node = Add("Everything");
        NumBefore = Stack().GetNumOperations();
        PassTime();
    }
    ~TGroupsTest() override
    {
        Groups.clear();
        TRenderObject::SetFocus(nullptr);
    }

    TToolNode* Add(const char* type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type(type), 0, 0);
        TToolNode* node = op->GetNode();
        Document.ApplyOperation(op);
        return node;
    }
    // By its dotted path, an input too.
    template <class TParameter = TNodeParameter>
    TParameter& Param(const char* name)
    {
        TNodeType& type = *Node->GetNodeType();
        TNodeParameter* parameter = type.FindParameter(name);
        if (parameter == nullptr && type.FindInput(name) != -1)
            parameter = type.GetInput(type.FindInput(name));
        if (parameter == nullptr)
            throw std::runtime_error(std::string("no parameter ") + name);
        return *static_cast<TParameter*>(parameter);
    }
    // Below those that are there.
    template <class TControls = TNodeParameterControls>
    TControls& Make(const char* name)
    {
        TNodeParameterControls* made = CreateParameterControls(Document, *Node, Param(name), Controls);
        TControls* controls = dynamic_cast<TControls*>(made);
        if (controls == nullptr)
            throw std::runtime_error(std::string("no such controls for ") + name);
        Groups.emplace_back(made);
        Root.AddObject(made);
        made->SetOrigin(TVector2(200, Top));
        Top += 120;
        return *controls;
    }
    TNumberParameterControls& MakeNumbers(const char* name) { return Make<TNumberParameterControls>(name); }

    TOperationStack& Stack() { return *Document.GetOperationStack(); }
    int NumOps() { return Stack().GetNumOperations() - NumBefore; }
    template <class TOp>
    bool IsLast()
    {
        return NumOps() > 0 &&
               Stack().GetOperation(Stack().GetNumOperations() - 1)->GetClassId() == TOp::NameID();
    }
    // The next edit is a step of its own.
    void PassTime() { Clock.Set(Now += 2000); }
    void PassTime(uint32_t milliseconds) { Clock.Set(Now += milliseconds); }

    bool Send(TMessageType type, const TVector2& place, int buttons)
    {
        TMessage message;
        message.Type = type;
        message.X = double(place[0]);
        message.Y = double(place[1]);
        message.Buttons = buttons;
        message.KeyFlags = KeyFlags;
        if (Controls.IsDragging())
            Controls.Drag(message.X, message.Y, buttons);
        return TRenderObject::Route(Renderer, Root, message);
    }
    bool Press(const TVector2& place) { return Send(MT_LEFTDOWN, place, MB_LEFT); }
    void Drag(const TVector2& place) { Send(MT_MOUSEMOVE, place, MB_LEFT); }
    void Release(const TVector2& place) { Send(MT_LEFTUP, place, 0); }
    void Click(const TVector2& place)
    {
        Send(MT_MOUSEMOVE, place, 0);
        Press(place);
        Release(place);
    }
    void Key(int key)
    {
        TMessage message;
        message.Type = MT_KEYDOWN;
        message.Key = key;
        message.KeyFlags = KeyFlags;
        TRenderObject::Route(Renderer, Root, message);
    }
    void Write(const std::string& text)
    {
        for (const char c : text) {
            TMessage message;
            message.Type = MT_CHAR;
            message.Character = static_cast<uint32_t>(c);
            TRenderObject::Route(Renderer, Root, message);
        }
    }
    static TVector2 MiddleOf(TRenderObject& object)
    {
        TVector2 min;
        TVector2 max;
        object.GetBounds(min, max);
        return object.GetAbsolutePosition() + (min + max) * 0.5f;
    }
    // The text takes the place of what stands in the field.
    void Type(TNumberParameterControls& controls, int field, const std::string& text)
    {
        Click(MiddleOf(controls.GetInput(field).GetEdit()));
        controls.GetInput(field).GetEdit().SelectAll();
        Write(text);
        Key(KEY_RETURN);
    }
    static std::string Shown(TNumberParameterControls& controls, int field)
    {
        return Text(controls.GetInput(field).GetEdit().GetText());
    }
    static TVector2 ScrubOf(TNumberParameterControls& controls, int field)
    {
        return controls.GetAbsolutePosition() + controls.GetScrubPoint(field);
    }
    std::vector<float> Floats(const char* name)
    {
        const auto& parameter = Param<TNodeValueParameter>(name);
        return std::vector<float>(parameter.GetFloats(), parameter.GetFloats() + parameter.GetNumFloats());
    }
    static std::string Copied(const TNodeParameterControls& controls)
    {
        TString text;
        controls.CopyValue(text);
        return Text(text);
    }

    TTempFolder Types;
    TFakeClock Clock{100000};
    uint32_t Now = 100000;
    TTestApp App;
    TQuiet Quiet;
    TFakeHost Host;
    TDocument Document;
    TFakeControlHost Controls;
    TFakeWindow Window{1000, 1000};
    TRenderer Renderer;
    TGroupsRoot Root;
    std::vector<std::unique_ptr<TNodeParameterControls>> Groups;
    TToolNode* Node = nullptr;
    int NumBefore = 0;
    int KeyFlags = 0;
    float Top = 20;
};

using TFloats = std::vector<float>;
