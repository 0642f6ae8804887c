#include "particles/cindermill/graph/paramoperations.h"

#include "particles/cindermill/graph/editcontext.h"
#include "particles/cindermill/graph/operationclass.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/refreshrecord.h"

CINDERMILL_OPERATION(TScalarParamOp)
CINDERMILL_OPERATION(TBoolParamOp)
CINDERMILL_OPERATION(TGroupParamOp)
CINDERMILL_OPERATION(TPolytypeUserTypeOp)
CINDERMILL_OPERATION(TEnumParamOp)
CINDERMILL_OPERATION(TIntParamOp)
CINDERMILL_OPERATION(TTextureParamOp)
CINDERMILL_OPERATION(TRampMovePointParamOp)
CINDERMILL_OPERATION(TRampChangePointsOp)
CINDERMILL_OPERATION(TRampChangeAllPointsOp)
CINDERMILL_OPERATION(TRampLockOp)
CINDERMILL_OPERATION(TRampLinearOp)
CINDERMILL_OPERATION(TAnimNameParamOp)
CINDERMILL_OPERATION(TAnimFlagsParamOp)

#define CINDERMILL_VALUE_OPERATION(TClass)                                                                   \
    template <>                                                                                              \
    int TClass::ClassId()                                                                                    \
    {                                                                                                        \
        static const int id = RegisterClass(ConstructClass<TClass, TChunk>, #TClass, TOperation::ClassId()); \
        return id;                                                                                           \
    }                                                                                                        \
    template <>                                                                                              \
    uint32_t TClass::NameID()                                                                                \
    {                                                                                                        \
        static const uint32_t id = GetClassNameID(ClassId());                                                \
        return id;                                                                                           \
    }

CINDERMILL_VALUE_OPERATION(TScaleParamOp)
CINDERMILL_VALUE_OPERATION(TVector3ParamOp)
CINDERMILL_VALUE_OPERATION(TQuaternionParamOp)
CINDERMILL_VALUE_OPERATION(TColourParamOp)
CINDERMILL_VALUE_OPERATION(TTransformParamOp)
CINDERMILL_VALUE_OPERATION(TTexCoordParamOp)

#undef CINDERMILL_VALUE_OPERATION

// The scalar's operation is a class derived from the form, and the one that is registered.
template <>
uint32_t TValueParamOpOf<TNodeScalarParameter, 1>::NameID()
{
    return TScalarParamOp::NameID();
}

void RegisterParamOperations()
{
    TScalarParamOp::ClassId();
    TScaleParamOp::ClassId();
    TVector3ParamOp::ClassId();
    TQuaternionParamOp::ClassId();
    TColourParamOp::ClassId();
    TTransformParamOp::ClassId();
    TTexCoordParamOp::ClassId();
    TBoolParamOp::ClassId();
    TGroupParamOp::ClassId();
    TPolytypeUserTypeOp::ClassId();
    TEnumParamOp::ClassId();
    TIntParamOp::ClassId();
    TTextureParamOp::ClassId();
    TRampMovePointParamOp::ClassId();
    TRampChangePointsOp::ClassId();
    TRampChangeAllPointsOp::ClassId();
    TRampLockOp::ClassId();
    TRampLinearOp::ClassId();
    TAnimNameParamOp::ClassId();
    TAnimFlagsParamOp::ClassId();
}

namespace {

bool ReadFloats(TBinaryFile& file, float* values, int count)
{
    for (int i = 0; i < count; ++i)
        if (!file.ReadFloat(values[i]))
            return false;
    return true;
}

bool WriteFloats(TBinaryFile& file, const float* values, int count)
{
    for (int i = 0; i < count; ++i)
        if (!file.WriteFloat(values[i]))
            return false;
    return true;
}

bool ReadPoints(TChunkFile* chunkFile, vector<TRampPoint>& points)
{
    uint32_t count = 0;
    if (!chunkFile->ReadCount(count, 8))
        return false;
    points.resize(static_cast<int>(count));
    for (TRampPoint& point : points)
        if (!chunkFile->File.ReadFloat(point.X) || !chunkFile->File.ReadFloat(point.Y))
            return false;
    return true;
}

bool WritePoints(TChunkFile* chunkFile, const vector<TRampPoint>& points)
{
    if (!chunkFile->File.WriteU32(static_cast<uint32_t>(points.size())))
        return false;
    for (const TRampPoint& point : points)
        if (!chunkFile->File.WriteFloat(point.X) || !chunkFile->File.WriteFloat(point.Y))
            return false;
    return true;
}

bool IsChannel(int channel)
{
    return channel >= 0 && channel < TNodeRampParameter::MaxDimensions;
}

} // namespace

TValueParamOp::TValueParamOp(TNodeValueParameter* param, const float* newValue)
    : Param(param), NumFloats(param->GetNumFloats())
{
    param->GetValue(Old);
    for (int i = 0; i < NumFloats; ++i)
        New[i] = newValue[i];
}

bool TValueParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return ReadParam(chunkFile) && ReadFloats(chunkFile->File, Old, NumFloats) &&
           ReadFloats(chunkFile->File, New, NumFloats);
}

