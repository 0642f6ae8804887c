#pragma once

#include "particles/cindermill/graph/engine/effectexecnode.h"

// The root of an effect: its clock, and the values that it offers to the game.
class TEffect : public TRegistered<TEffect, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TEffect";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    int GetFirstUserParameter() const { return GetNodeType()->NumOwnParameters; }
    void ExportLifeTime(TExportData& exportData) const;
    void ExportUserParameter(TExportData& exportData, int index) const;

    float Time = 0;
};
