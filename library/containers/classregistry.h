#pragma once

#include "library/containers/string.h"

#include <cstdint>
#include <type_traits>

// The run-time classes: every class that is made by name or identity, or asked for its bases, is entered once
// with a constructor, a name and its parent. A class id is a position in the registry and holds for one run
// only; files hold the NameID, StrToID of the name.
//
// A class makes itself known by what it derives from and by its name:
//
//     class TAdd : public TRegistered<TAdd, TEffectExecNode>
//     {
//     public:
//         static constexpr const char* RegisteredName = "TAdd";
//
// It is entered, after its parent, when its ClassId is first asked for. What is only ever made by its name
// would never be asked, and the linker would leave it out of the program: such classes stand in the one list
// of their folder, a function that calls RegisterClasses<...>, which the program calls as it starts.

using TConstructor = void* (*)();

// Appends a class; a hash collision with an earlier class is fatal. The constructor of an abstract class is
// null.
int RegisterClass(TConstructor constructor, const char* name, int parent);

// -1 if there is none.
int FindClassByName(const char* name);
int FindClassByNameID(uint32_t id);

int GetNumClasses();
const char* GetClassName(int id);
uint32_t GetClassNameID(int id);
int GetClassParent(int id);
// A new object, as a pointer to the root class of its family (TChunk, TEffectExecNode, ...); null for a class
// that cannot be made without more.
void* CreateClass(int id);
// Whether `id` is `base` or derives from it.
bool IsClassA(int id, int base);

// What stands above the root class of every family.
class TClassRoot
{
public:
    virtual ~TClassRoot() = default;
    // The NameID of the most derived class.
    virtual uint32_t GetClassId() const = 0;

protected:
    using TFamily = void;
    static int ClassId() { return -1; }
};

// The registered class TSelf below TParent, which may be a class that is not registered itself: then the next
// one above it is the parent in the registry. Without a parent, TSelf is the root of a family.
template <class TSelf, class TParent = TClassRoot>
class TRegistered : public TParent
{
public:
    // What CreateClass's pointer points to.
    using TFamily = std::conditional_t<std::is_same_v<TParent, TClassRoot>, TSelf, typename TParent::TFamily>;

    using TParent::TParent;
    using TRegisteredClass = TSelf;

    static int ClassId()
    {
        static const int id = RegisterClass(GetConstructor(), TSelf::RegisteredName, TParent::ClassId());
        return id;
    }
    static uint32_t NameID()
    {
        static const uint32_t id = GetClassNameID(ClassId());
        return id;
    }
    uint32_t GetClassId() const override { return NameID(); }

private:
    static TConstructor GetConstructor()
    {
        if constexpr (std::is_abstract_v<TSelf> || !std::is_default_constructible_v<TSelf>)
            return nullptr;
        else
            return []() -> void* { return static_cast<typename TSelf::TFamily*>(new TSelf); };
    }
};

// Enters the classes.
template <class... TClasses>
void RegisterClasses()
{
    // One that only inherits its ClassId would be entered as its base.
    static_assert((std::is_same_v<TClasses, typename TClasses::TRegisteredClass> && ...));
    (TClasses::ClassId(), ...);
}
