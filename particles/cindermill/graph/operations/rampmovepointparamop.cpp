#include "particles/cindermill/graph/operations/rampmovepointparamop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationvalues.h"

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
