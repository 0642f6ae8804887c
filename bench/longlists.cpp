#include "bench/longlists.h"

#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/valueparameters.h"

#include <climits>
#include <cstdint>
#include <memory>

namespace {

// How a list is written in a node type file: what stands in front of it, an element, and what stands behind
// it. In an element "#" is its number and "@" the one before.
struct TTypeListText
{
    const char* Name;
    const char* Begin;
    const char* Element;
    const char* End;
    int MostElements;
};

constexpr int MostPorts = 1000;
constexpr int GroupDepth = 50;

constexpr TTypeListText TypeLists[TL_NUMTYPELISTS] = {
    {"enum values", "<parameters><Enum><name>E</name>", "<value>Value#=#</value>", "</Enum></parameters>",
     INT_MAX},
    {"ramp points", "<parameters><Ramp><name>R</name><type>scalar</type><defaultvalues>", "{#,#},",
     "</defaultvalues></Ramp></parameters>", INT_MAX},
    {"numbers of a vector", "<parameters><Vector3><name>V</name><defaultvalue>", "#,",
     "</defaultvalue></Vector3></parameters>", INT_MAX},
    {"members of a group", "<parameters><Group><name>G</name><parameters>", "<Int><name>Member#</name></Int>",
     "</parameters></Group></parameters>", INT_MAX},
    {"members deep in groups", "<parameters>", "<Int><name>Member#</name></Int>", "</parameters>", INT_MAX},
    {"parameters", "<parameters>", "<Int><name>Parameter#</name></Int>", "</parameters>", MostPorts},
    {"inputs that follow each other",
     "<inputs><Polytype><name>Input0</name><validtypes><Scalar/></validtypes></Polytype>",
     "<Polytype><name>Input#</name><linkinput>Input@</linkinput><validtypes><Scalar/></validtypes></"
     "Polytype>",
     "</inputs>", MostPorts},
    {"outputs", "<outputs>", "<Scalar><name>Output#</name></Scalar>", "</outputs>", MostPorts},
    {"unknown tags", "", "<unknown a=\"b\">#</unknown>", "", INT_MAX},
    {"nested unknown tags", "", "<a>", "", INT_MAX},
    {"attributes", "<inputs><Scalar ", "a#=\"b\" ", "><name>S</name></Scalar></inputs>", INT_MAX},
    {"open brackets", "<unknown a=", "(", "></unknown>", INT_MAX},
};

void AppendElement(std::string& text, const char* element, int number)
{
    for (const char* ch = element; *ch != 0; ++ch) {
        if (*ch == '#')
            text += std::to_string(number);
        else if (*ch == '@')
            text += std::to_string(number - 1);
        else
            text += *ch;
    }
}

std::string Repeated(const char* text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string MakeElements(TTypeList list, int size, int first)
{
    const TTypeListText& how = TypeLists[list];
    std::string text;
    text.reserve(static_cast<size_t>(size) + 200);
    for (int i = 0; i < how.MostElements && static_cast<int>(text.size()) < size; ++i)
        AppendElement(text, how.Element, first + i);
    // What opens must close.
    if (list == TL_NESTEDTAGS)
        text += Repeated("</a>", static_cast<int>(text.size()) / 3);
    if (list == TL_BRACKETS)
        text += std::string(text.size(), ')');
    if (list == TL_NESTEDMEMBERS)
        text = Repeated("<Group><name>G</name><parameters>", GroupDepth) + text +
               Repeated("</parameters></Group>", GroupDepth);
    return text;
}

// Bytes that an element takes in an effect, about.
constexpr int BytesOfNode = 230;
constexpr int BytesOfWire = 65;
constexpr int BytesOfStep = 32;
constexpr int BytesOfPoint = 8;
constexpr int BytesOfPointer = 4;
constexpr int BytesOfName = 4;
constexpr int BytesOfUnknown = 12;
constexpr int BytesOfBareNode = 36;
constexpr int BytesOfStack = 20;
constexpr int WiresOfNode = 100;

// A type with as many inputs as told, and one output.
std::unique_ptr<TNodeType> MakeSmallType(int inputs)
{
    auto type = std::make_unique<TNodeType>();
    type->Name = "Small";
    type->Category = TU_PROCESS;
    for (int i = 0; i < inputs; ++i) {
        type->Inputs.push_back(new TNodeScalarParameter);
        type->Inputs.back()->Name = "In";
    }
    TOutputPort output;
    output.Name = "Out";
    output.ValidTypes = 1u << TY_SCALAR;
    type->Outputs.push_back(output);
    return type;
}

TToolNode* Add(TDocument& document, const TNodeType& type)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, 0, 0);
    document.ApplyOperation(op);
    return op->GetNode();
}

void Connect(TToolNode* source, TToolNode* destination, int input)
{
    TToolEdge* edge = new TToolEdge;
    edge->Connect(source, 0, destination, input);
    edge->AttachEnds();
}

// Nodes that come in one step.
void AddNodes(TDocument& document, int count, int inputs, bool isChain)
{
    const std::unique_ptr<TNodeType> type = MakeSmallType(inputs);
    vector<TToolNode*> nodes;
    nodes.reserve(count);
    for (int i = 0; i < count; ++i) {
        TToolNode* node = new TToolNode;
        node->Create(&document, *type, i, i, false);
        for (int input = 0; input < inputs && i > 0; ++input)
            Connect(nodes[isChain ? i - 1 : 0], node, input);
        nodes.push_back(node);
    }
    document.ApplyOperation(new TAddGraphNodesOp(document, nodes));
}

