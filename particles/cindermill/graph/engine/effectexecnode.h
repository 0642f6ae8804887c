#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/sortedmap.h"
#include "particles/cindermill/graph/engine/attributetrace.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/execservices.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/engine/portvalue.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/export/exportdata.h"

class TQdxShader;
class TSceneView;

// The run-time object of one scheduled node. The engine sets its position (group, tied node, buffer) before
// each call, because a node may be tied into several groups.
class TEffectExecNode : public TRegistered<TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TEffectExecNode";
    virtual ~TEffectExecNode() = default;

    // Runs an emitter once for one emitter instance.
    virtual void Emit(int instance, float dt);
    // How many particles Emit would add now; none as far as it is not known before.
    virtual int CountEmission() const { return 0; }
    // Looks up parameters and loads resources; false with an error in the list.
    virtual bool Init(TErrorList& errors);
    // Computes for one particle index, or for index 0.
    virtual void Execute(int index, float dt);
    // Draws the group.
    virtual void Render(const TSceneView& view);
    virtual void Export(TExportData& exportData, TErrorList& errors);
    // Each output takes the same-named input, or zero.
    virtual void Bypass(int index);

    // Execute for the indices from `count` - 1 down to 0.
    virtual void ExecuteDown(int count, float dt);
    // Execute for the indices from 0 on.
    virtual void ExecuteUp(int count, float dt);
    // Bypass for the indices from 0 on.
    virtual void BypassUp(int count);

    // The node's run-time object, or null with an error in the list. The caller owns it.
    static TEffectExecNode* Create(TEffectNode* node, TEffectExec* exec, TErrorList& errors);

    TEffectNode* GetNode() const { return Node; }
    bool IsBypassed() const { return GetNodeType()->IsBypassed(); }
    void SetPosition(int group, int tiedNode, TParticleBuffer* buffer);
    void SetTracing(bool tracing) { Tracing = tracing; }
    int GetNumTraces() const { return OutputTraces.size(); }
    TAttributeTrace& GetOutputTrace(int n, int port);
    int GetOutputTraceGroup(int n) const;

protected:
    TNodeType* GetNodeType() const { return Node->GetNodeType(); }
    TExecServices& GetServices() const { return Exec->GetServices(); }
    const TEffectSchedule& GetSchedule() const { return Exec->GetSchedule(); }
    bool IsTracing() const { return Tracing; }
    // Once, behind Init.
    virtual void InitPorts() {}
    // The port's value for one index, converted to the port's type. Room for MaxValueFloats.
    void GetInput(int port, int index, float* out) const;
    void SetOutput(int port, int index, const float* value);
    TPortValue ReadInput(int port, int index) const;
    void WriteOutput(int port, int index, const TPortValue& value);
    // The input's own value, wired or not.
    TPortValue ReadPortParameter(int port) const;
    // The type of the value at the port.
    int GetInputType(int port) const;
    // For a render node: binds what feeds each input, in port order, to the program's attributes in the
    // table's order. A transform takes two entries; -1 sets nothing.
    void BindInputs(TQdxShader& program, const vector<int>& table) const;
    void AddParticles(int instance, int count);
    void KillParticle(int index);
    // What the node draws from where it stands: its class's generator, unless the engine has some for each
    // place, for each component of a value one.
    TRandom& ChooseRandom(TClassRandom& shared, int draw = 0) const
    {
        TPlaceRandoms* randoms = Exec->GetRandoms();
        return randoms != nullptr ? randoms->Get(Group, TiedNode, draw) : shared.Get();
    }
    // The parameter of a path and kind, or null with the error "Missing parameter ..." in the list.
    template <class TParameter>
    TParameter* RequireParameter(const char* path, int kind, TErrorList& errors) const
    {
        return static_cast<TParameter*>(RequireParameterOfKind(path, kind, errors));
    }

    void AddMissingParameter(const char* path, TErrorList& errors) const;

    TEffectNode* Node = nullptr;
    TEffectExec* Exec = nullptr;
    int Group = 0;
    int TiedNode = 0;
    TParticleBuffer* Buffer = nullptr;

private:
    TNodeParameter* RequireParameterOfKind(const char* path, int kind, TErrorList& errors) const;
    void BindAttribute(TQdxShader& program, const vector<int>& table, int entry, int attrib,
                       int numEntries) const;
    // What no attribute feeds is the same for all particles.
    void SetVertexDefaults(TQdxShader& program, const vector<int>& table, int entry, int port) const;
    void InitTraces();
    int GetTraceKey(int group, int tiedNode) const;

    sortedmap<int, vector<TAttributeTrace>> OutputTraces;
    bool Tracing = false;
};
