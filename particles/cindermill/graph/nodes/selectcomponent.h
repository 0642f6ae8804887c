#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/effectgraph/simpleparameters.h"

// One component of a vector, its length or the inverse of that.
class TSelectComponent : public TRegistered<TSelectComponent, TExecLoop<TSelectComponent, 1, 1>>
{
public:
    static constexpr const char* RegisteredName = "TSelectComponent";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

protected:
    void BeginRun() override { Selected = Component->GetNumber(); }

private:
    const TNodeEnumParameter* Component = nullptr;
    int Selected = 0;
};
