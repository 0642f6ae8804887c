#include "tools/shaderassembler/shaderimage.h"

#include "library/containers/nametocrc.h"
#include "tools/shaderassembler/microcode.h"

#include <bit>

namespace {
constexpr uint8_t Version = 8;
constexpr unsigned Platform = 2;
constexpr size_t HeaderSize = 24;
constexpr size_t AttributeSize = 8;
constexpr size_t ConstantSize = 12;
constexpr size_t BlockAlignment = 16;
constexpr size_t LargestOffset = 0xFFFF;

// Big-endian bytes.
class TByteWriter
{
public:
    void Put8(unsigned value) { Bytes.push_back(static_cast<uint8_t>(value)); }
    void Put16(size_t value)
    {
        Put8(static_cast<unsigned>(value >> 8 & 0xFF));
        Put8(static_cast<unsigned>(value & 0xFF));
    }
    void Put32(size_t value)
    {
        Put16(value >> 16 & 0xFFFF);
        Put16(value & 0xFFFF);
    }
    void PutWords(const std::vector<uint32_t>& words)
    {
        for (const uint32_t word : words)
            Put32(word);
    }
    void PadTo(size_t size) { Bytes.resize(size); }
    void Append(const std::vector<uint8_t>& bytes) { Bytes.insert(Bytes.end(), bytes.begin(), bytes.end()); }

    std::vector<uint8_t> Bytes;
};

std::vector<TNamedValue> SelectValues(const TShaderProgram& program, bool literal)
{
    std::vector<TNamedValue> result;
    for (const TNamedValue& value : program.Values)
        if (value.IsLiteral == literal)
            result.push_back(value);
    return result;
}

void PutNames(TByteWriter& writer, const std::vector<std::string>& names)
{
    for (size_t i = 0; i < names.size(); ++i) {
        writer.Put32(NameToCrc(names[i].c_str()));
        writer.Put32(i);
    }
}

void PutConstants(TByteWriter& writer, const std::vector<TNamedValue>& constants, bool fragment)
{
    for (const TNamedValue& constant : constants) {
        writer.Put32(NameToCrc(constant.Name.c_str()));
        writer.Put16(0);
        writer.Put16(fragment ? 0 : static_cast<size_t>(constant.Count));
        writer.Put16(static_cast<size_t>(constant.Slot));
        writer.Put16(0);
    }
}

std::vector<uint8_t> VertexBlock(const TShaderProgram& program)
{
    const std::vector<TNamedValue> literals = SelectValues(program, true);
    const size_t valuesAt = (4 * literals.size() + 39) / 16 * 16;
    const size_t microcodeAt = valuesAt + 16 * literals.size();
    TByteWriter writer;
    writer.Put16(program.Instructions.size());
    writer.PadTo(18);
    writer.Put16(microcodeAt);
    writer.Put16(0);
    writer.Put16(literals.size());
    for (const TNamedValue& literal : literals)
        writer.Put32(static_cast<size_t>(literal.Slot));
    writer.PadTo(valuesAt);
    for (const TNamedValue& literal : literals)
        for (const float component : literal.Value)
            writer.Put32(std::bit_cast<uint32_t>(component));
    writer.PutWords(EncodeVertexProgram(program));
    return writer.Bytes;
}

std::vector<uint8_t> FragmentBlock(const TShaderProgram& program)
{
    const TFragmentCode code = EncodeFragmentProgram(program);
    const size_t numConstants = SelectValues(program, false).size();
    TByteWriter offsets;
    TByteWriter lists;
    for (size_t i = 0; i < program.Values.size(); ++i) {
        if (program.Values[i].IsLiteral)
            continue;
        offsets.Put32(24 + 4 * numConstants + lists.Bytes.size());
        lists.Put16(code.Literals[i].size());
        for (const int position : code.Literals[i])
            lists.Put16(static_cast<size_t>(position));
    }
    lists.PadTo((24 + offsets.Bytes.size() + lists.Bytes.size() + 15) / 16 * 16 - 24 - offsets.Bytes.size());
    TByteWriter writer;
    writer.PadTo(16);
    writer.Put32(24 + offsets.Bytes.size() + lists.Bytes.size());
    writer.Put32(numConstants);
    writer.Append(offsets.Bytes);
    writer.Append(lists.Bytes);
    writer.PutWords(code.Words);
    return writer.Bytes;
}
} // namespace

bool BuildShaderImage(const TShaderProgram& program, std::vector<uint8_t>& image)
{
    const std::vector<TNamedValue> constants = SelectValues(program, false);
    const size_t constantsAt = HeaderSize + AttributeSize * program.Attributes.size();
    const size_t samplersAt = constantsAt + ConstantSize * constants.size();
    const size_t tablesEnd = samplersAt + AttributeSize * program.Samplers.size();
    const size_t blockAt = (tablesEnd + BlockAlignment - 1) / BlockAlignment * BlockAlignment;
    const std::vector<uint8_t> block = program.IsFragment ? FragmentBlock(program) : VertexBlock(program);
    if (blockAt + block.size() > LargestOffset)
        return false;

    TByteWriter writer;
    writer.Append({'S', 'H', 'O', Version});
    writer.Put32(program.IsFragment ? 1 : 0);
    writer.Put16(Platform);
    writer.Put16(program.Attributes.size());
    writer.Put16(constants.size());
    writer.Put16(program.Samplers.size());
    writer.Put16(HeaderSize);
    writer.Put16(constantsAt);
    writer.Put16(samplersAt);
    writer.Put16(blockAt);
    PutNames(writer, program.Attributes);
    PutConstants(writer, constants, program.IsFragment);
    PutNames(writer, program.Samplers);
    writer.PadTo(blockAt);
    writer.Append(block);
    image = writer.Bytes;
    return true;
}
