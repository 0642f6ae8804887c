#include "particles/effectgraph/polytypeparameter.h"

#include "library/containers/owner.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/nodetypefile.h"
#include "particles/effectgraph/refreshrecord.h"
#include "particles/effectgraph/xmltext.h"

TNodePolytypeParameter::~TNodePolytypeParameter()
{
    if (ChunkIdx == -1)
        for (TNodeValueParameter* value : Values)
            delete value;
}

template <class TParameter>
static bool ReadValue(TChunkFile* chunkFile, TNodeValueParameter*& result)
{
    TParameter* value = nullptr;
    if (!chunkFile->ReadPointer(value))
        return false;
    result = value;
    return true;
}

bool TNodePolytypeParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    ResolvedType = -1;
    AllowedTypes = 0xFFFFFFFFu;
    ValidTypes = NotComputed;
    ForgetLinks();
    using TRead = bool (*)(TChunkFile * chunkFile, TNodeValueParameter * &result);
    static constexpr TRead Readers[TY_POLYTYPE] = {
        ReadValue<TNodeScalarParameter>,  ReadValue<TNodeScaleParameter>,
        ReadValue<TNodeVector3Parameter>, ReadValue<TNodeQuaternionParameter>,
        ReadValue<TNodeColourParameter>,  ReadValue<TNodeTransformParameter>,
        ReadValue<TNodeTexCoordParameter>};
    bool ok = TNodeParameter::Read(size, version, chunkFile) && file.ReadI32(DefaultType) &&
              file.ReadString(LinkInput) && file.ReadString(LinkOutput);
    for (int type = 0; ok && type < TY_POLYTYPE; ++type)
        ok = Readers[type](chunkFile, Values[type]);
    return ok;
}

bool TNodePolytypeParameter::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    bool ok = TNodeParameter::Write(chunkFile) && file.WriteI32(DefaultType) && file.WriteString(LinkInput) &&
              file.WriteString(LinkOutput);
    for (int type = 0; ok && type < TY_POLYTYPE; ++type)
        ok = chunkFile->WritePointer(Values[type]);
    return ok;
}

int TNodePolytypeParameter::GetSize()
{
    return TNodeParameter::GetSize() + 4 + TBinaryFile::GetStringSize(LinkInput) +
           TBinaryFile::GetStringSize(LinkOutput) + 4 * TY_POLYTYPE;
}

bool TNodePolytypeParameter::ParseXml(TNodeTypeFile& file)
{
    static constexpr const char* Missing = "Polytype missing linkinput, linkoutput or validtypes tags";
    static constexpr const char* Steps[] = {"linkinput", "linkoutput", "validtypes"};
    if (!ParseCommon(file))
        return false;
    int step = 0;
    while (true) {
        const int found = file.Xml.FindAnyTagFromHere(3 - step, Steps + step);
        if (found == -1)
            return file.Fail(Missing);
        step += found;
        if (step == 2)
            break;
        if (!file.ReadElement(step == 0 ? LinkInput : LinkOutput, Missing, Missing))
            return false;
        ++step;
    }
    const bool isEmpty = file.Xml.IsEmptyTag();
    if (!isEmpty && !ParseValidTypes(file))
        return false;
    if (GetValidTypes() == 0)
        return file.Fail("Polytype missing valid types");
    if (!isEmpty)
        file.Xml.LeaveTag();
    return true;
}

