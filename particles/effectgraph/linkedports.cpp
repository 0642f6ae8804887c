#include "particles/effectgraph/linkedports.h"

#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/polytypeparameter.h"

// The input's parameter if it is a polytype, otherwise null.
static const TNodePolytypeParameter* GetPolytypeInput(const TNodeType& type, int input)
{
    const TNodeParameter* parameter = type.GetInput(input);
    return parameter->Type == TY_POLYTYPE ? static_cast<const TNodePolytypeParameter*>(parameter) : nullptr;
}

void GetPortLinks(const TPortRef& port, int& linkInput, int& linkOutput)
{
    linkInput = -1;
    linkOutput = -1;
    const TNodeType& type = *port.Node->GetNodeType();
    if (port.IsInput()) {
        const TNodePolytypeParameter* input = GetPolytypeInput(type, port.Index);
        if (input == nullptr)
            return;
        linkInput = input->GetLinkInputIndex(port.Node);
        linkOutput = input->GetLinkOutputIndex(port.Node);
    } else {
        const TOutputPort& output = type.GetOutput(port.GetOutputIndex());
        if (output.Type != TY_POLYTYPE)
            return;
        linkInput = output.LinkInput;
        linkOutput = output.LinkOutput;
    }
}

uint32_t GetPortTypes(const TPortRef& port)
{
    const TNodeType& type = *port.Node->GetNodeType();
    if (!port.IsInput())
        return type.GetOutput(port.GetOutputIndex()).ValidTypes;
    const TNodePolytypeParameter* input = GetPolytypeInput(type, port.Index);
    return input != nullptr ? input->GetValidTypes() : 1u << type.GetBasicInputType(port.Index);
}

void AddLinkClosure(const TPortRef& port, TLinkedPorts& result)
{
    const int numInputs = port.Node->GetNodeType()->GetNumInputs();
    vector<TPortRef> waiting;
    waiting.push_back(port);
    while (!waiting.empty()) {
        const TPortRef next = waiting.back();
        waiting.pop_back();
        set<int>& ports = next.IsInput() ? result.Inputs : result.Outputs;
        const int index = next.IsInput() ? next.GetInputIndex() : next.GetOutputIndex();
        if (ports.find(index) != ports.end())
            continue;
        ports.insert(index);
        int linkInput = -1;
        int linkOutput = -1;
        GetPortLinks(next, linkInput, linkOutput);
        // What is pushed last is walked first.
        if (linkOutput != -1)
            waiting.push_back(TPortRef(port.Node, numInputs + linkOutput));
        if (linkInput != -1)
            waiting.push_back(TPortRef(port.Node, linkInput));
    }
}
