#include "particles/cindermill/graph/operations/polytypeusertypeop.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/refreshrecord.h"

TPolytypeUserTypeOp::TPolytypeUserTypeOp(TEffectNode* node, TNodePolytypeParameter* param, int newType)
    : NewType(newType)
{
    int i = 0;
    while (i < node->GetNodeType()->GetNumInputs() && node->GetNodeType()->GetInput(i) != param)
        ++i;
    ASSERT_TEXT(i < node->GetNodeType()->GetNumInputs(), "i < node->GetNodeType()->GetNumInputs()");
    TPointerMap seen;
    CollectInput(node, i, seen);
}

void TPolytypeUserTypeOp::CollectInput(TEffectNode* node, int port, TPointerMap& seen)
{
    const TNodeType& type = *node->GetNodeType();
    if (type.GetBasicInputType(port) != TY_POLYTYPE)
        return;
    TNodePolytypeParameter* param = static_cast<TNodePolytypeParameter*>(type.GetInput(port));
    if (!seen.Insert(param))
        return;
    Append(Parameters, TParameterRecord{param, param->GetCurrentType()});
    const int linkInput = param->GetLinkInputIndex(node);
    if (linkInput != -1)
        CollectInput(node, linkInput, seen);
    const int linkOutput = param->GetLinkOutputIndex(node);
    if (linkOutput != -1)
        CollectOutput(node, linkOutput, seen);
    const TEffectEdge* edge = node->GetInput(port);
    if (edge != nullptr)
        CollectOutput(edge->GetSrcNode(), edge->GetSrcPort(), seen);
    for (int i = 0; i < type.GetNumInputs(); ++i)
        if (type.GetBasicInputType(i) == TY_POLYTYPE &&
            static_cast<TNodePolytypeParameter*>(type.GetInput(i))->GetLinkInputIndex(node) == port)
            CollectInput(node, i, seen);
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        if (type.GetOutput(i).LinkInput == port)
            CollectOutput(node, i, seen);
}

void TPolytypeUserTypeOp::CollectOutput(TEffectNode* node, int port, TPointerMap& seen)
{
    const TNodeType& type = *node->GetNodeType();
    if (type.GetOutput(port).Type != TY_POLYTYPE)
        return;
    if (!seen.Insert(&type.GetOutput(port)))
        return;
    Append(Outputs, TOutputRecord{node, port, type.GetOutputType(port)});
    if (type.GetOutput(port).LinkInput != -1)
        CollectInput(node, type.GetOutput(port).LinkInput, seen);
    if (type.GetOutput(port).LinkOutput != -1)
        CollectOutput(node, type.GetOutput(port).LinkOutput, seen);
    for (int n = 0; n < node->GetNumOutputEdges(port); ++n) {
        const TEffectEdge* edge = node->GetOutputEdge(port, n);
        CollectInput(edge->GetDstNode(), edge->GetDstPort(), seen);
    }
    for (int i = 0; i < type.GetNumInputs(); ++i)
        if (type.GetBasicInputType(i) == TY_POLYTYPE &&
            static_cast<TNodePolytypeParameter*>(type.GetInput(i))->GetLinkOutputIndex(node) == port)
            CollectInput(node, i, seen);
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        if (type.GetOutput(i).LinkOutput == port)
            CollectOutput(node, i, seen);
}

bool TPolytypeUserTypeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    TBinaryFile& file = chunkFile->File;
    uint32_t count = 0;
    if (!chunkFile->ReadCount(count, 8))
        return false;
    Parameters.resize(static_cast<int>(count));
    for (TParameterRecord& record : Parameters)
        if (!chunkFile->ReadPointer(record.Parameter) || !file.ReadI32(record.OldType))
            return false;
    if (!chunkFile->ReadCount(count, 12))
        return false;
    Outputs.resize(static_cast<int>(count));
    for (TOutputRecord& record : Outputs)
        if (!chunkFile->ReadPointer(record.Node) || !file.ReadI32(record.Port) ||
            !file.ReadI32(record.OldType))
            return false;
    return file.ReadI32(NewType);
}