bool TNodePolytypeParameter::ParseValidTypes(TNodeTypeFile& file)
{
    static constexpr const char* TypeTags[TY_POLYTYPE] = {"scalar", "scale",     "vector3", "quaternion",
                                                          "colour", "transform", "texcoord"};
    bool isFirst = true;
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        const int found = file.Xml.FindAnyTagFromHere(TY_POLYTYPE - type, TypeTags + type);
        if (found == -1)
            return true;
        type += found;
        TNodeValueParameter* value = static_cast<TNodeValueParameter*>(CreateNodeParameter(type));
        Values[type] = value;
        value->Name = Name;
        value->Description = Description;
        float floats[MaxValueFloats] = {0, 0, 0, 0, 0, 0};
        if (!file.Xml.IsEmptyTag()) {
            if (!ParseDefault(file, GetTypeFloats(type), floats))
                return false;
            file.Xml.LeaveTag();
        }
        value->SetValue(floats);
        if (isFirst)
            DefaultType = type;
        isFirst = false;
    }
    return true;
}

bool TNodePolytypeParameter::ParseDefault(TNodeTypeFile& file, int count, float* floats)
{
    static constexpr const char* BadText = "Failed to get default text";
    if (!file.Xml.FindTag("defaultvalue"))
        return true;
    TString text;
    if (!file.GetText(text, BadText))
        return false;
    vector<TString> pieces;
    text.Split(pieces, ',');
    if (pieces.size() != count)
        return file.Fail(
            "Badly formatted default value in polytype %s parameter. Expecting %d defauts, got %d",
            QuoteText(Name).Print(), count, pieces.size());
    for (int i = 0; i < count; ++i)
        floats[i] = pieces[i].ToFloat();
    return file.Leave(BadText);
}

TNodeParameter* TNodePolytypeParameter::Clone() const
{
    TOwner<TNodePolytypeParameter> copy(new TNodePolytypeParameter);
    copy->CopyBase(*this);
    copy->DefaultType = DefaultType;
    copy->LinkInput = LinkInput;
    copy->LinkOutput = LinkOutput;
    for (int type = 0; type < TY_POLYTYPE; ++type)
        if (Values[type] != nullptr)
            copy->Values[type] = static_cast<TNodeValueParameter*>(Values[type]->Clone());
    copy->ResolvedType = ResolvedType;
    copy->ValidTypes = ValidTypes;
    copy->AllowedTypes = AllowedTypes;
    return copy.Release();
}

void TNodePolytypeParameter::CopyValue(const TNodeParameter& other)
{
    if (other.Type >= 0 && other.Type < TY_POLYTYPE) {
        if (Values[other.Type] != nullptr)
            Values[other.Type]->CopyValue(other);
    } else if (other.Type == TY_POLYTYPE) {
        const TNodePolytypeParameter& polytype = static_cast<const TNodePolytypeParameter&>(other);
        for (int type = 0; type < TY_POLYTYPE; ++type)
            if (Values[type] != nullptr && polytype.Values[type] != nullptr)
                Values[type]->CopyValue(*polytype.Values[type]);
    }
}

// The user's choice of type stays, if there still is that type.
void TNodePolytypeParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                              TRefreshRecord& record)
{
    TNodeParameter::AdoptDeclaration(declared, chunkFile, record);
    const TNodePolytypeParameter& polytype = static_cast<const TNodePolytypeParameter&>(declared);
    LinkInput = polytype.LinkInput;
    LinkOutput = polytype.LinkOutput;
    for (int type = 0; type < TY_POLYTYPE; ++type) {
        const TNodeValueParameter* wanted = polytype.Values[type];
        if (wanted != nullptr && Values[type] != nullptr)
            Values[type]->AdoptDeclaration(*wanted, chunkFile, record);
        else if (wanted != nullptr) {
            Values[type] = static_cast<TNodeValueParameter*>(wanted->Clone());
            Values[type]->AddToChunkFile(chunkFile);
        } else if (Values[type] != nullptr) {
            record.Remove(Values[type], chunkFile);
            Values[type] = nullptr;
        }
    }
    if (!IsTypeValid(DefaultType))
        DefaultType = polytype.DefaultType;
    ValidTypes = NotComputed;
    AllowedTypes = 0xFFFFFFFFu;
    ResolvedType = -1;
    ForgetLinks();
}

void TNodePolytypeParameter::GetValue(float* out) const
{
    GetCurrentParameter()->GetValue(out);
}

