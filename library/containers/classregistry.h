#pragma once

#include "library/containers/string.h"

#include <cstdint>

// The run-time classes: every class that is made by name or identity, or asked for its bases, registers a
// constructor, a name and its parent once at static start-up. A class id is a position in the registry and
// holds for one run only; files hold the NameID, StrToID of the name.

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
// A new object, as the pointer type that the class's constructor function gives out; null for an abstract
// class.
void* CreateClass(int id);
// Whether `id` is `base` or derives from it.
bool IsClassA(int id, int base);

// The registration of one class. TBase is the root of its family (TChunk, TEffectExecNode, ...): the type
// that CreateClass's pointer must be cast to.
//
// Use: inside the class   static int ClassId(); static uint32_t NameID();
//      in its source file  int T::ClassId() { static const int id = ...; return id; } and a static object
//      that calls ClassId(), so that a parent asked for by its child is registered first whatever the file
//      order.
template <class TClass, class TBase>
void* ConstructClass()
{
    return static_cast<TBase*>(new TClass);
}

// Makes a class known before main runs.
class TClassRegistrar
{
public:
    explicit TClassRegistrar(int (*classId)()) { classId(); }
};
