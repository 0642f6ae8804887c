#include "qdxfragmentfixture.h"

#include "particles/cindermill/graph/shaders/qdxregistermap.h"

#include <random>
#include <regex>
#include <set>

namespace {

// Programs as a compiler could make them: registers are written before they are read. Careless ones read
// whatever comes.
class TFragmentGenerator
{
public:
    explicit TFragmentGenerator(uint32_t seed, bool isCareless = false) : Random(seed), IsCareless(isCareless)
    {
    }

    std::vector<TFragmentCode> Make(int count, int registers, bool straight)
    {
        Written.clear();
        std::vector<TFragmentCode> program;
        for (int i = 0; i < count; ++i) {
            if (!straight && Below(12) == 0)
                program.push_back(MakeFlow(count));
            else
                program.push_back(MakeOne(registers, straight));
        }
        return program;
    }

private:
    int Below(int n) { return static_cast<int>(Random() % static_cast<uint32_t>(n)); }

    TFragmentOperand MakeOperand(int registers, bool allowLiteral)
    {
        TFragmentOperand operand = Input();
        const int kind = Below(8);
        if (kind < 5 && IsCareless && Below(4) == 0) {
            operand = Temp(Below(registers));
        } else if (kind < 5 && !Written.empty()) {
            // What was written lately, so that values die.
            const int back = Below(std::min<int>(12, static_cast<int>(Written.size())));
            operand = Temp(Written[Written.size() - 1 - static_cast<size_t>(back)]);
        } else if (kind == 5 && allowLiteral) {
            operand = Literal();
        }
        operand.Swizzle = Below(3) == 0 ? IdentitySwizzle : Below(256);
        operand.Negate = Below(4) == 0;
        operand.Absolute = Below(6) == 0;
        return operand;
    }

    TFragmentCode MakeOne(int registers, bool straight)
    {
        static constexpr int Plain[] = {1, 2, 3, 4, 5, 6, 46};
        TFragmentCode code;
        code.Opcode = straight ? Plain[Below(7)] : Below(64);
        code.Attribute = Below(16);
        code.Unit = Below(16);
        code.Condition = Below(5) == 0 ? Below(8) : 7;
        code.ConditionSwizzle = Below(256);
        code.Mask = Below(2) == 0 ? 15 : Below(16);
        for (TFragmentOperand& operand : code.Sources)
            operand = MakeOperand(registers, !straight);
        if (!straight) {
            code.SetsCondition = Below(8) == 0;
            code.NoRegister = Below(16) == 0;
            code.Saturate = Below(8) == 0;
            code.SignedSaturate = Below(8) == 0;
            code.SuffixH = Below(8) == 0;
            code.SuffixX = Below(8) == 0;
            code.Scale = Below(4) == 0 ? Below(8) : 0;
            code.IsIndexed = Below(16) == 0;
            code.Index = Below(16);
        }
        const int reg = Below(registers);
        code.Register = reg & 63;
        code.IsHalf = reg >= 64;
        uint32_t words[4];
        code.Words(words);
        TFragmentInstruction instruction = {{words[0], words[1], words[2], words[3]}, 0};
        const bool isSilent = code.Opcode >= 43 && FragmentBody({code}).empty();
        if (instruction.WritesRegister() && !isSilent)
            Written.push_back(reg);
        return code;
    }

    TFragmentCode MakeFlow(int count)
    {
        TFragmentCode code = Flow(Below(6), static_cast<uint32_t>(Below(count * 2)) << 2,
                                  static_cast<uint32_t>(Below(count * 2)) << 2);
        code.Condition = Below(8);
        code.ConditionSwizzle = Below(256);
        return code;
    }

