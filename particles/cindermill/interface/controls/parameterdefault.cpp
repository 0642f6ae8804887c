#include "particles/cindermill/interface/controls/parameterdefault.h"

#include "particles/effectgraph/nodetypelibrary.h"

namespace {

// A node that was renamed is known by its class; where several types share one, by what they say of
// themselves.
const TNodeType* FindLibraryType(const TNodeTypeLibrary& library, const TNodeType& own)
{
    const TNodeType* named = library.FindType(own.Name.Print());
    if (named != nullptr && named->IsOfClass(own.ClassName))
        return named;
    const TNodeType* first = nullptr;
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType* type = library.GetType(i);
        if (!type->IsOfClass(own.ClassName))
            continue;
        if (type->Description.Compare(own.Description, true) == 0)
            return type;
        if (first == nullptr)
            first = type;
    }
    return first;
}

const TNodeParameter* FindSame(const vector<TNodeParameter*>& parameters, const TNodeParameter& wanted)
{
    for (const TNodeParameter* parameter : parameters)
        if (parameter->Type == wanted.Type && parameter->Name.Compare(wanted.Name) == 0)
            return parameter;
    return nullptr;
}

// What a group or a polytype owns is looked for in its counterpart only: names may come again elsewhere.
const TNodeParameter* FindTwin(const vector<TNodeParameter*>& own, const vector<TNodeParameter*>& library,
                               const TNodeParameter& wanted)
{
    for (const TNodeParameter* parameter : own) {
        const TNodeParameter* same = FindSame(library, *parameter);
        if (parameter == &wanted)
            return same;
        vector<TNodeParameter*> ownParts;
        parameter->GetOwned(ownParts);
        if (ownParts.empty() || same == nullptr)
            continue;
        vector<TNodeParameter*> libraryParts;
        same->GetOwned(libraryParts);
        if (const TNodeParameter* twin = FindTwin(ownParts, libraryParts, wanted))
            return twin;
    }
    return nullptr;
}

} // namespace

const TNodeParameter* FindDefaultParameter(const TNodeTypeLibrary& library, const TNodeType& own,
                                           const TNodeParameter& parameter)
{
    const TNodeType* type = FindLibraryType(library, own);
    if (type == nullptr)
        return nullptr;
    const TNodeParameter* twin = FindTwin(own.Parameters, type->Parameters, parameter);
    return twin != nullptr ? twin : FindTwin(own.Inputs, type->Inputs, parameter);
}
