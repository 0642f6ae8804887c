#include "particles/cindermill/graph/operations/numberparamop.h"

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