bool TPolytypeUserTypeOp::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    if (!file.WriteU32(static_cast<uint32_t>(Parameters.size())))
        return false;
    for (const TParameterRecord& record : Parameters)
        if (!chunkFile->WritePointer(record.Parameter) || !file.WriteI32(record.OldType))
            return false;
    if (!file.WriteU32(static_cast<uint32_t>(Outputs.size())))
        return false;
    for (const TOutputRecord& record : Outputs)
        if (!chunkFile->WritePointer(record.Node) || !file.WriteI32(record.Port) ||
            !file.WriteI32(record.OldType))
            return false;
    return file.WriteI32(NewType);
}

bool TPolytypeUserTypeOp::Check() const
{
    auto isType = [](int type) { return type >= TY_SCALAR && type < TY_POLYTYPE; };
    for (const TParameterRecord& record : Parameters)
        if (record.Parameter == nullptr || !isType(record.OldType))
            return false;
    for (const TOutputRecord& record : Outputs)
        if (record.Node == nullptr || !isType(record.OldType))
            return false;
    return isType(NewType);
}

bool TPolytypeUserTypeOp::Fits(const TEffectGraph&, bool) const
{
    for (const TOutputRecord& record : Outputs) {
        const TNodeType* type = record.Node->GetNodeType();
        if (type == nullptr || record.Port < 0 || record.Port >= type->GetNumOutputs())
            return false;
    }
    return true;
}

// Ports that follow each other get one type: where one of them has lost it, or is gone, the others keep
// theirs.
TAdaption TPolytypeUserTypeOp::AdaptTo(const TRefreshRecord& record)
{
    for (TOutputRecord& output : Outputs) {
        output.Port = record.FindOutput(output.Node, output.Port);
        if (output.Port == -1)
            return AD_LOST;
        const uint32_t types = output.Node->GetNodeType()->GetOutput(output.Port).ValidTypes;
        if (record.HasNode(output.Node) && ((types >> output.OldType & types >> NewType) & 1) == 0)
            return AD_LOST;
    }
    for (const TParameterRecord& input : Parameters)
        if (!input.Parameter->IsTypeValid(input.OldType) || !input.Parameter->IsTypeValid(NewType))
            return AD_LOST;
    return TOperation::AdaptTo(record);
}

void TPolytypeUserTypeOp::GetUsed(vector<TChunk*>& result) const
{
    for (const TParameterRecord& record : Parameters)
        Append(result, record.Parameter);
    for (const TOutputRecord& record : Outputs)
        Append(result, record.Node);
}

// An output keeps its type where it cannot have the other, as an input does by itself.
void TPolytypeUserTypeOp::SetOutputType(TEditContext& doc, const TOutputRecord& record, int type)
{
    if ((record.Node->GetNodeType()->GetOutput(record.Port).ValidTypes >> type & 1) != 0)
        doc.GetGraph()->SetDefaultType(record.Node, record.Port, type);
}

// The type in force may be settled by wires, and not be the one that the user once chose: that is what an
// input comes back to, whose wires are as they were then.
void TPolytypeUserTypeOp::Do(TEditContext& doc)
{
    for (const TParameterRecord& record : Parameters) {
        Append(Former.Places, record.Parameter->GetDefaultType());
        record.Parameter->SetUserType(NewType);
    }
    for (const TOutputRecord& record : Outputs)
        SetOutputType(doc, record, NewType);
    doc.GraphChanged();
    doc.RedrawWindows();
}

void TPolytypeUserTypeOp::Undo(TEditContext& doc)
{
    const bool isKnown = Former.Places.size() == Parameters.size();
    for (int i = 0; i < Parameters.size(); ++i)
        Parameters[i].Parameter->SetUserType(isKnown ? Former.Places[i] : Parameters[i].OldType);
    for (const TOutputRecord& record : Outputs)
        SetOutputType(doc, record, record.OldType);
    doc.GraphChanged();
    doc.RedrawWindows();
}
