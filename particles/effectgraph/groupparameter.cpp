#include "particles/effectgraph/groupparameter.h"

#include "particles/effectgraph/owned.h"
#include "particles/effectgraph/xmltext.h"

// Groups that are being parsed around the present one.
static int ParseDepth = 0;

class TParseLevel
{
public:
    TParseLevel() { ++ParseDepth; }
    ~TParseLevel() { --ParseDepth; }
};

TNodeGroupParameter::~TNodeGroupParameter()
{
    if (ChunkIdx == -1)
        for (TNodeParameter* child : Children)
            delete child;
}

bool TNodeGroupParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    return TNodeParameter::Read(size, version, chunkFile) && chunkFile->File.ReadBool(Open) &&
           chunkFile->ReadPointers(Children);
}

bool TNodeGroupParameter::Write(TChunkFile* chunkFile)
{
    return TNodeParameter::Write(chunkFile) && chunkFile->File.WriteBool(Open) &&
           chunkFile->WritePointers(Children);
}

int TNodeGroupParameter::GetSize()
{
    return TNodeParameter::GetSize() + 5 + 4 * Children.size();
}

bool TNodeGroupParameter::ParseXml(TXmlFile& xml, TErrorList& errors, const char* fileName)
{
    const TParseLevel level;
    if (ParseDepth > MaxDepth)
        return AddXmlError(xml, errors, fileName, "Group parameters nested more than %d deep", MaxDepth);
    if (!ParseCommon(xml, errors, fileName))
        return false;
    if (xml.FindTag("defaultvalue")) {
        TString text;
        if (!GetElementText(xml, errors, fileName, text, "Failed to get defaultvalue text"))
            return false;
        Open = IsTrueText(text);
        if (!LeaveElement(xml, errors, fileName, "Parameter missing defaultvalue end tag"))
            return false;
    }
    if (!xml.FindTag("parameters"))
        return AddXmlError(xml, errors, fileName, "Group parameter missing parameter tag");
    if (xml.IsEmptyTag())
        return true;
    while (true) {
        TNodeParameter* child = nullptr;
        if (!ParseParameter(xml, errors, child, fileName, false))
            return false;
        if (child == nullptr)
            break;
        Children.push_back(child);
    }
    xml.LeaveTag();
    return true;
}

TNodeParameter* TNodeGroupParameter::Clone() const
{
    TOwned<TNodeGroupParameter> copy(new TNodeGroupParameter);
    copy->CopyBase(*this);
    copy->Open = Open;
    copy->Children.reserve(Children.size());
    for (const TNodeParameter* child : Children)
        copy->Children.push_back(child->Clone());
    return copy.Release();
}

void TNodeGroupParameter::TakeDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                          TRefreshRecord& record)
{
    TNodeParameter::TakeDeclaration(declared, chunkFile, record);
    RefreshParameters(Children, static_cast<const TNodeGroupParameter&>(declared).Children, chunkFile,
                      record);
}

void TNodeGroupParameter::AddToChunkFile(TChunkFile& chunkFile)
{
    chunkFile.AddChunk(this);
    for (TNodeParameter* child : Children)
        child->AddToChunkFile(chunkFile);
}

void TNodeGroupParameter::RemoveFromChunkFile(TChunkFile& chunkFile)
{
    chunkFile.RemoveChunk(this);
    for (TNodeParameter* child : Children)
        child->RemoveFromChunkFile(chunkFile);
}

void TNodeGroupParameter::GetOwned(vector<TNodeParameter*>& result) const
{
    for (TNodeParameter* child : Children)
        if (child != nullptr)
            result.push_back(child);
}

void TNodeGroupParameter::SetValue(bool open)
{
    Open = open;
    NotifyChanged();
}
