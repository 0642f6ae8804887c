#include "particles/effectgraph/simpleparameters.h"

#include "library/containers/append.h"
#include "library/containers/hashindex.h"
#include "particles/effectgraph/nodetypefile.h"
#include "particles/effectgraph/refreshrecord.h"
#include "particles/effectgraph/xmltext.h"

bool TNodeBoolParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    return TNodeParameter::Read(size, version, chunkFile) && chunkFile->File.ReadBool(Value);
}

bool TNodeBoolParameter::Write(TChunkFile* chunkFile)
{
    return TNodeParameter::Write(chunkFile) && chunkFile->File.WriteBool(Value);
}

int TNodeBoolParameter::GetSize()
{
    return TNodeParameter::GetSize() + 1;
}

bool TNodeBoolParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file) && file.ReadOptional("defaultvalue", [&](const TString& text) {
        Value = IsTrueText(text);
        return true;
    });
}

TNodeParameter* TNodeBoolParameter::Clone() const
{
    TNodeBoolParameter* copy = new TNodeBoolParameter;
    copy->CopyBase(*this);
    copy->Value = Value;
    return copy;
}

void TNodeBoolParameter::SetValue(bool value)
{
    Value = value;
    NotifyChanged();
}

bool TNodeEnumParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    uint32_t count = 0;
    // An entry takes at least an empty name and the number.
    if (!TNodeParameter::Read(size, version, chunkFile) || !file.ReadI32(Index) ||
        !chunkFile->ReadCount(count, 8))
        return false;
    Values.clear();
    Values.reserve(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        TEntry entry;
        if (!file.ReadString(entry.Name) || !file.ReadI32(entry.Number))
            return false;
        Values.push_back(entry);
    }
    return true;
}

bool TNodeEnumParameter::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    bool ok = TNodeParameter::Write(chunkFile) && file.WriteI32(Index) &&
              file.WriteU32(static_cast<uint32_t>(Values.size()));
    for (int i = 0; ok && i < Values.size(); ++i)
        ok = file.WriteString(Values[i].Name) && file.WriteI32(Values[i].Number);
    return ok;
}

int TNodeEnumParameter::GetSize()
{
    int size = TNodeParameter::GetSize() + 8;
    for (const TEntry& entry : Values)
        size += TBinaryFile::GetStringSize(entry.Name) + 4;
    return size;
}

bool TNodeEnumParameter::ParseXml(TNodeTypeFile& file)
{
    if (!ParseCommon(file))
        return false;
    TString text;
    while (file.Xml.FindTagFromHere("value")) {
        if (!file.ReadElement(text, "Failed to get value text", "Parameter missing value end tag"))
            return false;
        TEntry entry;
        entry.Number = Values.size();
        TString number;
        if (text.SplitAtFirst('=', number) != -1)
            entry.Number = number.ToInt();
        text.Trim();
        entry.Name = text;
        Append(Values, entry);
    }
    // A list without a default value has walked the reader to the element's end.
    file.Xml.RewindTag();
    return file.ReadOptional("defaultvalue", [&](const TString& name) {
        int index = 0;
        while (index < Values.size() && Values[index].Name.Compare(name, true) != 0)
            ++index;
        if (index == Values.size())
            return file.Fail("Default value for enum not found in values set: %s", QuoteText(name).Print());
        Index = index;
        return true;
    });
}

// Where an entry of another list stands in this one: what counts is its number, and its name where numbers
// are shared or the number is gone. -1 if there is neither.
class TNodeEnumParameter::TEntryFinder
{
public:
    explicit TEntryFinder(const vector<TEntry>& values)
        : Values(values), Both(values.size()), Numbers(values.size()), Names(values.size())
    {
        for (int i = 0; i < values.size(); ++i) {
            const uint32_t number = HashNumber(static_cast<uint32_t>(values[i].Number));
            const uint32_t name = HashText(values[i].Name);
            Both.Add(i, number ^ name);
            Numbers.Add(i, number);
            Names.Add(i, name);
        }
    }
    int Find(const TEntry& entry) const
    {
        const auto hasNumber = [&](int i) { return Values[i].Number == entry.Number; };
        const auto hasName = [&](int i) { return Values[i].Name.Compare(entry.Name) == 0; };
        const uint32_t number = HashNumber(static_cast<uint32_t>(entry.Number));
        const uint32_t name = HashText(entry.Name);
        const int same = Both.Find(number ^ name, [&](int i) { return hasNumber(i) && hasName(i); });
        if (same != -1)
            return same;
        const int sameNumber = Numbers.Find(number, hasNumber);
        return sameNumber != -1 ? sameNumber : Names.Find(name, hasName);
    }

private:
    const vector<TEntry>& Values;
    THashIndex Both;
    THashIndex Numbers;
    THashIndex Names;
};

