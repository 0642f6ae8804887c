#pragma once

#include "particles/effectgraph/nodetypefile.h"
#include "support/testsupport.h"

#include "library/system/files/xmlfile.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

struct TTestPort
{
    TTestPort(const char* name, int type = TY_SCALAR) : Name(name), Type(type) {}
    std::string Name;
    int Type;
};

// A graph made in memory, with the nodes, node types and edges that it owns.
//
//     TTestGraph g;
//     TEffectNode* emitter = g.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Position", TY_VECTOR3}});
//     TEffectNode* sprite = g.Node("Sprite", TU_RENDER, {{"Position", TY_VECTOR3}}, {});
//     g.Int(emitter, "Particle Count", 50);
//     g.Wire(emitter, "Position", sprite, "Position");
//
// Misuse (an unknown port, XML that does not parse) throws std::runtime_error.
class TTestGraph
{
public:
    TTestGraph() = default;
    TTestGraph(const TTestGraph&) = delete;
    TTestGraph& operator=(const TTestGraph&) = delete;

    TEffectGraph& GetGraph() { return Graph; }
    const TEffectGraph& GetGraph() const { return Graph; }

    // A node with a private type. The run-time class stays empty: see Class.
    TEffectNode* Node(const char* typeName, int category, const std::vector<TTestPort>& inputs,
                      const std::vector<TTestPort>& outputs, uint32_t flags = 0)
    {
        auto type = std::make_unique<TNodeType>();
        type->Name = typeName;
        type->Category = category;
        type->Flags = flags;
        for (const TTestPort& port : inputs)
            type->Inputs.push_back(Named(CreateNodeParameter(port.Type), port.Name.c_str()));
        for (const TTestPort& port : outputs)
            type->Outputs.push_back(MakeOutput(port));
        return AddNode(std::move(type));
    }
    // A node of a type made elsewhere, from a node type file for one.
    TEffectNode* AddNode(std::unique_ptr<TNodeType> type)
    {
        auto node = std::make_unique<TEffectNode>();
        node->SetNodeType(type.get());
        node->SetPortCounts(type->GetNumInputs(), type->GetNumOutputs());
        Graph.AddNode(node.get());
        Types.push_back(std::move(type));
        Nodes.push_back(std::move(node));
        return Nodes.back().get();
    }
    void Class(TEffectNode* node, const char* className) { node->GetNodeType()->ClassName = className; }

    TEffectEdge* Wire(TEffectNode* src, int srcPort, TEffectNode* dst, int dstPort)
    {
        auto edge = std::make_unique<TEffectEdge>();
        edge->SetEnds(src, srcPort, dst, dstPort);
        dst->SetInput(dstPort, edge.get());
        src->AddOutputEdge(srcPort, edge.get());
        Graph.AddEdge(edge.get());
        Edges.push_back(std::move(edge));
        return Edges.back().get();
    }
    TEffectEdge* Wire(TEffectNode* src, const char* srcPort, TEffectNode* dst, const char* dstPort)
    {
        const int output = src->GetNodeType()->FindOutput(srcPort);
        const int input = dst->GetNodeType()->FindInput(dstPort);
        if (output == -1 || input == -1)
            throw std::runtime_error(std::string("no ports ") + srcPort + " and " + dstPort);
        return Wire(src, output, dst, input);
    }

