#include "library/containers/classregistry.h"

#include "library/containers/strtoid.h"

namespace {

struct TClassRecord
{
    TConstructor Constructor = nullptr;
    TString Name;
    uint32_t NameID = 0;
    int Parent = -1;
};

// Made when first asked for: a class may be entered before main begins.
vector<TClassRecord>& GetConstructors()
{
    static vector<TClassRecord> constructors;
    return constructors;
}

const TClassRecord& GetRecord(int id)
{
    ASSERT_TEXT(id >= 0 && id < GetConstructors().size(),
                "id>=0 && id<Constructors->size() : Invalid class id");
    return GetConstructors()[id];
}

} // namespace

int RegisterClass(TConstructor constructor, const char* name, int parent)
{
    vector<TClassRecord>& constructors = GetConstructors();
    constructors.push_back(TClassRecord{constructor, name, StrToID(name), parent});
    const TClassRecord& added = constructors.back();
    const int id = constructors.size() - 1;
    for (int i = 0; i < id; ++i)
        ASSERT_TEXT_MSG(constructors[i].NameID != added.NameID,
                        "(*Constructors)[i].NameID != Constructors->back().NameID",
                        TempFormat("Hash collision %s(%x) %s(%x)", added.Name.Print(), added.NameID,
                                   constructors[i].Name.Print(), constructors[i].NameID));
    return id;
}

int FindClassByName(const char* name)
{
    const vector<TClassRecord>& constructors = GetConstructors();
    for (int i = 0; i < constructors.size(); ++i)
        if (constructors[i].Name.Compare(name) == 0)
            return i;
    return -1;
}

int FindClassByNameID(uint32_t id)
{
    const vector<TClassRecord>& constructors = GetConstructors();
    for (int i = 0; i < constructors.size(); ++i)
        if (constructors[i].NameID == id)
            return i;
    return -1;
}

int GetNumClasses()
{
    return GetConstructors().size();
}

const char* GetClassName(int id)
{
    return GetRecord(id).Name.c_str();
}

uint32_t GetClassNameID(int id)
{
    return GetRecord(id).NameID;
}

int GetClassParent(int id)
{
    return GetRecord(id).Parent;
}

void* CreateClass(int id)
{
    const TConstructor constructor = GetRecord(id).Constructor;
    return constructor != nullptr ? constructor() : nullptr;
}

bool IsClassA(int id, int base)
{
    GetRecord(id);
    while (id != -1) {
        if (id == base)
            return true;
        id = GetConstructors()[id].Parent;
    }
    return false;
}