bool TValueParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && WriteFloats(chunkFile->File, Old, NumFloats) &&
           WriteFloats(chunkFile->File, New, NumFloats);
}

void TValueParamOp::Store(TEditContext& doc, const float* value)
{
    Param->SetValue(value);
    doc.RedrawWindows();
}

// The components that this operation and the earlier one change are the same.
bool TValueParamOp::IsLike(const TValueParamOp& previous) const
{
    for (int i = 0; i < NumFloats; ++i)
        if ((Old[i] != New[i]) != (previous.Old[i] != previous.New[i]))
            return false;
    return true;
}

bool TValueParamOp::Merge(TOperation& previous)
{
    if (previous.GetClassId() != GetClassId())
        return false;
    TValueParamOp& earlier = static_cast<TValueParamOp&>(previous);
    if (earlier.Param != Param || !IsLike(earlier))
        return false;
    for (int i = 0; i < NumFloats; ++i)
        earlier.New[i] = New[i];
    Param->SetValue(New);
    return true;
}

bool TScalarParamOp::IsLike(const TValueParamOp& previous) const
{
    const TScalarParamOp& earlier = static_cast<const TScalarParamOp&>(previous);
    const bool rises = Old[0] < New[0];
    if (rises == (earlier.Old[0] < earlier.New[0]))
        return true;
    DebugPrintf("no join\n");
    return false;
}

bool TScalarParamOp::Merge(TOperation& previous)
{
    if (previous.GetClassId() == GetClassId())
        return TValueParamOp::Merge(previous);
    DebugPrintf("no join\n");
    return false;
}

TBoolParamOp::TBoolParamOp(TNodeBoolParameter* param, bool set) : Param(param), Set(set)
{
    ASSERT_TEXT(param->Get() != set, "param->Get() != set");
}

bool TBoolParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadBool(Set);
}

bool TBoolParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteBool(Set);
}

void TBoolParamOp::Do(TEditContext& doc)
{
    Param->SetValue(Set);
    doc.RedrawWindows();
}

void TBoolParamOp::Undo(TEditContext& doc)
{
    Param->SetValue(!Set);
    doc.RedrawWindows();
}

TGroupParamOp::TGroupParamOp(TNodeGroupParameter* param, bool set) : Param(param), Set(set)
{
    ASSERT_TEXT(param->Get() != set, "param->Get() != set");
}

bool TGroupParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadBool(Set);
}

bool TGroupParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteBool(Set);
}

void TGroupParamOp::Do(TEditContext& doc)
{
    Param->SetValue(Set);
    doc.RedrawWindows();
}

void TGroupParamOp::Undo(TEditContext& doc)
{
    Param->SetValue(!Set);
    doc.RedrawWindows();
}

TPolytypeUserTypeOp::TPolytypeUserTypeOp(TEffectNode* node, TNodePolytypeParameter* param, int newType)
    : NewType(newType)
{
    int i = 0;
    while (i < node->GetNodeType()->GetNumInputs() && node->GetNodeType()->GetInput(i) != param)
        ++i;
    ASSERT_TEXT(i < node->GetNodeType()->GetNumInputs(), "i < node->GetNodeType()->GetNumInputs()");
    CollectInput(node, i);
}

