#include "particles/cindermill/batch/checkreport.h"

#include "particles/cindermill/batch/findings/jsontext.h"

void TCheckReport::AddDependencies(const vector<TDependency>& dependencies)
{
    Dependencies.Set(GetNumFiles() - 1, dependencies);
}

void TCheckReport::WriteFileFacts(int file, TJsonText& json) const
{
    if (!ListsDependencies)
        return;
    json.BeginArray("dependencies");
    const vector<TDependency>* dependencies = Dependencies.Get(file);
    for (int i = 0; dependencies != nullptr && i < dependencies->size(); ++i) {
        const TDependency& dependency = (*dependencies)[i];
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
