#include "particles/cindermill/batch/effectdependencies.h"

#include "library/containers/append.h"
#include "library/system/path.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>

namespace {

// Asks the nodes one after the other.
class TDependencyWalk
{
public:
    explicit TDependencyWalk(vector<TDependency>& result) : Result(result) {}
    void AddNode(const TNodeType& type)
    {
        Add(DK_NODETYPE, type.Name);
        AddParameters(type.Parameters);
        AddParameters(type.Inputs);
    }

private:
    void Add(TDependencyKind kind, const TString& name)
    {
        if (name.IsEmpty())
            return;
        for (const TDependency& known : Result)
            if (known.Kind == kind && known.Name.Compare(name) == 0)
                return;
        Append(Result, TDependency{kind, name, TString()});
    }
    void AddParameters(const vector<TNodeParameter*>& parameters)
    {
        for (const TNodeParameter* parameter : parameters) {
            if (parameter->Type == PK_TEXTURE)
                Add(DK_TEXTURE, static_cast<const TNodeTextureParameter*>(parameter)->GetFileName());
            else if (parameter->Type == PK_ANIMATION)
                Add(DK_ANIMATION, static_cast<const TNodeAnimationParameter*>(parameter)->GetFileName());
            vector<TNodeParameter*> owned;
            parameter->GetOwned(owned);
            AddParameters(owned);
        }
    }

    vector<TDependency>& Result;
};

bool FindTypeFile(const TNodeTypeLibrary& library, const TString& name, TString& path)
{
    for (int i = 0; i < library.GetNumTypes(); ++i)
        if (library.GetType(i)->Name.Compare(name) == 0)
            return library.GetTypePath(i, path);
    return false;
}

void FindFile(TCindermillApp& app, TDependency& dependency)
{
    TString path;
    const bool found = dependency.Kind == DK_NODETYPE
                           ? FindTypeFile(app.GetNodeTypes(), dependency.Name, path)
                           : app.GetResourceLocator().Find(dependency.Name, path) != FR_NOTFOUND;
    if (found)
        ToShownPath(path, dependency.Path);
}

} // namespace

const char* GetDependencyKindName(TDependencyKind kind)
{
    static const char* const Names[] = {"texture", "animation", "node-type"};
    return Names[kind];
}

void GetEffectDependencies(const TEffectGraph& graph, TCindermillApp& app, vector<TDependency>& result)
{
    TDependencyWalk walk(result);
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        walk.AddNode(*graph.GetNode(i)->GetNodeType());
    std::sort(result.begin(), result.end(), [](const TDependency& a, const TDependency& b) {
        return a.Kind != b.Kind ? a.Kind < b.Kind : a.Name.Compare(b.Name) < 0;
    });
    for (TDependency& dependency : result)
        FindFile(app, dependency);
}
