#include "particles/effectgraph/export/rowmaker.h"

#include "library/containers/nametocrc.h"

#include <cstring>

namespace {
constexpr int LengthRows = 3;

// Also of what is no number; zeros differ in their sign.
bool IsSame(float a, float b)
{
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}
} // namespace

uint32_t TRowMaker::GetConstant(float value)
{
    for (const TConstant& constant : Constants)
        if (IsSame(constant.Value, value))
            return constant.Row;
    const TConstant constant{value, AllocTemp()};
    Constants.push_back(constant);
    Values.push_back(value);
    Rows.push_back(constant.Row);
    return constant.Row;
}

void TRowMaker::SetRow(uint32_t row, float value)
{
    const uint32_t name = NameToCrc("IdConstantEmitter");
    if (Commands.empty() || Commands.back().Name != name ||
        Commands.back().Outputs.size() >= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS) {
        Commands.push_back(TCommand());
        Commands.back().Name = name;
    }
    AppendFloat(Commands.back().Data, value);
    Commands.back().Outputs.push_back(row);
}

TCommand& TRowMaker::Add(const char* name, uint32_t to)
{
    Commands.push_back(TCommand());
    Commands.back().Name = NameToCrc(name);
    Commands.back().Outputs.push_back(to);
    return Commands.back();
}

void TRowMaker::AddCommand(const char* name, uint32_t a, uint32_t b, uint32_t to)
{
    TCommand& command = Add(name, to);
    command.Inputs.push_back(a);
    command.Inputs.push_back(b);
}

// No command only copies. A factor of one keeps every number, and the sign of a zero.
void TRowMaker::CopyRow(uint32_t from, uint32_t to)
{
    if (from != to)
        AddCommand("IdMul", from, GetConstant(1), to);
}

void TRowMaker::Convert(const TRowConversion& conversion, int row, const uint32_t* source, uint32_t to)
{
    switch (const int from = conversion[row]) {
    case TRowConversion::Zero:
        return SetRow(to, 0);
    case TRowConversion::One:
        return SetRow(to, 1);
    case TRowConversion::Length:
        return MakeLength(source, conversion.GetNumSourceRows(), to);
    case TRowConversion::Mean:
        return MakeMean(source, to);
    default:
        return CopyRow(source[from], to);
    }
}

void TRowMaker::MakeLength(const uint32_t* source, int count, uint32_t to)
{
    const uint32_t missing = count < LengthRows ? GetConstant(0) : 0;
    TCommand& command = Add("IdLength", to);
    AppendU32(command.Data, 0);
    for (int i = 0; i < LengthRows; ++i)
        command.Inputs.push_back(i < count ? source[i] : missing);
}

void TRowMaker::MakeMean(const uint32_t* source, uint32_t to)
{
    const uint32_t two = AllocTemp();
    const uint32_t three = AllocTemp();
    AddCommand("IdAdd", source[0], source[1], two);
    AddCommand("IdAdd", two, source[2], three);
    AddCommand("IdMul", three, GetConstant(1.0f / 3.0f), to);
}

void TRowMaker::Flush(TCommandStream& stream)
{
    stream.AddConstants(Values, Rows);
    for (const TCommand& command : Commands) {
        if (!command.Data.empty())
            stream.AddData(command.Data);
        stream.AddCommand(command.Name, command.Inputs.size(), command.Outputs.size(), 0);
        stream.AddInputRows(command.Inputs);
        stream.AddOutputRows(command.Outputs);
    }
    Values.clear();
    Rows.clear();
    Commands.clear();
}