// Where entries of before stand elsewhere now, the positions that operations hold mean others.
void TNodeEnumParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                          TRefreshRecord& record)
{
    TNodeParameter::AdoptDeclaration(declared, chunkFile, record);
    const TNodeEnumParameter& wanted = static_cast<const TNodeEnumParameter&>(declared);
    vector<TEntry> old;
    old.swap(Values);
    Values = wanted.Values;
    const TEntryFinder finder(Values);
    int chosen = -1;
    for (int i = 0; i < old.size(); ++i) {
        const int now = finder.Find(old[i]);
        chosen = i == Index ? now : chosen;
        if (now != i)
            record.SetLost(this);
    }
    Index = chosen != -1 ? chosen : wanted.Index;
}

TNodeParameter* TNodeEnumParameter::Clone() const
{
    TNodeEnumParameter* copy = new TNodeEnumParameter;
    copy->CopyBase(*this);
    copy->Index = Index;
    copy->Values = Values;
    return copy;
}

void TNodeEnumParameter::AddEntry(const TEntry& entry)
{
    Append(Values, entry);
}

int TNodeEnumParameter::GetNumber() const
{
    return Index >= 0 && Index < Values.size() ? Values[Index].Number : 0;
}

void TNodeEnumParameter::SetValue(int index)
{
    if (index >= 0 && index < Values.size())
        Index = index;
    NotifyChanged();
}

bool TNodeIntParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    return TNodeParameter::Read(size, version, chunkFile) && chunkFile->File.ReadI32(Value);
}

bool TNodeIntParameter::Write(TChunkFile* chunkFile)
{
    return TNodeParameter::Write(chunkFile) && chunkFile->File.WriteI32(Value);
}

int TNodeIntParameter::GetSize()
{
    return TNodeParameter::GetSize() + 4;
}

bool TNodeIntParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file) && file.ReadOptional("defaultvalue", [&](const TString& text) {
        Value = text.ToInt();
        return true;
    });
}

TNodeParameter* TNodeIntParameter::Clone() const
{
    TNodeIntParameter* copy = new TNodeIntParameter;
    copy->CopyBase(*this);
    copy->Value = Value;
    return copy;
}

void TNodeIntParameter::SetValue(int value)
{
    Value = value;
    NotifyChanged();
}

bool TNodeTextureParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    return TNodeParameter::Read(size, version, chunkFile) && chunkFile->File.ReadString(FileName);
}

bool TNodeTextureParameter::Write(TChunkFile* chunkFile)
{
    return TNodeParameter::Write(chunkFile) && chunkFile->File.WriteString(FileName);
}

int TNodeTextureParameter::GetSize()
{
    return TNodeParameter::GetSize() + TBinaryFile::GetStringSize(FileName);
}

bool TNodeTextureParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file);
}

TNodeParameter* TNodeTextureParameter::Clone() const
{
    TNodeTextureParameter* copy = new TNodeTextureParameter;
    copy->CopyBase(*this);
    copy->FileName = FileName;
    return copy;
}

void TNodeTextureParameter::SetValue(const char* fileName)
{
    FileName = fileName;
    NotifyChanged();
}

bool TNodeAnimationParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return TNodeParameter::Read(size, version, chunkFile) && file.ReadString(FileName) &&
           file.ReadBool(Position) && file.ReadBool(Rotation) && file.ReadBool(Scale);
}

bool TNodeAnimationParameter::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return TNodeParameter::Write(chunkFile) && file.WriteString(FileName) && file.WriteBool(Position) &&
           file.WriteBool(Rotation) && file.WriteBool(Scale);
}

int TNodeAnimationParameter::GetSize()
{
    return TNodeParameter::GetSize() + TBinaryFile::GetStringSize(FileName) + 3;
}

bool TNodeAnimationParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file);
}

TNodeParameter* TNodeAnimationParameter::Clone() const
{
    TNodeAnimationParameter* copy = new TNodeAnimationParameter;
    copy->CopyBase(*this);
    copy->FileName = FileName;
    copy->Position = Position;
    copy->Rotation = Rotation;
    copy->Scale = Scale;
    return copy;
}

void TNodeAnimationParameter::SetFileName(const char* fileName)
{
    FileName = fileName;
    NotifyChanged();
}

void TNodeAnimationParameter::SetFlags(bool position, bool rotation, bool scale)
{
    Position = position;
    Rotation = rotation;
    Scale = scale;
    NotifyChanged();
}
