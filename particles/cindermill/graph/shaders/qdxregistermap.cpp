#include "particles/cindermill/graph/shaders/qdxregistermap.h"

#include "library/containers/assertion.h"

namespace {

constexpr int NumRegisterIds = 192;
constexpr int NumRegisters = 128;

// The components that a dot product reads whatever it writes.
int GetExtraComponents(const TFragmentInstruction& instruction)
{
    switch (instruction.GetOpcode()) {
    case TY_FragmentDp3:
        return 7;
    case TY_FragmentDp4:
        return 15;
    case TY_FragmentDp2a:
        return 3;
    default:
        return 0;
    }
}

// The outputs live on behind the program's end.
bool IsOutput(int reg)
{
    return (reg & 63) < 5;
}

} // namespace

bool TQdxRegisterMap::IsNeeded(const vector<TFragmentInstruction>& code)
{
    bool used[NumRegisters] = {};
    for (const TFragmentInstruction& instruction : code) {
        if (instruction.WritesRegister())
            used[instruction.GetRegister()] = true;
        if (!instruction.HasLiteral())
            continue;
        for (int n = 0; n < 3; ++n)
            if (instruction.ReadsTemporary(n))
                used[instruction.GetSource(n).Register] = true;
    }
    int count = 0;
    for (bool isUsed : used)
        count += isUsed ? 1 : 0;
    return count > ArbNumRegs;
}

void TQdxRegisterMap::Build(const vector<TFragmentInstruction>& code)
{
    LookAhead(code);
    FindIntervals(code);
    Assign(code.empty() ? 0 : code.back().Position + 1);
}

void TQdxRegisterMap::LookAhead(const vector<TFragmentInstruction>& code)
{
    TAhead registers[NumRegisters];
    Ahead.resize(code.size());
    for (int i = code.size() - 1; i >= 0; --i) {
        const TFragmentInstruction& instruction = code[i];
        if (instruction.WritesRegister()) {
            TAhead& written = registers[instruction.GetRegister()];
            Ahead[i] = written;
            if (instruction.GetCondition() == ConditionAlways) {
                written.AnyWrite = i;
                for (int c = 0; c < 4; ++c)
                    if ((instruction.GetMask() & (1 << c)) != 0)
                        written.Writes[c] = i;
            }
        }
        const int wanted = instruction.GetMask() | GetExtraComponents(instruction);
        for (int n = 0; n < 3; ++n) {
            if (!instruction.ReadsTemporary(n))
                continue;
            const TFragmentSource source = instruction.GetSource(n);
            for (int c = 0; c < 4; ++c)
                if ((wanted & (1 << c)) != 0)
                    registers[source.Register].Reads[source.Swizzle >> (2 * c) & 3] = i;
        }
    }
}

void TQdxRegisterMap::FindIntervals(const vector<TFragmentInstruction>& code)
{
    Intervals.reserve(NumRegisterIds + code.size());
    Current.reserve(NumRegisterIds);
    for (int id = 0; id < NumRegisterIds; ++id) {
        Intervals.push_back({-1, -1, 0, id});
        Current.push_back(id);
    }
    Uses.resize(code.size());
    for (int i = 0; i < code.size(); ++i) {
        for (int n = 0; n < 3; ++n) {
            if (!code[i].ReadsTemporary(n))
                continue;
            const int id = Current[code[i].GetSource(n).Register];
            TRegisterInterval& interval = Intervals[id];
            if (interval.Start == -1)
                interval.Start = 0;
            interval.End = code[i].Position;
            Uses[i].Sources[n] = id;
        }
        if (code[i].WritesRegister())
            NoteWrite(code, i);
    }
}

void TQdxRegisterMap::NoteWrite(const vector<TFragmentInstruction>& code, int instruction)
{
    const TFragmentInstruction& write = code[instruction];
    int& current = Current[write.GetRegister()];
    if (StartsInterval(code, instruction)) {
        current = Intervals.size();
        Intervals.push_back({write.Position, write.Position, write.GetMask(), current});
    } else {
        TRegisterInterval& interval = Intervals[current];
        if (interval.Start == -1)
            interval.Start = 0;
        interval.End = write.Position;
        interval.Mask |= write.GetMask();
    }
    Uses[instruction].Destination = current;
}

