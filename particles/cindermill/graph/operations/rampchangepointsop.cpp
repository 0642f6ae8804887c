#include "particles/cindermill/graph/operations/rampchangepointsop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationvalues.h"

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
