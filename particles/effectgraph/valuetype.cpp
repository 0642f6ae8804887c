#include "particles/effectgraph/valuetype.h"

#include "library/containers/assertion.h"
#include "library/containers/strtoid.h"

#include <math.h>
#include <string.h>

struct TTypeInfo
{
    const char* Name;
    int Size;
    int Rows;
};

static constexpr TTypeInfo Types[TY_NUMTYPES] = {
    {"Scalar", 4, 1},  {"Scale", 8, 2},      {"Vector3", 12, 3},       {"Quaternion", 12, 4},
    {"Colour", 16, 4}, {"Transform", 24, 6}, {"TextureCoords", 16, 4}, {"Polytype", 0, 0},
};

// Row: the type that is wired; column: the type that it is wired to.
static constexpr bool Convertible[TY_NUMTYPES][TY_NUMTYPES] = {
    {1, 1, 1, 1, 1, 0, 0, 1}, {1, 1, 1, 1, 1, 0, 0, 1}, {1, 1, 1, 1, 1, 1, 0, 1}, {0, 0, 0, 1, 0, 1, 0, 1},
    {1, 1, 1, 0, 1, 0, 0, 1}, {0, 0, 1, 1, 0, 1, 0, 1}, {0, 0, 0, 0, 0, 0, 1, 1}, {1, 1, 1, 1, 1, 1, 1, 1},
};

// Row: from; column: to.
static constexpr int PlainFloats[TY_NUMTYPES][TY_NUMTYPES] = {
    {1, -1, -1, 1, -1, 0, 0, 0}, {-1, 2, 2, 2, -1, 0, 0, 0}, {-1, 2, 3, 3, -1, 3, 0, 0},
    {0, 0, 0, 3, 0, -1, 0, 0},   {-1, 2, 3, 3, 4, 0, 0, 0},  {0, 0, 3, -1, 0, 6, 0, 0},
    {0, 0, 0, 0, 0, 0, 4, 0},    {0, 0, 0, 0, 0, 0, 0, 0},
};

static const TTypeInfo& GetType(int type)
{
    ASSERT_TEXT(type >= 0 && type < TY_NUMTYPES, "type >= 0 && type < TY_NUMTYPES");
    return Types[type];
}

const char* GetTypeName(int type)
{
    return GetType(type).Name;
}

int GetTypeSize(int type)
{
    return GetType(type).Size;
}

int GetTypeRows(int type)
{
    return GetType(type).Rows;
}

struct TTypeIds
{
    TTypeIds()
    {
        for (int type = 0; type < TY_NUMTYPES; ++type)
            Ids[type] = StrToID(Types[type].Name);
    }
    uint32_t Ids[TY_NUMTYPES];
};

static const uint32_t* GetTypeIds()
{
    static const TTypeIds table;
    return table.Ids;
}

uint32_t GetTypeId(int type)
{
    return type >= 0 && type < TY_NUMTYPES ? GetTypeIds()[type] : 0;
}

int FindTypeOfId(uint32_t id)
{
    for (int type = TY_NUMTYPES - 1; type >= 0; --type)
        if (GetTypeIds()[type] == id)
            return type;
    return -1;
}

int GetSingleType(uint32_t mask)
{
    if (mask == 0 || (mask & (mask - 1)) != 0)
        return -1;
    int type = 0;
    while (mask >> type != 1)
        ++type;
    return type;
}

int GetPlainFloats(int fromType, int toType)
{
    ASSERT_TEXT(fromType >= 0 && fromType < TY_NUMTYPES, "fromType >= 0 && fromType < TY_NUMTYPES");
    ASSERT_TEXT(toType >= 0 && toType < TY_NUMTYPES, "toType >= 0 && toType < TY_NUMTYPES");
    return PlainFloats[fromType][toType];
}

