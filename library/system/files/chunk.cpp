#include "library/system/files/chunk.h"

static const TClassRegistrar Registrar(&TChunk::ClassId);

int TChunk::ClassId()
{
    static const int id = RegisterClass(nullptr, "TChunk", -1);
    return id;
}

uint32_t TChunk::NameID()
{
    return GetClassNameID(ClassId());
}
