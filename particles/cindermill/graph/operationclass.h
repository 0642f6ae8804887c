#pragma once

#include "particles/cindermill/graph/operation.h"

// The registration that every operation class repeats in its source file.
#define CINDERMILL_OPERATION(TClass)                                                                         \
    int TClass::ClassId()                                                                                    \
    {                                                                                                        \
        static const int id = RegisterClass(ConstructClass<TClass, TChunk>, #TClass, TOperation::ClassId()); \
        return id;                                                                                           \
    }                                                                                                        \
    uint32_t TClass::NameID()                                                                                \
    {                                                                                                        \
        static const uint32_t id = GetClassNameID(ClassId());                                                \
        return id;                                                                                           \
    }