void AddMove(TDocument& document, const vector<TToolNode*>& nodes)
{
    document.ApplyOperation(new TMoveGraphNodeOp(nodes, 1, -1));
}

TNodeRampParameter* MakeRamp(int points)
{
    vector<TRampPoint> curve;
    curve.resize(points);
    for (int i = 0; i < points; ++i)
        curve[i] = {static_cast<float>(i), 0.5f};
    TNodeRampParameter* ramp = new TNodeRampParameter;
    ramp->SetCurve(0, curve);
    return ramp;
}

} // namespace

const char* GetListName(TTypeList list)
{
    return TypeLists[list].Name;
}

std::string MakeTypeFile(TTypeList list, int size, const std::string& name, bool isOld)
{
    const TTypeListText& how = TypeLists[list];
    return "<node><name>" + name + "</name><description>" + (isOld ? "Old" : "New") +
           "</description><type>process</type><colour>red</colour>" + how.Begin +
           MakeElements(list, size, isOld ? 2 : 1) + how.End +
           "<code><classname>C</classname></code></node>\n";
}

std::string MakeAnimationFile(int size)
{
    const int keys = size / 12;
    std::string text = "<VOR><animclip><anim>";
    for (int channel = 0; channel < 3; ++channel) {
        const int count = channel == 0 ? keys : 1;
        text += "<animChannel><animData numKeys=" + std::to_string(count) + " keyStride=3><keyValues>";
        text += Repeated("1 2 3 ", count) + "</keyValues><keyTimes>";
        for (int i = 0; i < count; ++i)
            text += std::to_string(i) + " ";
        text += "</keyTimes></animData></animChannel>";
    }
    return text + "</anim></animclip></VOR>\n";
}

std::string MakeShaderFile(const std::string& shader, int size)
{
    constexpr size_t instruction = 16;
    constexpr size_t parameterCount = 20;
    const auto number = [&shader](size_t at, size_t count) {
        size_t value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value << 8 | static_cast<uint8_t>(shader[at + i]);
        return value;
    };
    const size_t block = number(22, 2);
    const size_t microcode = block + number(block + 16, 4);
    // The patch lists name places of the body: without them it may stand anywhere.
    std::string text = shader.substr(0, microcode);
    text.replace(block + parameterCount, 4, 4, '\0');
    while (static_cast<int>(text.size() + instruction) < size)
        text += shader.substr(microcode, instruction);
    return text + shader.substr(shader.size() - instruction);
}

const char* GetListName(TEffectList list)
{
    constexpr const char* names[EL_NUMEFFECTLISTS] = {"nodes",
                                                      "wires of one output",
                                                      "undo steps",
                                                      "steps that added nodes",
                                                      "nodes of one step",
                                                      "curve points",
                                                      "interfaces",
                                                      "unknown chunks",
                                                      "nodes without types",
                                                      "histories"};
    return names[list];
}

bool IsRefused(TEffectList list)
{
    return list == EL_NODESWITHOUTTYPES || list == EL_STACKS;
}

void FillDocument(TDocument& document, TEffectList list, int size)
{
    TChunkFile& chunks = document.GetChunks();
    const std::unique_ptr<TNodeType> type = MakeSmallType(1);
    vector<TToolNode*> nodes;
    switch (list) {
    case EL_NODES:
        AddNodes(document, size / BytesOfNode, 1, true);
        document.GetOperationStack()->Clear(document);
        break;
    case EL_WIRES:
        AddNodes(document, 1 + size / (BytesOfWire * WiresOfNode), WiresOfNode, false);
        document.GetOperationStack()->Clear(document);
        break;
    case EL_STEPS:
        nodes.push_back(Add(document, *type));
        for (int i = 0; i < size / BytesOfStep; ++i)
            AddMove(document, nodes);
        break;
    case EL_ADDITIONS:
        for (int i = 0; i < size / BytesOfNode; ++i)
            Add(document, *type);
        break;
    case EL_MOVEDNODES:
        nodes.resize(size / BytesOfPointer);
        nodes[0] = Add(document, *type);
        for (TToolNode*& node : nodes)
            node = nodes[0];
        AddMove(document, nodes);
        break;
    case EL_CURVEPOINTS:
        type->Parameters.push_back(MakeRamp(size / BytesOfPoint));
        Add(document, *type);
        break;
    case EL_INTERFACES:
        type->Interfaces.resize(size / BytesOfName);
        Add(document, *type);
        break;
    case EL_UNKNOWNCHUNKS:
        for (int i = 0; i < size / BytesOfUnknown; ++i)
            chunks.AddChunk(new TUnknownChunk(1));
        break;
    case EL_NODESWITHOUTTYPES:
        for (int i = 0; i < size / BytesOfBareNode; ++i)
            chunks.AddChunk(new TToolNode);
        break;
    default:
        for (int i = 0; i < size / BytesOfStack; ++i)
            chunks.AddChunk(new TOperationStack);
        break;
    }
}
