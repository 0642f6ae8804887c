#include "particles/cindermill/graph/operations/animflagsparamop.h"

#include "particles/cindermill/graph/operations/editcontext.h"

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