    std::mt19937 Random;
    bool IsCareless;
    std::vector<int> Written;
};

// Every register named in a text is declared in it.
void ExpectAllDeclared(const std::string& text)
{
    static const std::regex names("(^|[^A-Za-z0-9_.\\[])([RHT][0-9]+|_t|__wpos)($|[^A-Za-z0-9_])");
    std::set<std::string> declared;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("TEMP ", 0) == 0) {
            EXPECT_TRUE(declared.insert(line.substr(5, line.size() - 6)).second) << line;
            continue;
        }
        // Neighbours share their separator, so the search begins again at each name's end.
        std::smatch match;
        for (auto at = line.cbegin(); std::regex_search(at, line.cend(), match, names);) {
            EXPECT_TRUE(declared.count(match[2]) == 1) << match[2] << " in " << line;
            at = match[2].second;
        }
    }
}

} // namespace

TEST(QdxFragmentRandom, TextIsDeterministicAndDeclaresWhatItNames)
{
    int mapped[2] = {};
    for (uint32_t seed = 0; seed < 300; ++seed) {
        const bool isCareless = seed % 2 != 0;
        TFragmentGenerator generator(seed / 2, isCareless);
        const auto program =
            generator.Make(10 + static_cast<int>(seed % 90), 4 + static_cast<int>(seed % 64), false);
        std::string text;
        const std::string assertion = AssertionOf([&] { text = DriverText(program); });
        if (!assertion.empty()) {
            EXPECT_EQ("i < ArbNumRegs", assertion) << seed;
            continue;
        }
        EXPECT_EQ(text, DriverText(program));
        EXPECT_EQ("END\n", text.substr(text.size() - 4));
        ExpectAllDeclared(text);
        mapped[isCareless] += text.find("TEMP T0;") != std::string::npos ? 1 : 0;
        if (HasFailure())
            FAIL() << "seed " << seed << "\n" << text;
    }
    EXPECT_GT(mapped[0], 10);
    EXPECT_GT(mapped[1], 10);
}

namespace {

// Whether a partial write may forget the rest of the old value, found by walking the program.
bool ForgetsRest(const std::vector<TFragmentInstruction>& code, size_t at, int live)
{
    const int reg = code[at].GetRegister();
    int done = code[at].GetMask();
    for (size_t i = at + 1; i < code.size(); ++i) {
        const int opcode = code[i].GetOpcode();
        const int extra = opcode == Dp3 ? 7 : opcode == Dp4 ? 15 : opcode == 46 ? 3 : 0;
        for (int n = 0; n < 3; ++n) {
            const TFragmentSource source = code[i].GetSource(n);
            if (!code[i].ReadsTemporary(n) || source.Register != reg)
                continue;
            for (int c = 0; c < 4; ++c) {
                const int fetched = 1 << (source.Swizzle >> (2 * c) & 3);
                if (((code[i].GetMask() | extra) >> c & 1) != 0 && (fetched & live & ~done) != 0)
                    return false;
            }
        }
        if (code[i].WritesRegister() && code[i].GetRegister() == reg && code[i].GetCondition() == 7) {
            done |= code[i].GetMask();
            if (done == live)
                return true;
        }
    }
    return (reg & 63) >= 5;
}

} // namespace

