#include "particles/cindermill/batch/checkreport.h"

#include "library/containers/append.h"
#include "particles/cindermill/batch/findings/jsontext.h"

void TCheckReport::AddDependencies(const vector<TDependency>& dependencies)
{
    while (Dependencies.size() < GetNumFiles())
        Append(Dependencies, vector<TDependency>());
    Dependencies[GetNumFiles() - 1] = dependencies;
}

void TCheckReport::WriteFileFacts(int file, TJsonText& json) const
{
    if (!ListsDependencies)
        return;
    json.BeginArray("dependencies");
    for (int i = 0; file < Dependencies.size() && i < Dependencies[file].size(); ++i) {
        const TDependency& dependency = Dependencies[file][i];
        json.BeginObject();
        json.Text("kind", GetDependencyKindName(dependency.Kind));
        json.Text("name", dependency.Name);
        if (dependency.Path.IsEmpty())
            json.Null("path");
        else
            json.Text("path", dependency.Path);
        json.EndObject();
    }
    json.EndArray();
}
