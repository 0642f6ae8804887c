#pragma once

#include "library/containers/string.h"

#include <cstdint>
#include <type_traits>

// The run-time classes: those that are made by name or identity, or asked for their bases. Each is entered
// with a constructor, a name and its parent the first time that its ClassId is asked for, so that the order,
// and with it every class id, holds for one run only. Files hold the NameID, StrToID of the name.
//
// A class makes itself known by what it derives from and by its name:
//
//     class TAdd : public TRegistered<TAdd, TEffectExecNode>
//     {
//     public:
//         static constexpr const char* RegisteredName = "TAdd";
//
// Its parent is entered before it. A class that is only ever made by its name would never be asked for its
// ClassId, and the linker would leave it out of the program: such classes stand in the one list of their
// folder, a function that calls RegisterClasses<...>, which the program calls as it starts. The classes of
// windows and views stand in no list: who makes them names them.

using TConstructor = void* (*)();

// Appends a class, for TRegistered. The constructor is null for a class that cannot be made without more. Two
// names with one identity are an assertion.
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