void TNodePolytypeParameter::AddToChunkFile(TChunkFile& chunkFile)
{
    chunkFile.AddChunk(this);
    for (TNodeValueParameter* value : Values)
        if (value != nullptr)
            value->AddToChunkFile(chunkFile);
}

void TNodePolytypeParameter::RemoveFromChunkFile(TChunkFile& chunkFile)
{
    chunkFile.RemoveChunk(this);
    for (TNodeValueParameter* value : Values)
        if (value != nullptr)
            value->RemoveFromChunkFile(chunkFile);
}

void TNodePolytypeParameter::GetOwned(vector<TNodeParameter*>& result) const
{
    for (TNodeValueParameter* value : Values)
        if (value != nullptr)
            result.push_back(value);
}

bool TNodePolytypeParameter::IsTypeValid(int type) const
{
    ASSERT_TEXT(type >= 0 && type <= TY_TEXCOORDS, "type >= 0 && type <= TNodeType::TY_TEXCOORDS");
    return Values[type] != nullptr;
}

uint32_t TNodePolytypeParameter::GetValidTypes() const
{
    if (ValidTypes == NotComputed) {
        ValidTypes = 0;
        for (int type = 0; type < TY_POLYTYPE; ++type)
            if (Values[type] != nullptr)
                ValidTypes |= 1u << type;
    }
    return ValidTypes;
}

TNodeValueParameter* TNodePolytypeParameter::GetValueParameter(int type) const
{
    ASSERT_TEXT(IsTypeValid(type), "IsTypeValid(i)");
    return Values[type];
}

int TNodePolytypeParameter::GetCurrentType() const
{
    return ResolvedType != -1 ? ResolvedType : DefaultType;
}

int TNodePolytypeParameter::GetLinkInputIndex(const TEffectNode* node) const
{
    if (LinkInputIndex == -1 && !LinkInput.IsEmpty()) {
        const int index = node->GetNodeType()->FindInput(LinkInput);
        ASSERT_TEXT(index != -1, "i < node->GetNodeType()->GetNumInputs()");
        LinkInputIndex = index;
    }
    return LinkInputIndex;
}

int TNodePolytypeParameter::GetLinkOutputIndex(const TEffectNode* node) const
{
    if (LinkOutputIndex == -1 && !LinkOutput.IsEmpty()) {
        const int index = node->GetNodeType()->FindOutput(LinkOutput);
        ASSERT_TEXT(index != -1, "i < node->GetNodeType()->GetNumOutputs()");
        LinkOutputIndex = index;
    }
    return LinkOutputIndex;
}

void TNodePolytypeParameter::SetLinkInput(const TString& name)
{
    LinkInput = name;
    ForgetLinks();
}

void TNodePolytypeParameter::SetLinkOutput(const TString& name)
{
    LinkOutput = name;
    ForgetLinks();
}

void TNodePolytypeParameter::ForgetLinks()
{
    LinkInputIndex = -1;
    LinkOutputIndex = -1;
}

void TNodePolytypeParameter::SetAllowedTypes(uint32_t mask)
{
    if (mask == AllowedTypes)
        return;
    AllowedTypes = mask;
    ResolvedType = GetSingleType(mask);
    NotifyChanged();
}

TNodeValueParameter& TNodePolytypeParameter::AddType(int type)
{
    ASSERT(ChunkIdx == -1 && !IsTypeValid(type));
    TNodeValueParameter* value = static_cast<TNodeValueParameter*>(CreateNodeParameter(type));
    value->Name = Name;
    value->Description = Description;
    Values[type] = value;
    ValidTypes = NotComputed;
    return *value;
}

void TNodePolytypeParameter::SetUserType(int type)
{
    if (type >= 0 && type < TY_POLYTYPE && IsTypeValid(type))
        DefaultType = type;
    NotifyChanged();
}
