#include "particles/cindermill/graph/operations/nodepropertiesop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

namespace {

TNodeProperties PropertiesOf(const TNodeType& type)
{
    return TNodeProperties{type.Name,
                           type.GetRenderPriority(),
                           type.HasFlag(FL_DYNAMICBOUNDS),
                           type.HasFlag(FL_STATICBOUNDS),
                           type.BoundsMin,
                           type.BoundsMax};
}

} // namespace

TNodePropertiesOp::TNodePropertiesOp(TToolNode* node, const TNodeProperties& properties)
    : Node(node), Old(PropertiesOf(*node->GetNodeType())), New(properties)
{
}

bool TNodePropertiesOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    TBinaryFile& file = chunkFile->File;
    if (!chunkFile->ReadPointer(Node) || !file.ReadString(Old.Name) || !file.ReadString(New.Name) ||
        !file.ReadI32(Old.Priority) || !file.ReadI32(New.Priority) || !file.ReadBool(Old.DynamicBounds) ||
        !file.ReadBool(New.DynamicBounds))
        return false;
    if (version < 1)
        return true;
    return file.ReadBool(Old.StaticBounds) && file.ReadBool(New.StaticBounds) &&
           file.ReadVector3(Old.BoundsMin) && file.ReadVector3(New.BoundsMin) &&
           file.ReadVector3(Old.BoundsMax) && file.ReadVector3(New.BoundsMax);
}

bool TNodePropertiesOp::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return chunkFile->WritePointer(Node) && file.WriteString(Old.Name) && file.WriteString(New.Name) &&
           file.WriteI32(Old.Priority) && file.WriteI32(New.Priority) && file.WriteBool(Old.DynamicBounds) &&
           file.WriteBool(New.DynamicBounds) && file.WriteBool(Old.StaticBounds) &&
           file.WriteBool(New.StaticBounds) && file.WriteVector3(Old.BoundsMin) &&
           file.WriteVector3(New.BoundsMin) && file.WriteVector3(Old.BoundsMax) &&
           file.WriteVector3(New.BoundsMax);
}

int TNodePropertiesOp::GetSize()
{
    return TBinaryFile::GetStringSize(Old.Name) + TBinaryFile::GetStringSize(New.Name) + 64;
}

bool TNodePropertiesOp::Check() const
{
    auto isPriority = [](int priority) { return priority >= 0 && priority < 256; };
    return Node != nullptr && isPriority(Old.Priority) && isPriority(New.Priority);
}

void TNodePropertiesOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Node);
}

void TNodePropertiesOp::Store(TEditContext& doc, const TNodeProperties& properties)
{
    TNodeType& type = *Node->GetNodeType();
    type.Name = properties.Name;
    type.SetRenderPriority(properties.Priority);
    type.SetFlag(FL_DYNAMICBOUNDS, properties.DynamicBounds);
    type.SetFlag(FL_STATICBOUNDS, properties.StaticBounds);
    type.BoundsMin = properties.BoundsMin;
    type.BoundsMax = properties.BoundsMax;
    doc.GetListener().NodeTypeChanged(Node);
    FinishGraphChange(doc);
}
