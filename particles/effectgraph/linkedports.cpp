#include "particles/effectgraph/linkedports.h"

#include "library/containers/append.h"
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

void GetLinkClosure(const TPortRef& port, vector<int>& result)
{
    const TNodeType& type = *port.Node->GetNodeType();
    const int numInputs = type.GetNumInputs();
    vector<bool> isMet;
    isMet.resize(numInputs + type.GetNumOutputs());
    vector<int> waiting;
    Append(waiting, port.Index);
    while (!waiting.empty()) {
        const int next = waiting.back();
        waiting.pop_back();
        if (isMet[next])
            continue;
        isMet[next] = true;
        Append(result, next);
        int linkInput = -1;
        int linkOutput = -1;
        GetPortLinks(TPortRef(port.Node, next), linkInput, linkOutput);
        // What is pushed last is walked first.
        if (linkOutput != -1)
            Append(waiting, numInputs + linkOutput);
        if (linkInput != -1)
            Append(waiting, linkInput);
    }
}

void AddLinkClosure(const TPortRef& port, TLinkedPorts& result)
{
    const int numInputs = port.Node->GetNodeType()->GetNumInputs();
    vector<int> ports;
    GetLinkClosure(port, ports);
    for (int index : ports) {
        if (index < numInputs)
            result.Inputs.insert(index);
        else
            result.Outputs.insert(index - numInputs);
    }
}