void TPolytypeUserTypeOp::CollectInput(TEffectNode* node, int port)
{
    const TNodeType& type = *node->GetNodeType();
    if (type.GetBasicInputType(port) != TY_POLYTYPE)
        return;
    TNodePolytypeParameter* param = static_cast<TNodePolytypeParameter*>(type.GetInput(port));
    for (const TParameterRecord& record : Parameters)
        if (record.Parameter == param)
            return;
    Parameters.push_back(TParameterRecord{param, param->GetCurrentType()});
    const int linkInput = param->GetLinkInputIndex(node);
    if (linkInput != -1)
        CollectInput(node, linkInput);
    const int linkOutput = param->GetLinkOutputIndex(node);
    if (linkOutput != -1)
        CollectOutput(node, linkOutput);
    const TEffectEdge* edge = node->GetInput(port);
    if (edge != nullptr)
        CollectOutput(edge->GetSrcNode(), edge->GetSrcPort());
    for (int i = 0; i < type.GetNumInputs(); ++i)
        if (type.GetBasicInputType(i) == TY_POLYTYPE &&
            static_cast<TNodePolytypeParameter*>(type.GetInput(i))->GetLinkInputIndex(node) == port)
            CollectInput(node, i);
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        if (type.GetOutput(i).LinkInput == port)
            CollectOutput(node, i);
}

void TPolytypeUserTypeOp::CollectOutput(TEffectNode* node, int port)
{
    const TNodeType& type = *node->GetNodeType();
    if (type.GetOutput(port).Type != TY_POLYTYPE)
        return;
    for (const TOutputRecord& record : Outputs)
        if (record.Node == node && record.Port == port)
            return;
    Outputs.push_back(TOutputRecord{node, port, type.GetOutputType(port)});
    if (type.GetOutput(port).LinkInput != -1)
        CollectInput(node, type.GetOutput(port).LinkInput);
    if (type.GetOutput(port).LinkOutput != -1)
        CollectOutput(node, type.GetOutput(port).LinkOutput);
    for (int n = 0; n < node->GetNumOutputEdges(port); ++n) {
        const TEffectEdge* edge = node->GetOutputEdge(port, n);
        CollectInput(edge->GetDstNode(), edge->GetDstPort());
    }
    for (int i = 0; i < type.GetNumInputs(); ++i)
        if (type.GetBasicInputType(i) == TY_POLYTYPE &&
            static_cast<TNodePolytypeParameter*>(type.GetInput(i))->GetLinkOutputIndex(node) == port)
            CollectInput(node, i);
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        if (type.GetOutput(i).LinkOutput == port)
            CollectOutput(node, i);
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
        result.push_back(record.Parameter);
    for (const TOutputRecord& record : Outputs)
        result.push_back(record.Node);
}

void TPolytypeUserTypeOp::Do(TEditContext& doc)
{
    for (const TParameterRecord& record : Parameters)
        record.Parameter->SetUserType(NewType);
    for (const TOutputRecord& record : Outputs)
        record.Node->GetNodeType()->GetOutput(record.Port).DefaultType = NewType;
    doc.RedrawWindows();
}

void TPolytypeUserTypeOp::Undo(TEditContext& doc)
{
    for (const TParameterRecord& record : Parameters)
        record.Parameter->SetUserType(record.OldType);
    for (const TOutputRecord& record : Outputs)
        record.Node->GetNodeType()->GetOutput(record.Port).DefaultType = record.OldType;
    doc.RedrawWindows();
}

TEnumParamOp::TEnumParamOp(TNodeEnumParameter* param, int newValue)
    : Param(param), Old(param->GetIndex()), New(newValue)
{
}

bool TEnumParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadI32(Old) && chunkFile->File.ReadI32(New);
}

bool TEnumParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteI32(Old) && chunkFile->File.WriteI32(New);
}

void TEnumParamOp::Do(TEditContext& doc)
{
    Param->SetValue(New);
    doc.RedrawWindows();
}

void TEnumParamOp::Undo(TEditContext& doc)
{
    Param->SetValue(Old);
    doc.RedrawWindows();
}

TIntParamOp::TIntParamOp(TNodeIntParameter* param, int newValue)
    : Param(param), Old(param->Get()), New(newValue)
{
}

bool TIntParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadI32(Old) && chunkFile->File.ReadI32(New);
}

bool TIntParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteI32(Old) && chunkFile->File.WriteI32(New);
}

void TIntParamOp::Do(TEditContext& doc)
{
    Param->SetValue(New);
    doc.RedrawWindows();
}

void TIntParamOp::Undo(TEditContext& doc)
{
    Param->SetValue(Old);
    doc.RedrawWindows();
}

bool TIntParamOp::Merge(TOperation& previous)
{
    if (previous.GetClassId() != GetClassId())
        return false;
    TIntParamOp& earlier = static_cast<TIntParamOp&>(previous);
    if (earlier.Param != Param || (earlier.Old < earlier.New) != (Old < New))
        return false;
    earlier.New = New;
    Param->SetValue(New);
    return true;
}