bool TQdxRegisterMap::StartsInterval(const vector<TFragmentInstruction>& code, int instruction) const
{
    const TFragmentInstruction& write = code[instruction];
    if (write.GetCondition() != ConditionAlways)
        return false;
    const int current = Current[write.GetRegister()];
    if (write.GetMask() == 15 || current < NumRegisterIds)
        return true;
    return IsRestUnseen(write, Ahead[instruction], Intervals[current].Mask);
}

// Whether nothing behind a partial write sees a component of the old value, made up of `live`, that the write
// left out. The look ahead is over once later writes have made up just those components again; where it is
// not, an output still has its reader behind the program's end.
bool TQdxRegisterMap::IsRestUnseen(const TFragmentInstruction& write, const TAhead& ahead, int live) const
{
    int done[4];
    int complete = -1;
    for (int c = 0; c < 4; ++c) {
        done[c] = (write.GetMask() & (1 << c)) != 0 ? -1 : ahead.Writes[c];
        if ((live & (1 << c)) == 0)
            continue;
        // An instruction reads before it writes.
        if (done[c] != -1 && ahead.Reads[c] != TAhead::Never && ahead.Reads[c] <= done[c])
            return false;
        complete = complete < done[c] ? done[c] : complete;
    }
    // The end is noticed at a write only.
    if (complete == -1)
        complete = ahead.AnyWrite;
    bool isOver = complete != TAhead::Never;
    for (int c = 0; c < 4; ++c)
        if ((live & (1 << c)) == 0 && done[c] <= complete)
            isOver = false;
    return isOver || !IsOutput(write.GetRegister());
}

void TQdxRegisterMap::Assign(int size)
{
    // The intervals that start or end at each position, in their own order: a counting sort by position.
    vector<int> first;
    first.resize(size + 1);
    const auto forEachPosition = [this](auto&& visit) {
        for (const TRegisterInterval& interval : Intervals) {
            if (interval.Start == -1)
                continue;
            visit(interval.Start, interval);
            if (interval.End != interval.Start)
                visit(interval.End, interval);
        }
    };
    forEachPosition([&](int position, const TRegisterInterval&) { ++first[position + 1]; });
    for (int position = 0; position < size; ++position)
        first[position + 1] += first[position];
    vector<int> sorted;
    sorted.resize(first[size]);
    vector<int> next = first;
    forEachPosition([&](int position, const TRegisterInterval& it) { sorted[next[position]++] = it.Reg; });

    QdxToArbMapping.reserve(Intervals.size());
    for (int id = 0; id < Intervals.size(); ++id)
        QdxToArbMapping.push_back(-1);
    for (int position = 0; position < size; ++position) {
        for (int i = first[position]; i < first[position + 1]; ++i) {
            const TRegisterInterval& interval = Intervals[sorted[i]];
            if (interval.Start == position)
                OccupyRegister(interval);
            if (interval.End == position)
                FreeRegister(interval);
        }
    }
}

void TQdxRegisterMap::OccupyRegister(const TRegisterInterval& interval)
{
    int i = 0;
    while (i < ArbNumRegs && IsTaken[i])
        ++i;
    ASSERT_TEXT(i < ArbNumRegs, "i < ArbNumRegs");
    IsTaken[i] = true;
    QdxToArbMapping[interval.Reg] = i;
}

void TQdxRegisterMap::FreeRegister(const TRegisterInterval& interval)
{
    const int arb = QdxToArbMapping[interval.Reg];
    ASSERT_TEXT(arb >= 0 && arb < ArbNumRegs,
                "m_qdxToArbMapping[it->m_regIdx] >= 0 && m_qdxToArbMapping[it->m_regIdx] < ArbNumRegs");
    IsTaken[arb] = false;
}

int TQdxRegisterMap::GetArbRegister(int qdxidx) const
{
    ASSERT_TEXT(qdxidx != -1 && QdxToArbMapping[qdxidx] != -1, "m_qdxToArbMapping[qdxidx] != -1");
    return QdxToArbMapping[qdxidx];
}
