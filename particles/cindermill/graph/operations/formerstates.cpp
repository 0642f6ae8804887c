#include "particles/cindermill/graph/operations/formerstates.h"

#include "library/containers/append.h"

// For each done operation: the count of its places, the places, the count of its types, and each type with
// its node and port before it. The number of these operations stands in front.

// In place of the count of types, where they are not known.
constexpr int NoTypes = -1;

void GetFormerStates(const TOperationStack& stack, const TChunkFile& chunks, vector<int>& numbers)
{
    chunks.NumberChunks();
    Append(numbers, stack.GetPosition());
    for (int i = 0; i < stack.GetPosition(); ++i) {
        const TFormerState& former = stack.GetOperation(i)->GetFormer();
        Append(numbers, former.Places.size());
        for (const int place : former.Places)
            Append(numbers, place);
        Append(numbers, former.KnowsTypes ? former.Types.size() : NoTypes);
        if (!former.KnowsTypes)
            continue;
        for (const TFormerType& type : former.Types) {
            Append(numbers, type.Node->ChunkIdx);
            Append(numbers, type.Port);
            Append(numbers, type.Type);
        }
    }
}

namespace {

// Reads the numbers one by one, and believes none of them.
class TFormerReader
{
public:
    TFormerReader(const TChunkFile& chunks, const vector<int>& numbers) : Chunks(chunks), Numbers(numbers) {}
    // False at the end.
    bool Read(int& number);
    bool Read(TFormerState& former);
    bool IsAtEnd() const { return Next == Numbers.size(); }

private:
    bool Read(TFormerType& type);

    const TChunkFile& Chunks;
    const vector<int>& Numbers;
    int Next = 0;
};

bool TFormerReader::Read(int& number)
{
    if (IsAtEnd())
        return false;
    number = Numbers[Next++];
    return true;
}

bool TFormerReader::Read(TFormerType& type)
{
    int chunk = -1;
    if (!Read(chunk) || !Read(type.Port) || !Read(type.Type) || chunk < 0 || chunk >= Chunks.GetNumChunks())
        return false;
    type.Node = dynamic_cast<TEffectNode*>(Chunks.GetChunkAt(chunk));
    return type.Node != nullptr && type.Node->GetNodeType() != nullptr && type.Port >= 0 &&
           type.Port < type.Node->GetNodeType()->GetNumOutputs() && type.Type >= 0 && type.Type < TY_POLYTYPE;
}

bool TFormerReader::Read(TFormerState& former)
{
    int count = 0;
    if (!Read(count) || count < 0)
        return false;
    for (; count > 0; --count) {
        int place = 0;
        if (!Read(place))
            return false;
        Append(former.Places, place);
    }
    if (!Read(count) || count < NoTypes)
        return false;
    former.KnowsTypes = count != NoTypes;
    for (; count > 0; --count) {
        TFormerType type{};
        if (!Read(type))
            return false;
        Append(former.Types, type);
    }
    return true;
}

} // namespace

bool SetFormerStates(TOperationStack& stack, const TChunkFile& chunks, const vector<int>& numbers)
{
    TFormerReader reader(chunks, numbers);
    int count = 0;
    if (!reader.Read(count) || count != stack.GetPosition())
        return false;
    vector<TFormerState> states;
    for (int i = 0; i < count; ++i) {
        Append(states, TFormerState());
        if (!reader.Read(states.back()))
            return false;
    }
    if (!reader.IsAtEnd())
        return false;
    for (int i = 0; i < count; ++i)
        stack.GetOperation(i)->GetFormer() = states[i];
    return true;
}