TTextureParamOp::TTextureParamOp(TNodeTextureParameter* param, const char* newName)
    : Param(param), Old(param->GetFileName()), New(newName)
{
}

bool TTextureParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadString(Old) &&
           chunkFile->File.ReadString(New);
}

bool TTextureParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteString(Old) &&
           chunkFile->File.WriteString(New);
}

int TTextureParamOp::GetSize()
{
    return 4 + TBinaryFile::GetStringSize(Old) + TBinaryFile::GetStringSize(New);
}

void TTextureParamOp::Do(TEditContext& doc)
{
    Param->SetValue(New);
    doc.RedrawWindows();
}

void TTextureParamOp::Undo(TEditContext& doc)
{
    Param->SetValue(Old);
    doc.RedrawWindows();
}

TRampMovePointParamOp::TRampMovePointParamOp(TNodeRampParameter* param, int channel, int point,
                                             const TRampPoint& newPoint)
    : Param(param), Channel(channel), Point(point), Old(param->GetCurve(channel)[point]), New(newPoint)
{
}

bool TRampMovePointParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    TBinaryFile& file = chunkFile->File;
    return chunkFile->ReadPointer(Param) && file.ReadI32(Channel) && file.ReadI32(Point) &&
           file.ReadFloat(Old.X) && file.ReadFloat(Old.Y) && file.ReadFloat(New.X) && file.ReadFloat(New.Y);
}

bool TRampMovePointParamOp::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return chunkFile->WritePointer(Param) && file.WriteI32(Channel) && file.WriteI32(Point) &&
           file.WriteFloat(Old.X) && file.WriteFloat(Old.Y) && file.WriteFloat(New.X) &&
           file.WriteFloat(New.Y);
}

bool TRampMovePointParamOp::Check() const
{
    return Param != nullptr && IsChannel(Channel) && Point >= 0;
}

bool TRampMovePointParamOp::Fits(const TEffectGraph&, bool) const
{
    return Point < Param->GetCurve(Channel).size();
}

void TRampMovePointParamOp::Do(TEditContext& doc)
{
    Param->SetPoint(Channel, Point, New);
    doc.RedrawWindows();
}

void TRampMovePointParamOp::Undo(TEditContext& doc)
{
    Param->SetPoint(Channel, Point, Old);
    doc.RedrawWindows();
}

// A drag of a point sends one operation, at its end.
bool TRampMovePointParamOp::Merge(TOperation& previous)
{
    (void)previous;
    return false;
}

TRampChangePointsOp::TRampChangePointsOp(TNodeRampParameter* param, int channel,
                                         const vector<TRampPoint>& newPoints)
    : Param(param), Channel(channel), Old(param->GetCurve(channel)), New(newPoints)
{
}

bool TRampChangePointsOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadI32(Channel) && ReadPoints(chunkFile, Old) &&
           ReadPoints(chunkFile, New);
}

bool TRampChangePointsOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteI32(Channel) &&
           WritePoints(chunkFile, Old) && WritePoints(chunkFile, New);
}

bool TRampChangePointsOp::Check() const
{
    return Param != nullptr && IsChannel(Channel);
}

void TRampChangePointsOp::Do(TEditContext& doc)
{
    Param->SetCurve(Channel, New);
    doc.RedrawWindows();
}

void TRampChangePointsOp::Undo(TEditContext& doc)
{
    Param->SetCurve(Channel, Old);
    doc.RedrawWindows();
}

TRampChangeAllPointsOp::TRampChangeAllPointsOp(TNodeRampParameter* param, const vector<TRampPoint>* newLists)
    : Param(param)
{
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i) {
        Old[i] = param->GetCurve(i);
        New[i] = newLists[i];
    }
}

bool TRampChangeAllPointsOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Param))
        return false;
    for (vector<TRampPoint>& points : Old)
        if (!ReadPoints(chunkFile, points))
            return false;
    for (vector<TRampPoint>& points : New)
        if (!ReadPoints(chunkFile, points))
            return false;
    return true;
}

bool TRampChangeAllPointsOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Param))
        return false;
    for (const vector<TRampPoint>& points : Old)
        if (!WritePoints(chunkFile, points))
            return false;
    for (const vector<TRampPoint>& points : New)
        if (!WritePoints(chunkFile, points))
            return false;
    return true;
}

int TRampChangeAllPointsOp::GetSize()
{
    int size = 4;
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        size += 8 + 8 * (Old[i].size() + New[i].size());
    return size;
}

