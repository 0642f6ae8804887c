#include "particles/effectgraph/groupparameter.h"

#include "library/containers/append.h"
#include "library/containers/owner.h"
#include "particles/effectgraph/nodetypefile.h"
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

bool TNodeGroupParameter::ParseXml(TNodeTypeFile& file)
{
    const TParseLevel level;
    if (ParseDepth > MaxDepth)
        return file.Fail("Group parameters nested more than %d deep", MaxDepth);
    if (!ParseCommon(file))
        return false;
    if (file.Xml.FindTag("defaultvalue")) {
        TString text;
        if (!file.GetText(text, "Failed to get defaultvalue text"))
            return false;
        Open = IsTrueText(text);
        if (!file.Leave("Parameter missing defaultvalue end tag"))
            return false;
    }
    if (!file.Xml.FindTag("parameters"))
        return file.Fail("Group parameter missing parameter tag");
    if (file.Xml.IsEmptyTag())
        return true;
    while (true) {
        TNodeParameter* child = nullptr;
        if (!ParseParameter(file, child, false))
            return false;
        if (child == nullptr)
            break;
        Append(Children, child);
    }
    file.Xml.LeaveTag();
    return true;
}

void TNodeGroupParameter::AddChild(TNodeParameter* child)
{
    ASSERT(ChunkIdx == -1);
    Append(Children, child);
}

TNodeParameter* TNodeGroupParameter::Clone() const
{
    TOwner<TNodeGroupParameter> copy(new TNodeGroupParameter);
    copy->CopyBase(*this);
    copy->Open = Open;
    copy->Children.reserve(Children.size());
    for (const TNodeParameter* child : Children)
        copy->Children.push_back(child->Clone());
    return copy.Release();
}

void TNodeGroupParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                           TRefreshRecord& record)
{
    TNodeParameter::AdoptDeclaration(declared, chunkFile, record);
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
            Append(result, child);
}

void TNodeGroupParameter::SetValue(bool open)
{
    Open = open;
    NotifyChanged();
}
