#include "qdxfragmentreckoner.h"

#include <cmath>

namespace {

// What one operation of a driver may be off by: the console's and the desktop's chips have tables for some.
constexpr double Rounding = 1e-6;
constexpr double TableError = 2e-3;
constexpr double Largest = 1e4;

TReckoned Known(double value, double error)
{
    if (!std::isfinite(value) || !std::isfinite(error) || std::fabs(value) > Largest ||
        error > 0.05 * (1 + std::fabs(value)))
        return {};
    return {true, value, error};
}

// A value with the rounding of its own operation, none if a float holds it.
TReckoned Rounded(double value, double error)
{
    const bool isExact = error == 0 && static_cast<double>(static_cast<float>(value)) == value;
    return Known(value, isExact ? 0 : error + Rounding * (1e-3 + std::fabs(value)));
}

bool AreKnown(std::initializer_list<TReckoned> values)
{
    for (const TReckoned& value : values)
        if (!value.IsKnown)
            return false;
    return true;
}

TReckoned Times(const TReckoned& a, const TReckoned& b)
{
    // Nothing times whatever it is.
    if ((a.IsKnown && a.Value == 0 && a.Error == 0 && b.IsKnown) ||
        (b.IsKnown && b.Value == 0 && b.Error == 0 && a.IsKnown))
        return {true, 0, 0};
    if (!AreKnown({a, b}))
        return {};
    return Rounded(a.Value * b.Value,
                   std::fabs(a.Value) * b.Error + std::fabs(b.Value) * a.Error + a.Error * b.Error);
}

TReckoned Plus(const TReckoned& a, const TReckoned& b)
{
    return AreKnown({a, b})
               ? Rounded(
                     a.Value + b.Value,
                     a.Error + b.Error +
                         (a.Error + b.Error > 0 ? Rounding * (std::fabs(a.Value) + std::fabs(b.Value)) : 0))
               : TReckoned();
}

TReckoned Minus(TReckoned a)
{
    a.Value = -a.Value;
    return a;
}

// -1, 0 or 1 as a is below, equal to or above b; 2 if that cannot be told.
int Order(const TReckoned& a, const TReckoned& b)
{
    if (!AreKnown({a, b}))
        return 2;
    if (a.Error == 0 && b.Error == 0)
        return a.Value < b.Value ? -1 : a.Value > b.Value ? 1 : 0;
    if (std::fabs(a.Value - b.Value) <= 2 * (a.Error + b.Error))
        return 2;
    return a.Value < b.Value ? -1 : 1;
}

TReckoned Truth(int order, bool below, bool equal, bool above)
{
    if (order == 2)
        return {};
    return {true, (order < 0 ? below : order > 0 ? above : equal) ? 1.0 : 0.0, 0};
}

TReckoned Saturated(TReckoned value, double low)
{
    value.Value = value.Value < low ? low : value.Value > 1 ? 1 : value.Value;
    return value;
}

TReckoned Dot(const TReckonedVector& a, const TReckonedVector& b, size_t count)
{
    TReckoned sum = Times(a[0], b[0]);
    for (size_t c = 1; c < count; ++c)
        sum = Plus(sum, Times(a[c], b[c]));
    return sum;
}

// A function of one number, whose slope tells what its error becomes.
template <typename Function>
TReckoned Apply(const TReckoned& a, Function function)
{
    if (!a.IsKnown)
        return {};
    const double value = function(a.Value);
    const double low = function(a.Value - a.Error);
    const double high = function(a.Value + a.Error);
    const double spread = std::fmax(std::fabs(value - low), std::fabs(value - high));
    return Known(value, 2 * spread + TableError * (1e-2 + std::fabs(value)));
}

TReckoned Inverse(const TReckoned& a)
{
    if (!a.IsKnown || std::fabs(a.Value) <= 4 * a.Error || std::fabs(a.Value) < 1e-3)
        return {};
    return Apply(a, [](double x) { return 1 / x; });
}

TReckoned InverseRoot(const TReckoned& a)
{
    if (!a.IsKnown || std::fabs(a.Value) <= 4 * a.Error || std::fabs(a.Value) < 1e-3)
        return {};
    return Apply(a, [](double x) { return 1 / std::sqrt(std::fabs(x)); });
}

TReckoned Logarithm(const TReckoned& a)
{
    if (!a.IsKnown || a.Value <= 4 * a.Error || a.Value < 1e-3)
        return {};
    return Apply(a, [](double x) { return std::log2(x); });
}

TReckoned Floor(const TReckoned& a)
{
    if (!a.IsKnown || std::floor(a.Value - 2 * a.Error) != std::floor(a.Value + 2 * a.Error))
        return {};
    return {true, std::floor(a.Value), 0};
}

TReckonedVector All(const TReckoned& value)
{
    return {value, value, value, value};
}

template <typename Function>
TReckonedVector Each(const TReckonedVector& a, Function function)
{
    TReckonedVector result;
    for (size_t c = 0; c < 4; ++c)
        result[c] = function(a[c], c);
    return result;
}

} // namespace

