#include "particles/effectgraph/export/commandstream.h"

#include "library/containers/nametocrc.h"
#include "library/containers/wholenumbers.h"
#include "particles/effectgraph/export/exportfield.h"

namespace {
// In a command word: the command has no parameter record.
constexpr int NoExecuteParam = 255;
constexpr uint32_t WorkspaceAlignment = 16;
constexpr int BytesPerWord = 4;

int WordsFor(int bytes)
{
    return RoundUp(bytes, BytesPerWord) / BytesPerWord;
}

// Bytes in file order, the last word filled with zeros. The words go out big-endian, so the first byte is the
// top.
template <class T>
void PutBytes(vector<uint32_t>& words, const vector<T>& bytes)
{
    for (int i = 0; i < bytes.size(); i += 4) {
        uint32_t word = 0;
        for (int k = 0; k < 4; ++k)
            word = word << 8 | (i + k < bytes.size() ? static_cast<uint32_t>(bytes[i + k]) & 0xFF : 0u);
        words.push_back(word);
    }
}

uint32_t RowOrZero(const vector<uint32_t>& rows, int i)
{
    return i < rows.size() ? rows[i] : 0;
}

void AppendRows(vector<uint32_t>& rows, int& remain, const uint32_t (&quad)[RowsPerQuad])
{
    for (int i = 0; i < RowsPerQuad && remain > 0; ++i, --remain)
        rows.push_back(quad[i]);
}
} // namespace

void TCommandStream::AddData(const void* data, int size)
{
    ASSERT(InputRemain == 0);
    ASSERT(OutputRemain == 0);
    ASSERT(size != 0);
    ASSERT_TEXT(Commands.empty() || Commands.back().Name != 0,
                "Commands.empty() || Commands.back().Name != 0");
    Commands.push_back(TCommand());
    AppendBytes(Commands.back().Data, data, size);
}

void TCommandStream::AddPatch(const TCommandPatch& patch)
{
    ASSERT_TEXT(!Commands.empty() && !Commands.back().Data.empty(),
                "!Commands.empty() && Commands.back().Data != 0");
    Commands.back().Patches.push_back(patch);
}

void TCommandStream::AddCommand(uint32_t name, int inputCount, int outputCount, uint32_t workspace)
{
    ASSERT(InputRemain == 0);
    ASSERT(OutputRemain == 0);
    ASSERT_TEXT(inputCount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS,
                "inputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS");
    ASSERT_TEXT(outputCount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS,
                "outputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS");
    if (Commands.empty() || Commands.back().Name != 0)
        Commands.push_back(TCommand());
    TCommand& command = Commands.back();
    command.Name = name;
    command.Workspace = workspace;
    InputRemain = inputCount;
    OutputRemain = outputCount;
}

void TCommandStream::AddInputs(uint32_t r0, uint32_t r1, uint32_t r2, uint32_t r3)
{
    ASSERT(InputRemain != 0);
    AppendRows(Commands.back().Inputs, InputRemain, {r0, r1, r2, r3});
}

void TCommandStream::AddOutputs(uint32_t r0, uint32_t r1, uint32_t r2, uint32_t r3)
{
    ASSERT(OutputRemain != 0);
    AppendRows(Commands.back().Outputs, OutputRemain, {r0, r1, r2, r3});
}

void TCommandStream::AddInputRows(const vector<uint32_t>& rows)
{
    for (int i = 0; i < rows.size(); i += RowsPerQuad)
        AddInputs(rows[i], RowOrZero(rows, i + 1), RowOrZero(rows, i + 2), RowOrZero(rows, i + 3));
}

void TCommandStream::AddOutputRows(const vector<uint32_t>& rows)
{
    for (int i = 0; i < rows.size(); i += RowsPerQuad)
        AddOutputs(rows[i], RowOrZero(rows, i + 1), RowOrZero(rows, i + 2), RowOrZero(rows, i + 3));
}

void TCommandStream::AddConstants(const vector<float>& values, const vector<uint32_t>& rows)
{
    for (int first = 0; first < rows.size(); first += ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS) {
        TDataBlock block;
        vector<uint32_t> outputs;
        for (int i = first; i < rows.size() && i < first + ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS; ++i) {
            AppendFloat(block, values[i]);
            outputs.push_back(rows[i]);
        }
        AddData(block);
        AddCommand(NameToCrc("IdConstantEmitter"), 0, outputs.size(), 0);
        AddOutputRows(outputs);
    }
}

int TCommandStream::CountWords() const
{
    int count = 0;
    for (const TCommand& command : Commands) {
        count += 1 + WordsFor(command.Inputs.size()) + WordsFor(command.Outputs.size());
        if (!command.Data.empty())
            count += 1 + WordsFor(command.Data.size());
    }
    return count;
}

void TCommandStream::Serialise(TCommandTable& table, bool isExecute)
{
    const int count = CountWords();
    Words.clear();
    Words.reserve(count);
    uint32_t workspace = 0;
    for (const TCommand& command : Commands) {
        const int index = table.IndexOf(command.Name);
        int param = NoExecuteParam;
        if (isExecute) {
            param = AddExecuteParam(command, index, workspace);
            workspace += RoundUp(command.Workspace, WorkspaceAlignment);
        }
        LocatePatches(command);
        PutCommand(command, index, param);
    }
    ASSERT_TEXT(Words.size() == count, "idx == count");
}

int TCommandStream::AddExecuteParam(const TCommand& command, int index, uint32_t workspace)
{
    const int param = ExecuteParams.size();
    ASSERT_TEXT_MSG(param < NoExecuteParam, "ExecuteParams.size() < 255", "too many commands in a stream");
    TExecuteParam record;
    record.Name = command.Name;
    record.CommandIndex = static_cast<uint32_t>(index);
    record.DataPosition = command.Data.empty() ? 0 : static_cast<uint32_t>(Words.size()) * 4 + 4;
    record.DataSize = static_cast<uint32_t>(command.Data.size());
    record.WorkspaceOffset = workspace;
    record.WorkspaceSize = command.Workspace;
    ExecuteParams.push_back(record);
    return param;
}

void TCommandStream::LocatePatches(const TCommand& command)
{
    for (const TCommandPatch& patch : command.Patches) {
        // Behind the size word.
        const int64_t offset =
            static_cast<int64_t>(patch.Offset) + static_cast<int64_t>(Words.size()) * 4 + 4;
        TPatchLocation& location = PatchLocations[patch.NameId];
        location.Offsets.push_back(ToWordField(offset, "patch offset"));
        location.Type = ToWordField(patch.Type, "patch type");
    }
}

void TCommandStream::PutCommand(const TCommand& command, int index, int param)
{
    if (!command.Data.empty()) {
        Words.push_back(static_cast<uint32_t>(command.Data.size()));
        PutBytes(Words, command.Data);
    }
    CommandOffsets.push_back(Words.size());
    Words.push_back(static_cast<uint32_t>(index) << 24 | static_cast<uint32_t>(param) << 16 |
                    static_cast<uint32_t>(command.Inputs.size()) << 8 |
                    static_cast<uint32_t>(command.Outputs.size()));
    PutBytes(Words, command.Inputs);
    PutBytes(Words, command.Outputs);
}
