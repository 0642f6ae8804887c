#include "particles/cindermill/interface/particles/spacedisplay.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/effectgraph.h"

static const TVector4 FaintColour(0, 0, 0, 0.125f);
static const TVector4 SelectedColour(0.95f, 0.4f, 0.0f, 1);

TNodeParameter* TSpaceDisplay::FindPort(int port, int type) const
{
    const TNodeType* nodeType = Node->GetNodeType();
    if (port >= nodeType->GetNumInputs() || nodeType->GetBasicInputType(port) != type)
        return nullptr;
    return nodeType->GetInput(port);
}

bool TSpaceDisplay::IsConnected(int port) const
{
    return port < Node->GetNumInputs() && Node->GetInput(port) != nullptr;
}

TPortValue TSpaceDisplay::ReadPort(int port) const
{
    TPortValue value;
    Node->GetNodeType()->GetInput(port)->GetValue(value.GetFloats());
    return value;
}

bool TSpaceDisplay::GetFrame(int transformPort, int sizePort, TMatrix43& frame) const
{
    if (IsConnected(transformPort))
        return false;
    frame = GetTransformMatrix(ReadPort(transformPort));
    if (IsConnected(sizePort))
        return true;
    const TPortValue size = ReadPort(sizePort);
    if (Node->GetNodeType()->GetInputType(sizePort) == TY_SCALE)
        ScaleFirst(frame, size[0], 1, size[1]);
    else
        ScaleFirst(frame, size[0], size[1], size[2]);
    return true;
}

TVector4 TSpaceDisplay::GetColour() const
{
    return IsSelected() ? SelectedColour : FaintColour;
}