TFragmentReckoner::TFragmentReckoner(const std::array<float, 4>& input)
{
    for (size_t c = 0; c < 4; ++c)
        Input[c] = {true, input[c], Rounding};
}

const std::vector<int>& TFragmentReckoner::GetPlainOpcodes()
{
    // MOV MUL ADD MAD DP3 DP4 DST MIN MAX SLT SGE FRC FLR RCP RSQ EX2 LG2 LRP COS SIN DIVSQ
    static const std::vector<int> opcodes = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                             16, 17, 26, 27, 28, 29, 31, 34, 35, 59};
    return opcodes;
}

const std::vector<int>& TFragmentReckoner::GetOpcodes()
{
    // And SLE SGT SNE SEQ STR DP2A RFL DP2 DIV.
    static const std::vector<int> opcodes = [] {
        std::vector<int> all = GetPlainOpcodes();
        for (const int opcode : {12, 13, 14, 15, 32, 46, 54, 56, 58})
            all.push_back(opcode);
        return all;
    }();
    return opcodes;
}

TReckonedVector TFragmentReckoner::GetSource(const TFragmentCode& code, int n) const
{
    const TFragmentOperand& operand = code.Sources[n];
    TReckonedVector from;
    if (operand.Type == 0)
        from = GetRegister(operand.Register);
    else if (operand.Type == 1)
        from = Input;
    else
        for (size_t c = 0; c < 4; ++c)
            from[c] = {true, code.Value[c], 0};
    return Each(from, [&](const TReckoned&, size_t c) {
        TReckoned value = from[static_cast<size_t>(operand.Swizzle >> (2 * c) & 3)];
        if (operand.Absolute)
            value.Value = std::fabs(value.Value);
        return operand.Negate ? Minus(value) : value;
    });
}

TReckonedVector TFragmentReckoner::GetRegister(int reg) const
{
    const auto found = Registers.find(reg);
    return found != Registers.end() ? found->second : TReckonedVector();
}