void TRampChangeAllPointsOp::Do(TEditContext& doc)
{
    Param->SetCurves(New);
    doc.RedrawWindows();
}

void TRampChangeAllPointsOp::Undo(TEditContext& doc)
{
    Param->SetCurves(Old);
    doc.RedrawWindows();
}

TRampLockOp::TRampLockOp(TNodeRampParameter* param, const int* newlocks) : Param(param)
{
    for (int i = 0; i < param->GetDimensions(); ++i) {
        ASSERT_TEXT(newlocks[i] >= -1 && newlocks[i] < 4, "newlocks[i] >= -1 && newlocks[i] < 4");
        New[i] = newlocks[i];
        Old[i] = param->GetLocks()[i];
    }
}

bool TRampLockOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Param))
        return false;
    for (int& lock : New)
        if (!chunkFile->File.ReadI32(lock))
            return false;
    for (int& lock : Old)
        if (!chunkFile->File.ReadI32(lock))
            return false;
    return true;
}

bool TRampLockOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Param))
        return false;
    for (int lock : New)
        if (!chunkFile->File.WriteI32(lock))
            return false;
    for (int lock : Old)
        if (!chunkFile->File.WriteI32(lock))
            return false;
    return true;
}

bool TRampLockOp::Check() const
{
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        if ((New[i] != -1 && !IsChannel(New[i])) || (Old[i] != -1 && !IsChannel(Old[i])))
            return false;
    return Param != nullptr;
}

void TRampLockOp::Do(TEditContext& doc)
{
    Param->SetLocks(New);
    doc.RedrawWindows();
}

void TRampLockOp::Undo(TEditContext& doc)
{
    Param->SetLocks(Old);
    doc.RedrawWindows();
}

TRampLinearOp::TRampLinearOp(TNodeRampParameter* param, bool linear) : Param(param), Linear(linear)
{
    ASSERT_TEXT(param->IsLinear() != linear, "param->IsLinear() != linear");
}

bool TRampLinearOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadBool(Linear);
}

bool TRampLinearOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteBool(Linear);
}

void TRampLinearOp::Do(TEditContext& doc)
{
    Param->SetLinear(Linear);
    doc.RedrawWindows();
}

void TRampLinearOp::Undo(TEditContext& doc)
{
    Param->SetLinear(!Linear);
    doc.RedrawWindows();
}

TAnimNameParamOp::TAnimNameParamOp(TNodeAnimationParameter* param, const char* newName)
    : Param(param), Old(param->GetFileName()), New(newName)
{
}

bool TAnimNameParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Param) && chunkFile->File.ReadString(Old) &&
           chunkFile->File.ReadString(New);
}

bool TAnimNameParamOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Param) && chunkFile->File.WriteString(Old) &&
           chunkFile->File.WriteString(New);
}

int TAnimNameParamOp::GetSize()
{
    return 4 + TBinaryFile::GetStringSize(Old) + TBinaryFile::GetStringSize(New);
}

void TAnimNameParamOp::Do(TEditContext& doc)
{
    Param->SetFileName(New);
    doc.RedrawWindows();
}

void TAnimNameParamOp::Undo(TEditContext& doc)
{
    Param->SetFileName(Old);
    doc.RedrawWindows();
}

TAnimFlagsParamOp::TAnimFlagsParamOp(TNodeAnimationParameter* param, bool position, bool rotation, bool scale)
    : Param(param), Old{param->UsesPosition(), param->UsesRotation(), param->UsesScale()}, New{position,
                                                                                               rotation,
                                                                                               scale}
{
}

bool TAnimFlagsParamOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Param))
        return false;
    for (int i = 0; i < NumFlags; ++i)
        if (!chunkFile->File.ReadBool(Old[i]) || !chunkFile->File.ReadBool(New[i]))
            return false;
    return true;
}

bool TAnimFlagsParamOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Param))
        return false;
    for (int i = 0; i < NumFlags; ++i)
        if (!chunkFile->File.WriteBool(Old[i]) || !chunkFile->File.WriteBool(New[i]))
            return false;
    return true;
}

void TAnimFlagsParamOp::Do(TEditContext& doc)
{
    Param->SetFlags(New[0], New[1], New[2]);
    doc.RedrawWindows();
}

void TAnimFlagsParamOp::Undo(TEditContext& doc)
{
    Param->SetFlags(Old[0], Old[1], Old[2]);
    doc.RedrawWindows();
}
