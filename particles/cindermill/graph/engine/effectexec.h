#pragma once

#include "library/containers/ownerlist.h"
#include "particles/cindermill/graph/engine/placerandoms.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TEffectExecNode;
class TErrorList;
class TExecServices;
class TExecWatch;
class TExportData;
class TParticleBuffer;
class TSceneView;

// Runs a schedule frame by frame, and asks its nodes to describe themselves for an export.
// It reads the schedule and the graph, which must outlive it or a Clear. Faults that a graph can provoke are
// assertions: call Init, Update and Export under a guard.
class TEffectExec
{
public:
    static constexpr int MaxGroups = 32;
    static constexpr int AllGroups = -1;

    explicit TEffectExec(TExecServices& services);
    ~TEffectExec();

    // Without tool mode there is no particle store, which is enough for an export. All nodes are tried even
    // after one failed.
    bool Init(const TEffectSchedule& schedule, TErrorList& errors, bool toolMode);
    // The same, leaving render nodes out: they are not made, and draw and export nothing.
    bool InitWithoutRender(const TEffectSchedule& schedule, TErrorList& errors);
    // From the next Init on: whether what only a particle's birth computes is kept for each particle, as on
    // the console. Otherwise particles that are born together read the last one's.
    void SetBirthsApart(bool apart) { BirthsApart = apart; }
    bool AreBirthsApart() const { return BirthsApart; }
    // Hears of all that Update does; null for nobody. It stays the caller's.
    void SetWatch(TExecWatch* watch) { Watch = watch; }
    // From the next Init on: each place of a node draws from generators of its own, all seeded from this
    // number, and not from its class's.
    void SetSeed(uint32_t seed);
    // From the next Init on: whether stages load their textures. Without them they can be exported.
    void SetTexturesUsed(bool used) { TexturesUsed = used; }
    bool AreTexturesUsed() const { return TexturesUsed; }
    void Clear();
    bool IsInited() const { return Inited; }
    // Another one after every Init.
    unsigned GetNumStarts() const { return NumStarts; }
    // Seconds since Init.
    float GetTime() const { return Time; }
    void SetTime(float time) { Time = time; }
    // One frame of dt seconds.
    void Update(float dt);
    // Draws all render nodes that are not bypassed, or those of one group. What they draw with needs a ready
    // OpenGL.
    void Render(const TSceneView& view, int onlyGroup = AllGroups);
    // Lets every node tell its commands, builds the model, checks the policies.
    bool Export(TExportData& exportData, TErrorList& errors);

    // For the nodes.
    void AddParticles(int group, int instance, int count);
    void KillParticle(int group, int index);

    const TEffectSchedule& GetSchedule() const { return *Schedule; }
    TExecServices& GetServices() const { return Services; }
    // Null where nodes draw from their classes' generators.
    TPlaceRandoms* GetRandoms() { return HasSeed ? &Randoms : nullptr; }
    int GetNumGroups() const { return Groups.size(); }
    TParticleBuffer* GetGroup(int group) const { return Groups[group]; }
    int GetNumParticles(int group) const;
    // Particles of the group that were born in the last frame.
    int GetNumBorn(int group) const { return NumBorn[group]; }
    // By the schedule's node index.
    TEffectExecNode* GetExecNode(int node) const { return Nodes[node]; }

private:
    bool InitWith(const TEffectSchedule& schedule, TErrorList& errors, bool toolMode, bool withRender);
    bool InitNodes(TErrorList& errors, bool withRender);
    void InitGroups();
    void InitExternals();
    // Whether some attribute of the group is supplied by `parent`.
    bool IsParent(int group, int parent) const { return (ExternalGroups[group] >> parent & 1) != 0; }
    int GetTiedUsage(int group, int tied) const;
    // The tied node's run-time object, set to its position; null for a render node that was left out.
    TEffectExecNode* Place(int group, int tied);
    int CountInstances(int group) const;
    void SelectExternal(int group, int instance);
    // Copies what the parents' chosen particles supply.
    void FetchExternals(int group);
    void FetchExternal(int group, int attrib, int first, int count);
    // Writes the value, converted, to a range of particles.
    void FillAttribute(int group, int attrib, int first, int count, int type, const float* value);
    void RunEmitters(int group, float dt);
    void RunProcesses(int group, float dt);
    void RunEmit(int group, int tied, int instance, float dt);
    void RunExecute(int group, int tied, float dt);
    void InitAttribute(int group, int attrib, int first, int count);
    void RunBirths(int group, int first, int count);
    void ForgetBirths();
    void CheckBirths(int64_t births, int group) const;
    void CountEmissions(int group, int repeat);
    int CountEmission(int group, int tied);
    void RenderGroup(int group, const TSceneView& view);
    void ExportNode(TExportData* exportdata, TErrorList& errors, int group, int tied);

    TExecServices& Services;
    const TEffectSchedule* Schedule = nullptr;
    TOwnerList<TEffectExecNode> Nodes;
    TOwnerList<TParticleBuffer> Groups;
    vector<uint32_t> ExternalGroups;
    vector<int> ExternalIndex;
    vector<int> NumBorn;
    unsigned NumStarts = 0;
    float Time = 0;
    // Particles born in the present frame.
    int64_t Births = 0;
    bool Inited = false;
    bool BirthsApart = false;
    TExecWatch* Watch = nullptr;
    bool TexturesUsed = true;
    bool HasSeed = false;
    uint32_t Seed = 0;
    TPlaceRandoms Randoms;
};