TReckonedVector TFragmentReckoner::Compute(const TFragmentCode& code) const
{
    const TReckonedVector a = GetSource(code, 0);
    const TReckonedVector b = GetSource(code, 1);
    const TReckonedVector c = GetSource(code, 2);
    const auto compare = [&](bool below, bool equal, bool above) {
        return Each(a,
                    [&](const TReckoned& x, size_t i) { return Truth(Order(x, b[i]), below, equal, above); });
    };
    const auto smaller = [&](int wanted) {
        return Each(a, [&](const TReckoned& x, size_t i) {
            const int order = Order(x, b[i]);
            return order == 2 ? TReckoned() : order == wanted ? x : b[i];
        });
    };
    const TReckoned one = {true, 1, 0};
    switch (code.Opcode) {
    case 1:
        return a;
    case 2:
        return Each(a, [&](const TReckoned& x, size_t i) { return Times(x, b[i]); });
    case 3:
        return Each(a, [&](const TReckoned& x, size_t i) { return Plus(x, b[i]); });
    case 4:
        return Each(a, [&](const TReckoned& x, size_t i) { return Plus(Times(x, b[i]), c[i]); });
    case 5:
        return All(Dot(a, b, 3));
    case 6:
        return All(Dot(a, b, 4));
    case 7:
        return {one, Times(a[1], b[1]), a[2], b[3]};
    case 8:
        return smaller(-1);
    case 9:
        return smaller(1);
    case 10:
        return compare(true, false, false);
    case 11:
        return compare(false, true, true);
    case 12:
        return compare(true, true, false);
    case 13:
        return compare(false, false, true);
    case 14:
        return compare(true, false, true);
    case 15:
        return compare(false, true, false);
    case 16:
        return Each(a, [](const TReckoned& x, size_t) { return Plus(x, Minus(Floor(x))); });
    case 17:
        return Each(a, [](const TReckoned& x, size_t) { return Floor(x); });
    case 26:
        return All(Inverse(a[0]));
    case 27:
        return All(InverseRoot(a[0]));
    case 28:
        return All(Apply(a[0], [](double x) { return std::exp2(x); }));
    case 29:
        return All(Logarithm(a[0]));
    case 31:
        return Each(a, [&](const TReckoned& x, size_t i) {
            return Plus(Times(x, b[i]), Times(Plus(one, Minus(x)), c[i]));
        });
    case 32:
        return All(one);
    case 34:
        return All(Apply(a[0], [](double x) { return std::cos(x); }));
    case 35:
        return All(Apply(a[0], [](double x) { return std::sin(x); }));
    case 46:
        return All(Plus(Dot(a, b, 2), c[0]));
    case 54: {
        const TReckoned factor = Times(Times({true, 2, 0}, Dot(a, b, 3)), Inverse(Dot(a, a, 3)));
        return Each(a, [&](const TReckoned& x, size_t i) {
            return i == 3 ? TReckoned() : Plus(Times(factor, x), Minus(b[i]));
        });
    }
    case 56:
        return All(Dot(a, b, 2));
    case 58:
        return Each(a, [&](const TReckoned& x, size_t) { return Times(x, Inverse(b[0])); });
    case 59:
        return Each(a, [&](const TReckoned& x, size_t) { return Times(x, InverseRoot(b[0])); });
    default:
        return TReckonedVector();
    }
}

int TFragmentReckoner::Passes(const TFragmentCode& code, int component) const
{
    if ((code.Mask >> component & 1) == 0 && code.Mask != 0)
        return 0;
    if (code.Condition == 7)
        return 1;
    if (code.Condition == 0)
        return 0;
    const TReckoned& condition =
        Conditions[static_cast<size_t>(code.ConditionSwizzle >> (2 * component) & 3)];
    const int order = Order(condition, {true, 0, 0});
    if (order == 2)
        return -1;
    // Bit 0 below, bit 1 equal, bit 2 above: the conditions are numbered so.
    return code.Condition >> (order + 1) & 1;
}

void TFragmentReckoner::Run(const TFragmentCode& code)
{
    static constexpr double Scales[] = {1, 2, 4, 8, 0, 0.5, 0.25, 0.125};
    const TReckonedVector computed = Compute(code);
    TReckonedVector& target = Registers[code.Register + (code.IsHalf ? 64 : 0)];
    TReckonedVector conditions = Conditions;
    for (int c = 0; c < 4; ++c) {
        const size_t at = static_cast<size_t>(c);
        const int passes = Passes(code, c);
        if (passes == 0)
            continue;
        TReckoned value = computed[at];
        if (code.Scale != 0)
            value = Times(value, {true, Scales[code.Scale], 0});
        if (code.Saturate)
            value = Saturated(value, 0);
        else if (code.SignedSaturate)
            value = Saturated(value, -1);
        if (passes < 0)
            value = TReckoned();
        if (!code.NoRegister)
            target[at] = value;
        if (code.SetsCondition)
            conditions[at] = value;
    }
    Conditions = conditions;
}