bool CanConvertType(int from, int to)
{
    return from >= 0 && from < TY_NUMTYPES && to >= 0 && to < TY_NUMTYPES && Convertible[from][to];
}

// What is not given is zero.
template <class... TFloats>
static void Store(float* dest, int count, TFloats... values)
{
    const float all[MaxValueFloats] = {static_cast<float>(values)...};
    memcpy(dest, all, sizeof(float) * static_cast<unsigned>(count));
}

static void ConvertScalar(int to, const float* v, float* dest)
{
    const float s = v[0];
    switch (to) {
    case TY_SCALE:
        return Store(dest, 2, s, s);
    case TY_VECTOR3:
        return Store(dest, 3, s, s, s);
    case TY_QUATERNION:
        return Store(dest, 3, s);
    case TY_COLOUR:
        return Store(dest, 4, s, s, s, s);
    default:
        return Store(dest, 6, 0);
    }
}

static void ConvertScale(int to, const float* v, float* dest)
{
    switch (to) {
    case TY_SCALAR:
        return Store(dest, 1, static_cast<float>(sqrt(double(v[0]) * v[0] + double(v[1]) * v[1])));
    case TY_VECTOR3:
    case TY_QUATERNION:
        return Store(dest, 3, v[0], v[1]);
    case TY_COLOUR:
        return Store(dest, 4, v[0], v[1], 0, 1);
    default:
        return Store(dest, 6, 0);
    }
}

static void ConvertVector3(int to, const float* v, float* dest)
{
    switch (to) {
    case TY_SCALAR:
        return Store(
            dest, 1,
            static_cast<float>(sqrt(double(v[0]) * v[0] + double(v[1]) * v[1] + double(v[2]) * v[2])));
    case TY_SCALE:
        return Store(dest, 2, v[0], v[1]);
    case TY_QUATERNION:
        return Store(dest, 3, v[0], v[1], v[2]);
    case TY_COLOUR:
        return Store(dest, 4, v[0], v[1], v[2], 1);
    default:
        return Store(dest, 6, v[0], v[1], v[2]);
    }
}

static void ConvertQuaternion(int to, const float* v, float* dest)
{
    if (to == TY_TRANSFORM)
        return Store(dest, 6, 0, 0, 0, v[0], v[1], v[2]);
    Store(dest, GetTypeFloats(to), 0);
}

static void ConvertColour(int to, const float* v, float* dest)
{
    switch (to) {
    case TY_SCALAR:
        return Store(dest, 1, static_cast<float>((double(v[0]) + v[1] + v[2]) / 3));
    case TY_SCALE:
        return Store(dest, 2, v[0], v[1]);
    case TY_VECTOR3:
    case TY_QUATERNION:
        return Store(dest, 3, v[0], v[1], v[2]);
    default:
        return Store(dest, 6, 0);
    }
}

static void ConvertTransform(int to, const float* v, float* dest)
{
    if (to == TY_VECTOR3)
        return Store(dest, 3, v[0], v[1], v[2]);
    if (to == TY_QUATERNION)
        return Store(dest, 3, v[3], v[4], v[5]);
    Store(dest, GetTypeFloats(to), 0);
}

void ConvertValue(int fromType, int toType, const float* source, float* dest)
{
    if (fromType == toType) {
        memmove(dest, source, static_cast<unsigned>(GetTypeSize(fromType)));
        return;
    }
    if (toType < TY_SCALAR || toType > TY_TRANSFORM || fromType < TY_SCALAR || fromType > TY_TRANSFORM)
        return;
    float value[MaxValueFloats];
    memcpy(value, source, static_cast<unsigned>(GetTypeSize(fromType)));
    using TConvert = void (*)(int to, const float* value, float* dest);
    static constexpr TConvert Converters[] = {ConvertScalar,     ConvertScale,  ConvertVector3,
                                              ConvertQuaternion, ConvertColour, ConvertTransform};
    Converters[fromType](toType, value, dest);
}
