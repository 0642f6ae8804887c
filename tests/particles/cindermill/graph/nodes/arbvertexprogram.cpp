#include "arbvertexprogram.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace {

const std::string Components = "xyzw";

// The number in the brackets behind a prefix such as "c[", or false.
bool ReadIndex(const std::string& text, const std::string& prefix, size_t& index)
{
    if (!text.starts_with(prefix))
        return false;
    index = std::stoul(text.substr(prefix.size()));
    return true;
}

} // namespace

TArbVertexProgram::TArbVertexProgram(const std::string& text)
{
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        size_t local = 0;
        if (ReadIndex(line, " program.local[", local))
            ConstantLocals.push_back(local);
        // What is left are declarations and the frame, whose first blank stands elsewhere.
        if (line.size() < 5 || line[3] != ' ' || line.back() != ';')
            continue;
        TLine parsed;
        parsed.Opcode = line.substr(0, 3);
        std::istringstream operands(line.substr(4, line.size() - 5));
        for (std::string operand; std::getline(operands, operand, ',');)
            parsed.Operands.push_back(ParseOperand(operand));
        Lines.push_back(parsed);
    }
}

TArbVertexProgram::TOperand TArbVertexProgram::ParseOperand(std::string text)
{
    TOperand operand;
    if (text[0] == '-') {
        operand.Sign = -1;
        text.erase(0, 1);
    }
    const size_t point = text.find_last_of('.');
    if (point != std::string::npos && text.find_first_not_of(Components, point + 1) == std::string::npos) {
        const std::string letters = text.substr(point + 1);
        text.erase(point);
        for (size_t i = 0; i < 4; ++i) {
            operand.Swizzle[i] = Components.find(letters[std::min(i, letters.size() - 1)]);
            operand.Mask[i] = letters.find(Components[i]) != std::string::npos;
        }
    }
    if (ReadIndex(text, "vertex.attrib[", operand.Index)) {
        operand.Space = SP_ATTRIBUTE;
    } else if (ReadIndex(text, "c[", operand.Index)) {
        operand.Space = SP_LOCAL;
        operand.Index = ConstantLocals.at(operand.Index);
    } else {
        operand.Index = RegisterIndices.emplace(text, RegisterIndices.size()).first->second;
    }
    return operand;
}

TArbVertexProgram::TValue TArbVertexProgram::Read(const TOperand& operand) const
{
    const TValue& value = operand.Space == SP_REGISTER    ? Registers[operand.Index]
                          : operand.Space == SP_ATTRIBUTE ? Attributes.at(static_cast<int>(operand.Index))
                                                          : Locals.at(static_cast<int>(operand.Index));
    TValue result;
    for (size_t i = 0; i < 4; ++i)
        result[i] = value[operand.Swizzle[i]] * operand.Sign;
    return result;
}

void TArbVertexProgram::Run()
{
    Registers.assign(RegisterIndices.size(), TValue{});
    for (const TLine& line : Lines)
        Execute(line);
}

void TArbVertexProgram::Execute(const TLine& line)
{
    std::array<TValue, 3> s = {};
    for (size_t i = 1; i < line.Operands.size(); ++i)
        s.at(i - 1) = Read(line.Operands[i]);
    TValue r = {};
    const auto each = [&](auto function) {
        for (size_t i = 0; i < 4; ++i)
            r[i] = function(i);
    };
    const std::string& op = line.Opcode;
    if (op == "MOV")
        each([&](size_t i) { return s[0][i]; });
    else if (op == "MUL")
        each([&](size_t i) { return s[0][i] * s[1][i]; });
    else if (op == "ADD")
        each([&](size_t i) { return s[0][i] + s[1][i]; });
    else if (op == "MAD")
        each([&](size_t i) { return s[0][i] * s[1][i] + s[2][i]; });
    else if (op == "MAX")
        each([&](size_t i) { return std::max(s[0][i], s[1][i]); });
    else if (op == "FRC")
        each([&](size_t i) { return s[0][i] - std::floor(s[0][i]); });
    else if (op == "DP3")
        each([&](size_t) { return s[0][0] * s[1][0] + s[0][1] * s[1][1] + s[0][2] * s[1][2]; });
    else if (op == "RSQ")
        each([&](size_t) { return 1.0f / std::sqrt(std::fabs(s[0][0])); });
    else
        throw std::runtime_error("unknown instruction " + op);
    const TOperand& destination = line.Operands.at(0);
    for (size_t i = 0; i < 4; ++i)
        if (destination.Mask[i])
            Registers[destination.Index][i] = r[i];
}
