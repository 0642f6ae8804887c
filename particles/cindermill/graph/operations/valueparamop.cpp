#include "particles/cindermill/graph/operations/valueparamop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationvalues.h"

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

bool TColourParamOp::IsLike(const TValueParamOp& previous) const
{
    if (Drag != 0 && Drag == static_cast<const TColourParamOp&>(previous).Drag)
        return true;
    return TValueParamOp::IsLike(previous);
}
