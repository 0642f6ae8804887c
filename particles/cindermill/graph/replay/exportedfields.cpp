#include "particles/cindermill/graph/replay/exportedfields.h"

#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

namespace {

// Parameters that go out as a byte, without a word of what does not fit.
struct TByteParameter
{
    const char* ClassName;
    const char* Name;
};

constexpr TByteParameter ByteParameters[] = {
    {"TEmitter", "Per frame max emission"}, {"TEmitter", "Emit Mode"},
    {"TAnimatedTexture", "X Divisions"},    {"TAnimatedTexture", "Y Divisions"},
    {"TAnimatedTexture", "Tile Count"},     {"TAnimatedTexture", "Loop Mode"},
};

// The stages' tables: how many entries each has that are meant.
struct TTableParameter
{
    const char* Name;
    int NumEntries;
};

constexpr TTableParameter TableParameters[] = {
    {"Alpha Blend.Blend Equation", 5}, {"Alpha Blend.Source Function", 15}, {"Alpha Blend.Dest Function", 15},
    {"Alpha Test.Function", 8},        {"Depth Test.Function", 8},          {"Cull Face.Mode", 2},
};

constexpr const char* ReferenceName = "Alpha Test.Ref Value";

// An enum's or a whole number; false for other parameters.
bool GetNumber(const TNodeType& type, const char* path, int& number)
{
    if (const auto* whole = type.FindParameterOf<TNodeIntParameter>(path, PK_INT))
        number = whole->Get();
    else if (const auto* choice = type.FindParameterOf<TNodeEnumParameter>(path, PK_ENUM))
        number = choice->GetNumber();
    else
        return false;
    return true;
}

bool IsGroupOn(const TNodeType& type, const char* path)
{
    TString name = path;
    name.TruncateAtFirst('.');
    const auto* group = type.FindParameterOf<TNodeGroupParameter>(name, PK_GROUP);
    return group != nullptr && group->Get();
}

void AddByteFaults(const TNodeType& type, vector<TFieldFault>& result)
{
    constexpr int most = 255;
    int number = 0;
    for (const TByteParameter& byte : ByteParameters)
        if (type.IsOfClass(byte.ClassName) && GetNumber(type, byte.Name, number) &&
            (number < 0 || number > most))
            result.push_back(TFieldFault{byte.Name, double(number), most, double(number & most), false});
}

// What is switched off goes out without its numbers.
void AddStageFaults(const TNodeType& type, vector<TFieldFault>& result)
{
    int number = 0;
    for (const TTableParameter& table : TableParameters) {
        const int last = table.NumEntries - 1;
        if (IsGroupOn(type, table.Name) && GetNumber(type, table.Name, number) &&
            (number < 0 || number > last))
            result.push_back(TFieldFault{table.Name, double(number), double(last), 0, true});
    }
    const auto* reference = type.FindParameterOf<TNodeScalarParameter>(ReferenceName, TY_SCALAR);
    if (reference == nullptr || !IsGroupOn(type, ReferenceName))
        return;
    const float value = reference->Get();
    if (!(value >= 0 && value <= 1))
        result.push_back(TFieldFault{ReferenceName, double(value), 1, value > 1 ? 1.0 : 0.0, false});
}

} // namespace

void GetFieldFaults(const TNodeType& type, vector<TFieldFault>& result)
{
    AddByteFaults(type, result);
    if (type.Category == TU_RENDER)
        AddStageFaults(type, result);
}