TEST(QdxFragmentRandom, ValuesAreThoseOfAPlainWalk)
{
    int joined = 0;
    int parted = 0;
    for (uint32_t seed = 0; seed < 300; ++seed) {
        TFragmentGenerator generator(seed);
        const auto program = generator.Make(60, 1 + static_cast<int>(seed % 9), true);
        std::vector<TFragmentInstruction> code;
        for (const TFragmentCode& one : program) {
            TFragmentInstruction instruction;
            one.Words(instruction.Words);
            instruction.Position = static_cast<int>(code.size());
            code.push_back(instruction);
        }
        std::vector<TRegisterInterval> expected;
        std::vector<size_t> current;
        for (int id = 0; id < 192; ++id) {
            expected.push_back({-1, -1, 0, id});
            current.push_back(static_cast<size_t>(id));
        }
        for (size_t i = 0; i < code.size(); ++i) {
            const int position = static_cast<int>(i);
            const auto touch = [&](size_t id) {
                expected[id].Start = expected[id].Start == -1 ? 0 : expected[id].Start;
                expected[id].End = position;
            };
            for (int n = 0; n < 3; ++n)
                if (code[i].ReadsTemporary(n))
                    touch(current[static_cast<size_t>(code[i].GetSource(n).Register)]);
            size_t& id = current[static_cast<size_t>(code[i].GetRegister())];
            bool starts = code[i].GetCondition() == 7;
            if (starts && code[i].GetMask() != 15 && id >= 192) {
                starts = ForgetsRest(code, i, expected[id].Mask);
                ++(starts ? parted : joined);
            }
            if (starts) {
                id = expected.size();
                expected.push_back({position, position, code[i].GetMask(), static_cast<int>(id)});
            } else {
                touch(id);
                expected[id].Mask |= code[i].GetMask();
            }
        }
        const auto intervals = IntervalsOf(program);
        ASSERT_EQ(expected.size(), intervals.size()) << seed;
        for (size_t id = 0; id < expected.size(); ++id)
            ExpectInterval(intervals[id], expected[id].Start, expected[id].End, expected[id].Mask);
        if (HasFailure())
            FAIL() << seed;
    }
    EXPECT_GT(joined, 500);
    EXPECT_GT(parted, 500);
}

// Whatever register a value lies in, each component read must come from the same writes as before.
TEST(QdxFragmentRandom, MappingKeepsEveryValueThatIsRead)
{
    int checked = 0;
    for (uint32_t seed = 0; seed < 200; ++seed) {
        TFragmentGenerator generator(seed);
        const auto program = generator.Make(120, 128, true);
        vector<TFragmentInstruction> code;
        for (const TFragmentCode& one : program) {
            TFragmentInstruction instruction;
            one.Words(instruction.Words);
            instruction.Position = code.size();
            code.push_back(instruction);
        }
        TQdxRegisterMap map;
        const std::string assertion = AssertionOf([&] { map.Build(code); });
        if (!assertion.empty()) {
            EXPECT_EQ("i < ArbNumRegs", assertion);
            continue;
        }
        // By register and component: the instructions that may have written it, -1 for none.
        std::vector<std::vector<std::set<int>>> chip(128, std::vector<std::set<int>>(4, {-1}));
        auto arb = chip;
        for (int i = 0; i < code.size(); ++i) {
            int extra = 0;
            if (code[i].GetOpcode() == Dp3)
                extra = 7;
            if (code[i].GetOpcode() == Dp4)
                extra = 15;
            if (code[i].GetOpcode() == 46)
                extra = 3;
            for (int n = 0; n < 3; ++n) {
                if (!code[i].ReadsTemporary(n))
                    continue;
                const TFragmentSource source = code[i].GetSource(n);
                for (int c = 0; c < 4; ++c) {
                    if (((code[i].GetMask() | extra) >> c & 1) == 0)
                        continue;
                    const size_t fetched = static_cast<size_t>(source.Swizzle >> (2 * c) & 3);
                    const auto& before = chip[static_cast<size_t>(source.Register)][fetched];
                    if (before.count(-1) != 0)
                        continue;
                    EXPECT_EQ(before, arb[static_cast<size_t>(map.GetSource(i, n))][fetched])
                        << "seed " << seed << " instruction " << i;
                    ++checked;
                }
            }
            for (int c = 0; c < 4; ++c) {
                if ((code[i].GetMask() >> c & 1) == 0)
                    continue;
                auto& before = chip[static_cast<size_t>(code[i].GetRegister())][static_cast<size_t>(c)];
                auto& now = arb[static_cast<size_t>(map.GetDestination(i))][static_cast<size_t>(c)];
                if (code[i].GetCondition() == ConditionAlways) {
                    before.clear();
                    now.clear();
                }
                before.insert(i);
                now.insert(i);
            }
        }
        if (HasFailure())
            FAIL();
    }
    EXPECT_GT(checked, 5000);
}
