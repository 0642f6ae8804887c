#include "enginetestnodes.h"

#include <map>

namespace {

std::map<std::string, TTestExecNode::TAction>& EmitActions()
{
    static std::map<std::string, TTestExecNode::TAction> actions;
    return actions;
}

std::map<std::string, TTestExecNode::TAction>& ExecuteActions()
{
    static std::map<std::string, TTestExecNode::TAction> actions;
    return actions;
}

std::map<std::string, int>& Counts()
{
    static std::map<std::string, int> counts;
    return counts;
}

} // namespace

const char* GetTestExecClass()
{
    static const int id = TTestExecNode::ClassId();
    return GetClassName(id);
}

std::vector<std::string>& TTestExecNode::Calls()
{
    static std::vector<std::string> calls;
    return calls;
}

void TTestExecNode::OnEmit(const std::string& name, TAction action)
{
    EmitActions()[name] = action;
}

void TTestExecNode::OnExecute(const std::string& name, TAction action)
{
    ExecuteActions()[name] = action;
}

void TTestExecNode::OnCount(const std::string& name, int count)
{
    Counts()[name] = count;
}

int TTestExecNode::CountEmission() const
{
    const auto count = Counts().find(Text(GetNodeType()->Name));
    return count != Counts().end() ? count->second : 0;
}

void TTestExecNode::Reset()
{
    Counts().clear();
    Calls().clear();
    EmitActions().clear();
    ExecuteActions().clear();
}

void TTestExecNode::Write(const char* operation, int index) const
{
    Calls().push_back(Text(GetNodeType()->Name) + "." + operation + " " + std::to_string(index));
}

bool TTestExecNode::Init(TErrorList& errors)
{
    if (GetNodeType()->FindParameter("Fail") == nullptr)
        return true;
    errors.Add(new TError("%s failed", GetNodeType()->Name.Print()));
    return false;
}

void TTestExecNode::Emit(int instance, float dt)
{
    Write("Emit", instance);
    const auto action = EmitActions().find(Text(GetNodeType()->Name));
    if (action != EmitActions().end())
        action->second(*this, instance, dt);
}

void TTestExecNode::Execute(int index, float dt)
{
    Write("Execute", index);
    const auto action = ExecuteActions().find(Text(GetNodeType()->Name));
    if (action != ExecuteActions().end())
        action->second(*this, index, dt);
}

void TTestExecNode::Render(const TSceneView&)
{
    Write("Render", Group);
}

void TTestExecNode::Export(TExportData&, TErrorList&)
{
    Write("Export", Group);
}

TParticleBench::TParticleBench(int particleCount) : Exec(Services)
{
    TTestExecNode::Reset();
    Trigger = Graph.Node("Trigger", TU_TRIGGER, {"Rate"}, {"Count"});
    Emitter = Graph.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Position", TY_VECTOR3}, "Age"});
    Ager = Graph.Node("Ager", TU_PROCESS, {"Age"}, {"Age"});
    Sizer = Graph.Node("Sizer", TU_PROCESS, {"Age"}, {"Size"});
    Sprite = Graph.Node("Sprite", TU_RENDER, {{"Position", TY_VECTOR3}, "Size"}, {});
    for (TEffectNode* node : {Trigger, Emitter, Ager, Sizer, Sprite})
        Graph.Class(node, GetTestExecClass());
    Graph.Int(Emitter, "Particle Count", particleCount);
    Graph.Wire(Trigger, "Count", Emitter, "Emission Trigger");
    Graph.Wire(Emitter, "Position", Sprite, "Position");
    Graph.Wire(Emitter, "Age", Ager, "Age");
    Graph.Wire(Ager, "Age", Sizer, "Age");
    Graph.Wire(Sizer, "Size", Sprite, "Size");
    TTestExecNode::OnEmit("Emitter", [this](TTestExecNode& node, int instance, float) {
        if (ToEmit > 0)
            node.AddParticles(instance, ToEmit);
        ToEmit = 0;
    });
    TTestExecNode::OnExecute("Emitter", [this](TTestExecNode& node, int index, float) {
        node.WriteOutput(1, index, TPortValue(NextAge++));
    });
    TTestExecNode::OnExecute("Sizer", [this](TTestExecNode& node, int index, float) {
        for (const int dead : ToKill)
            if (dead == index)
                node.KillParticle(index);
    });
}

TParticleBench::~TParticleBench()
{
    Exec.Clear();
    TTestExecNode::Reset();
}

void TParticleBench::Build()
{
    TErrorList errors;
    Schedule.Create(Graph.GetGraph(), errors);
    ASSERT_TRUE(Schedule.IsCreated());
    ASSERT_TRUE(Exec.Init(Schedule, errors, true));
    for (int g = 0; g < Schedule.GetNumGroups(); ++g)
        if (!Schedule.IsTriggerGroup(g))
            ParticleGroup = g;
    ASSERT_NE(ParticleGroup, -1);
}

void TParticleBench::Emit(int count)
{
    ToEmit = count;
    Exec.Update(0.1f);
}

void TParticleBench::Kill(std::vector<int> indices)
{
    ToKill = indices;
    Exec.Update(0.1f);
    ToKill.clear();
}

int TParticleBench::FindAttribute(const char* name) const
{
    for (int a = 0; a < Schedule.GetNumAttributes(ParticleGroup); ++a)
        if (Schedule.GetAttributeName(ParticleGroup, a).Compare(name) == 0)
            return a;
    return -1;
}

float* TParticleBench::Value(const char* name, int particle) const
{
    const int attrib = FindAttribute(name);
    return Buffer().GetAttribute(attrib, Schedule.GetAttributeUsage(ParticleGroup, attrib), particle);
}

std::vector<float> TParticleBench::Ages() const
{
    std::vector<float> result;
    for (int k = 0; k < Buffer().GetNumParticles(); ++k)
        result.push_back(*Value("Age", k));
    return result;
}
