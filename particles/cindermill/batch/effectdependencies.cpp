#include "particles/cindermill/batch/effectdependencies.h"

#include "library/containers/append.h"
#include "library/system/path.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/filereferences.h"

#include <algorithm>

namespace {

void AddDependency(TDependencyKind kind, const TString& name, vector<TDependency>& result)
{
    if (name.IsEmpty())
        return;
    for (const TDependency& known : result)
        if (known.Kind == kind && known.Name.Compare(name) == 0)
            return;
    Append(result, TDependency{kind, name, TString()});
}

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
        dependency.Path = GetShownPath(path);
}

} // namespace

const char* GetDependencyKindName(TDependencyKind kind)
{
    static const char* const Names[] = {"texture", "animation", "node-type"};
    return Names[kind];
}

void GetEffectDependencies(const TEffectGraph& graph, TCindermillApp& app, vector<TDependency>& result)
{
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        AddDependency(DK_NODETYPE, graph.GetNode(i)->GetNodeType()->Name, result);
    vector<TFileReference> references;
    GetFileReferences(graph, references);
    for (const TFileReference& reference : references)
        AddDependency(reference.IsAnimation ? DK_ANIMATION : DK_TEXTURE, reference.Name, result);
    std::sort(result.begin(), result.end(), [](const TDependency& a, const TDependency& b) {
        return a.Kind != b.Kind ? a.Kind < b.Kind : a.Name.Compare(b.Name) < 0;
    });
    for (TDependency& dependency : result)
        FindFile(app, dependency);
}