    // Parameters, in order of the calls.
    void Value(TEffectNode* node, int type, const char* name, const std::vector<float>& value)
    {
        Store(Added(node, Named(CreateNodeParameter(type), name)), value);
    }
    void Scalar(TEffectNode* node, const char* name, float value) { Value(node, TY_SCALAR, name, {value}); }
    void Int(TEffectNode* node, const char* name, int value)
    {
        auto* parameter =
            static_cast<TNodeIntParameter*>(Added(node, Named(CreateNodeParameter(PK_INT), name)));
        parameter->SetValue(value);
    }
    void Bool(TEffectNode* node, const char* name, bool value)
    {
        auto* parameter =
            static_cast<TNodeBoolParameter*>(Added(node, Named(CreateNodeParameter(PK_BOOL), name)));
        parameter->SetValue(value);
    }
    // Entries as in a node type file: "Name" or "Name=Number".
    void Enum(TEffectNode* node, const char* name, std::initializer_list<const char*> entries, int index)
    {
        std::string xml = std::string("<Enum><name>") + name + "</name>";
        for (const char* entry : entries)
            xml += std::string("<value>") + entry + "</value>";
        static_cast<TNodeEnumParameter*>(Parameter(node, xml + "</Enum>"))->SetValue(index);
    }
    // `children` are elements of a node type file.
    void Group(TEffectNode* node, const char* name, bool open, const std::string& children)
    {
        Parameter(node, std::string("<Group><name>") + name + "</name><defaultvalue>" +
                            (open ? "true" : "false") + "</defaultvalue><parameters>" + children +
                            "</parameters></Group>");
    }
    // Any parameter, by its element in a node type file.
    TNodeParameter* Parameter(TEffectNode* node, const std::string& xml) { return Added(node, Parse(xml)); }
    // Puts an input of another kind, a polytype for one, in the place of an input port.
    void ReplaceInput(TEffectNode* node, int port, const std::string& xml)
    {
        TNodeParameter* parameter = Parse(xml);
        delete node->GetNodeType()->Inputs[port];
        node->GetNodeType()->Inputs[port] = parameter;
    }
    // What an unconnected input holds.
    void InputValue(TEffectNode* node, const char* name, const std::vector<float>& value)
    {
        const int port = node->GetNodeType()->FindInput(name);
        if (port == -1)
            throw std::runtime_error(std::string("no input ") + name);
        Store(node->GetNodeType()->GetInput(port), value);
    }

private:
    static TNodeParameter* Named(TNodeParameter* parameter, const char* name)
    {
        parameter->Name = name;
        return parameter;
    }
    static TOutputPort MakeOutput(const TTestPort& port)
    {
        TOutputPort output;
        output.Type = port.Type;
        output.Name = port.Name.c_str();
        output.DefaultType = port.Type;
        output.ValidTypes = 1u << port.Type;
        return output;
    }
    static TNodeParameter* Added(TEffectNode* node, TNodeParameter* parameter)
    {
        node->GetNodeType()->Parameters.push_back(parameter);
        node->GetNodeType()->NumOwnParameters = node->GetNodeType()->GetNumParameters();
        return parameter;
    }
    static void Store(TNodeParameter* parameter, const std::vector<float>& value)
    {
        auto* target = static_cast<TNodeValueParameter*>(parameter);
        if (parameter->Type >= TY_POLYTYPE || target->GetNumFloats() != static_cast<int>(value.size()))
            throw std::runtime_error("a value of another size");
        target->SetValue(value.data());
    }
    static TNodeParameter* Parse(const std::string& element)
    {
        const TTempFolder folder;
        const std::string path = folder.Path("parameter.xml");
        WriteBytes(path, "<parameters>" + element + "</parameters>");
        TXmlFile xml;
        TErrorList errors;
        TNodeParameter* result = nullptr;
        if (xml.OpenRead(path.c_str())) {
            TNodeTypeFile file(xml, errors, path.c_str());
            if (xml.FindTag("parameters"))
                ParseParameter(file, result, false);
            xml.Close();
        }
        if (result == nullptr)
            throw std::runtime_error("not a parameter: " + element);
        return result;
    }

    TEffectGraph Graph;
    std::vector<std::unique_ptr<TNodeType>> Types;
    std::vector<std::unique_ptr<TEffectNode>> Nodes;
    std::vector<std::unique_ptr<TEffectEdge>> Edges;
};

// The messages of a list, as a person reads them.
inline std::vector<std::string> TextsOf(const TErrorList& errors)
{
    std::vector<std::string> result;
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        result.push_back(Text(text));
    }
    return result;
}

// Reports with every address replaced by its order of appearance, so that two runs can be compared.
inline std::string MaskAddresses(const std::string& report)
{
    std::vector<std::string> seen;
    std::string result;
    size_t at = 0;
    while (at < report.size()) {
        if (report.compare(at, 2, "0x") != 0) {
            result += report[at++];
            continue;
        }
        const size_t end = std::min(report.find_first_not_of("0123456789abcdef", at + 2), report.size());
        // Addresses are cut to 32 bits, so an edge may show the same one as a node.
        const std::string before = at >= 5 ? report.substr(at - 5, 4) : std::string();
        const std::string address = (before == "edge" ? "edge " : "") + report.substr(at, end - at);
        size_t order = 0;
        while (order < seen.size() && seen[order] != address)
            ++order;
        if (order == seen.size())
            seen.push_back(address);
        result += "@" + std::to_string(order);
        at = end;
    }
    return result;
}
