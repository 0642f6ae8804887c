#include "particles/effectgraph/export/recordpacker.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/exportfield.h"
#include "particles/effectgraph/export/rowformat.h"

namespace {
void CheckFlags(uint8_t rowflags)
{
    constexpr uint8_t FlagsLimit = 4;
    ASSERT_TEXT(rowflags < FlagsLimit, "rowflags < 4");
}

// How many places from the first on, four at most, lie side by side in one format.
template <class TPosition>
int GetRunLength(const vector<TPosition>& places, int first)
{
    const int format = places[first].Format;
    int count = 1;
    while (count < RowsPerQuad && first + count < places.size() && places[first + count].Format == format &&
           places[first + count].Offset == places[first + count - 1].Offset + RowFormats[format].Size)
        ++count;
    return count;
}

// What both kinds of commands are told: the rows that count, which unpacking does not tell, and where the
// first lies.
void AddPosition(TCommandStream& stream, int count, int offset)
{
    TDataBlock block;
    AppendU8(block, 0);
    AppendU8(block, static_cast<uint32_t>(count));
    AppendU16(block, ToWordField(offset, "particle record offset"));
    stream.AddData(block);
}
} // namespace

void TRecordPacker::AddAttribute(int attrib, bool isRender)
{
    TExportAttribute& attr = Group.Attributes[attrib];
    if (isRender)
        attr.Offset = Group.Stride;
    for (int row = 0; row < attr.RowCount; ++row) {
        AddEmissionRow(attrib, row, isRender);
        AddProcessRow(attrib, row);
    }
}

// A row that only emission knows and nobody draws has a place of its own ahead of the one that the process
// uses.
void TRecordPacker::AddEmissionRow(int attrib, int row, bool isRender)
{
    const TExportAttribute& attr = Group.Attributes[attrib];
    const uint8_t flags = Group.Emission.Flags[attrib][row];
    CheckFlags(flags);
    if ((flags & TRowFlags::Written) == 0)
        return;
    EmissionPack.push_back(TPosition{Group.Emission.RowMap[attr.RowStart + row], Group.Stride, attr.Format});
    if (!isRender && Group.Process.Flags[attrib][row] == 0)
        Group.Stride += RowFormats[attr.Format].Size;
}

// In the process every row counts as read and written, whatever its flags say.
void TRecordPacker::AddProcessRow(int attrib, int row)
{
    const TExportAttribute& attr = Group.Attributes[attrib];
    const int attributeRow = attr.RowStart + row;
    CheckFlags(Group.Process.Flags[attrib][row]);
    ProcessUnpack.push_back(TPosition{static_cast<uint32_t>(attributeRow), Group.Stride, attr.Format});
    ProcessPack.push_back(TPosition{Group.Process.RowMap[attributeRow], Group.Stride, attr.Format});
    Group.Stride += RowFormats[attr.Format].Size;
}

void TRecordPacker::AddConstants()
{
    for (int i = 0; i < Group.Constants.size(); ++i) {
        const TPosition place{RowConstant + static_cast<uint32_t>(i), Group.Stride, RF_FLOAT};
        EmissionPack.push_back(place);
        ProcessUnpack.push_back(place);
        ProcessPack.push_back(place);
        Group.Stride += RowFormats[RF_FLOAT].Size;
    }
}

void TRecordPacker::AddCommands()
{
    AddPackCommands(Group.Emission.Pack, EmissionPack);
    AddUnpackCommands(Group.Process.Unpack, ProcessUnpack);
    AddPackCommands(Group.Process.Pack, ProcessPack);
}

void TRecordPacker::AddPackCommands(TCommandStream& stream, const vector<TPosition>& places) const
{
    int count = 0;
    for (int first = 0; first < places.size(); first += count) {
        count = GetRunLength(places, first);
        uint32_t rows[RowsPerQuad];
        for (int i = 0; i < RowsPerQuad; ++i)
            rows[i] = MapPackedRow(i < count ? places[first + i].Row : 0);
        AddPosition(stream, count, places[first].Offset);
        stream.AddCommand(NameToCrc(RowFormats[places[first].Format].Pack), RowsPerQuad, 0, 0);
        stream.AddInputs(rows[0], rows[1], rows[2], rows[3]);
    }
}

// The console unpacks four rows in every case.
void TRecordPacker::AddUnpackCommands(TCommandStream& stream, const vector<TPosition>& places) const
{
    int count = 0;
    for (int first = 0; first < places.size(); first += count) {
        count = GetRunLength(places, first);
        uint32_t rows[RowsPerQuad];
        for (int i = 0; i < RowsPerQuad; ++i)
            rows[i] = i < count ? places[first + i].Row : RowDump;
        AddPosition(stream, 0, places[first].Offset);
        stream.AddCommand(NameToCrc(RowFormats[places[first].Format].Unpack), 0, RowsPerQuad, 0);
        stream.AddOutputs(rows[0], rows[1], rows[2], rows[3]);
    }
}

// Attribute rows go through the map of the process, in emission too, and mapped as they may be already.
uint32_t TRecordPacker::MapPackedRow(uint32_t row) const
{
    const vector<uint32_t>& map = Group.Process.RowMap;
    return row < static_cast<uint32_t>(map.size()) ? map[static_cast<int>(row)] : row;
}
