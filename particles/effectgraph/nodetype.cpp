#include "particles/effectgraph/nodetype.h"

#include "library/containers/owner.h"
#include "library/system/files/xmlcheck.h"
#include "library/system/path.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/nodetypereader.h"
#include "particles/effectgraph/xmltext.h"

bool TPortRef::IsInput() const
{
    return Index < Node->GetNodeType()->GetNumInputs();
}

int TPortRef::GetInputIndex() const
{
    ASSERT_TEXT(IsInput(), "IsInput()");
    return Index;
}

int TPortRef::GetOutputIndex() const
{
    ASSERT_TEXT(!IsInput(), "!IsInput()");
    return Index - Node->GetNodeType()->GetNumInputs();
}

TNodeType::~TNodeType()
{
    if (ChunkIdx != -1)
        return;
    for (TNodeParameter* parameter : Parameters)
        delete parameter;
    for (TNodeParameter* input : Inputs)
        delete input;
}

// A class asks for the ports that it knows, whatever the files make of its type: what it misses there, an
// artist is to read.
static void CheckPort(int n, int count, const TNodeType& type, const char* side)
{
    ASSERT_TEXT_MSG(n >= 0 && n < count, "n>=0 && n<size()",
                    TempFormat("The node type %s has no %s %d", type.Name.Print(), side, n + 1));
}

int TNodeType::GetInputType(int i) const
{
    CheckPort(i, Inputs.size(), *this, "input");
    return Inputs[i]->GetValueType();
}

int TNodeType::GetOutputType(int i) const
{
    CheckPort(i, Outputs.size(), *this, "output");
    const TOutputPort& output = Outputs[i];
    return output.ResolvedType != -1 ? output.ResolvedType : output.DefaultType;
}

int TNodeType::FindOutputNamedLikeInput(int i) const
{
    return FindOutput(Inputs[i]->Name);
}

int TNodeType::FindInputNamedLikeOutput(int i) const
{
    return FindInput(Outputs[i].Name);
}

int TNodeType::FindInput(const char* name) const
{
    for (int i = 0; i < Inputs.size(); ++i)
        if (Inputs[i]->Name.Compare(name) == 0)
            return i;
    return -1;
}

int TNodeType::FindOutput(const char* name) const
{
    for (int i = 0; i < Outputs.size(); ++i)
        if (Outputs[i].Name.Compare(name) == 0)
            return i;
    return -1;
}

static TNodeGroupParameter* FindGroup(const vector<TNodeParameter*>& level, const TString& name)
{
    for (TNodeParameter* parameter : level)
        if (parameter->Type == PK_GROUP && parameter->Name.Compare(name) == 0)
            return static_cast<TNodeGroupParameter*>(parameter);
    return nullptr;
}

TNodeParameter* TNodeType::FindParameter(const char* path) const
{
    const vector<TNodeParameter*>* level = &Parameters;
    TString rest(path);
    TString name;
    int point = rest.Find('.');
    while (point != -1) {
        name.Left(rest, point);
        const TNodeGroupParameter* group = FindGroup(*level, name);
        if (group == nullptr)
            return nullptr;
        level = &group->GetChildren();
        rest = rest.c_str() + point + 1;
        point = rest.Find('.');
    }
    for (TNodeParameter* parameter : *level)
        if (parameter->Name.Compare(rest) == 0)
            return parameter;
    return nullptr;
}

bool TNodeType::LoadXml(const char* path, TErrorList& errors)
{
    const TString name = GetShownPath(path);
    TXmlFile xml;
    if (!xml.OpenRead(path)) {
        errors.Add(new TError("Could not open node file %s for reading\n", QuoteText(name).Print()));
        AddReadRefusal(errors, path);
        return false;
    }
    TXmlFault tags;
    TXmlFault zero;
    CheckXml(path, tags, zero);
    TNodeTypeFile file(xml, errors, name);
    TNodeTypeReader reader(*this, file);
    // What ends at a zero byte is not what the file says.
    const bool isRead = zero.Kind == TXmlFault::None && reader.Read();
    xml.Close();
    if (zero.Kind != TXmlFault::None)
        errors.Add(new TFileError(name, zero.Line, "%s", zero.Text.Print()));
    // The reader has gone on past them, and may have found another type than was meant.
    if (tags.Kind != TXmlFault::None)
        errors.Add(new TFileError(name, tags.Line, "%s", tags.Text.Print()));
    return isRead;
}

TNodeType* TNodeType::Clone() const
{
    TOwner<TNodeType> copy(new TNodeType);
    copy->Name = Name;
    copy->Description = Description;
    copy->Category = Category;
    copy->Colour = Colour;
    copy->Flags = Flags;
    copy->BoundsMin = BoundsMin;
    copy->BoundsMax = BoundsMax;
    copy->Parameters.reserve(Parameters.size());
    for (const TNodeParameter* parameter : Parameters)
        copy->Parameters.push_back(parameter->Clone());
    copy->Inputs.reserve(Inputs.size());
    for (const TNodeParameter* input : Inputs)
        copy->Inputs.push_back(input->Clone());
    copy->Outputs = Outputs;
    copy->ClassName = ClassName;
    copy->DisplayClass = DisplayClass;
    copy->Interfaces = Interfaces;
    copy->NumOwnParameters = NumOwnParameters;
    return copy.Release();
}

void TNodeType::AddToChunkFile(TChunkFile& chunkFile)
{
    chunkFile.AddChunk(this);
    for (TNodeParameter* parameter : Parameters)
        parameter->AddToChunkFile(chunkFile);
    for (TNodeParameter* input : Inputs)
        input->AddToChunkFile(chunkFile);
}

void TNodeType::RemoveFromChunkFile(TChunkFile& chunkFile)
{
    chunkFile.RemoveChunk(this);
    for (TNodeParameter* parameter : Parameters)
        parameter->RemoveFromChunkFile(chunkFile);
    for (TNodeParameter* input : Inputs)
        input->RemoveFromChunkFile(chunkFile);
}

void TNodeType::SetRenderPriority(int priority)
{
    ASSERT(priority >= 0 && priority < 256);
    Flags = (Flags & ((1u << RenderPriorityShift) - 1)) | static_cast<uint32_t>(priority)
                                                              << RenderPriorityShift;
}

bool TNodeType::Read(int, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    uint32_t category = 0;
    uint32_t colour = 0;
    if (!file.ReadString(Name) || !file.ReadString(Description) || !file.ReadU32(category) ||
        !file.ReadU32(colour) || !ReadFlags(chunkFile, version))
        return false;
    Category = static_cast<int>(category);
    Colour = static_cast<int>(colour);
    BoundsMin = TVector3();
    BoundsMax = TVector3();
    if (version >= 5 && (!file.ReadVector3(BoundsMin) || !file.ReadVector3(BoundsMax)))
        return false;
    if (!chunkFile->ReadPointers(Parameters) || !chunkFile->ReadPointers(Inputs) ||
        !ReadOutputs(chunkFile, version) || !file.ReadString(ClassName) || !file.ReadString(DisplayClass))
        return false;
    if (version >= 2 && !file.ReadStrings(Interfaces))
        return false;
    uint32_t numOwnParameters = static_cast<uint32_t>(Parameters.size());
    if (version >= 4 && !file.ReadU32(numOwnParameters))
        return false;
    NumOwnParameters = static_cast<int>(numOwnParameters);
    return true;
}

bool TNodeType::ReadFlags(TChunkFile* chunkFile, int version)
{
    TBinaryFile& file = chunkFile->File;
    if (version > 0)
        return file.ReadU32(Flags);
    bool bits[3];
    if (!file.ReadBool(bits[0]) || !file.ReadBool(bits[1]) || !file.ReadBool(bits[2]))
        return false;
    Flags = 0;
    for (int i = 0; i < 3; ++i)
        SetFlag(1u << i, bits[i]);
    return true;
}

bool TNodeType::ReadOutputs(TChunkFile* chunkFile, int version)
{
    constexpr int SmallestOutput = 24;
    constexpr int SmallestOldOutput = 16;
    uint32_t count = 0;
    if (!chunkFile->ReadCount(count, version < 3 ? SmallestOldOutput : SmallestOutput))
        return false;
    Outputs.clear();
    Outputs.reserve(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        TOutputPort output;
        if (!(version < 3 ? ReadOldOutput(chunkFile, output) : ReadOutput(chunkFile, output)))
            return false;
        Outputs.push_back(output);
    }
    return true;
}

// The mask of a single type; none for a type that this build does not know.
static uint32_t GetTypeMask(int type)
{
    return type >= 0 ? 1u << type : 0;
}

bool TNodeType::ReadOutput(TChunkFile* chunkFile, TOutputPort& output)
{
    TBinaryFile& file = chunkFile->File;
    uint32_t type = 0;
    uint32_t defaultType = 0;
    if (!file.ReadU32(type) || !file.ReadString(output.Name) || !file.ReadString(output.Description) ||
        !file.ReadU32(defaultType))
        return false;
    output.Type = FindTypeOfId(type);
    output.DefaultType = FindTypeOfId(defaultType);
    output.ValidTypes = output.Type == TY_POLYTYPE ? 0 : GetTypeMask(output.Type);
    if (output.Type == TY_POLYTYPE) {
        vector<uint32_t> ids;
        if (!file.ReadU32s(ids))
            return false;
        for (uint32_t id : ids)
            output.ValidTypes |= GetTypeMask(FindTypeOfId(id));
    }
    return file.ReadI32(output.LinkInput) && file.ReadI32(output.LinkOutput);
}

bool TNodeType::ReadOldOutput(TChunkFile* chunkFile, TOutputPort& output)
{
    constexpr uint32_t NumOldTypes = 8;
    constexpr uint32_t OldPolytype = 7;
    static constexpr int NewTypes[NumOldTypes] = {0, 0, 1, 2, 3, 4, 5, 6};
    TBinaryFile& file = chunkFile->File;
    uint32_t code = 0;
    uint32_t mask = 0;
    if (!file.ReadU32(code) || !file.ReadString(output.Name) || !file.ReadString(output.Description) ||
        !file.ReadU32(mask))
        return false;
    output.Type = code < NumOldTypes ? NewTypes[code] : 0;
    output.DefaultType = output.Type;
    output.ValidTypes = GetTypeMask(output.Type);
    if (code == OldPolytype) {
        output.ValidTypes = 0;
        for (uint32_t bit = 0; bit < NumOldTypes; ++bit)
            if ((mask >> bit & 1) != 0)
                output.ValidTypes |= 1u << NewTypes[bit];
    }
    return true;
}

static bool WriteOutput(TBinaryFile& file, const TOutputPort& output)
{
    if (!file.WriteU32(GetTypeId(output.Type)) || !file.WriteString(output.Name) ||
        !file.WriteString(output.Description) || !file.WriteU32(GetTypeId(output.DefaultType)))
        return false;
    if (output.Type == TY_POLYTYPE) {
        vector<uint32_t> ids;
        for (int type = 0; type < TY_NUMTYPES; ++type)
            if ((output.ValidTypes >> type & 1) != 0)
                ids.push_back(GetTypeId(type));
        if (!file.WriteU32s(ids))
            return false;
    }
    return file.WriteI32(output.LinkInput) && file.WriteI32(output.LinkOutput);
}

bool TNodeType::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    bool ok = file.WriteString(Name) && file.WriteString(Description) &&
              file.WriteU32(static_cast<uint32_t>(Category)) &&
              file.WriteU32(static_cast<uint32_t>(Colour)) && file.WriteU32(Flags) &&
              file.WriteVector3(BoundsMin) && file.WriteVector3(BoundsMax) &&
              chunkFile->WritePointers(Parameters) && chunkFile->WritePointers(Inputs) &&
              file.WriteU32(static_cast<uint32_t>(Outputs.size()));
    for (int i = 0; ok && i < Outputs.size(); ++i)
        ok = WriteOutput(file, Outputs[i]);
    return ok && file.WriteString(ClassName) && file.WriteString(DisplayClass) &&
           file.WriteStrings(Interfaces) && file.WriteU32(static_cast<uint32_t>(NumOwnParameters));
}

static int GetOutputSize(const TOutputPort& output)
{
    int size = 16 + TBinaryFile::GetStringSize(output.Name) + TBinaryFile::GetStringSize(output.Description);
    if (output.Type == TY_POLYTYPE) {
        size += 4;
        for (int type = 0; type < TY_NUMTYPES; ++type)
            size += (output.ValidTypes >> type & 1) != 0 ? 4 : 0;
    }
    return size;
}

int TNodeType::GetSize()
{
    // The three words, the two vectors, and the five counts.
    int size = 12 + 24 + 16 + 4;
    size += TBinaryFile::GetStringSize(Name) + TBinaryFile::GetStringSize(Description);
    size += TBinaryFile::GetStringSize(ClassName) + TBinaryFile::GetStringSize(DisplayClass);
    size += 4 * (Parameters.size() + Inputs.size());
    for (const TOutputPort& output : Outputs)
        size += GetOutputSize(output);
    for (const TString& name : Interfaces)
        size += TBinaryFile::GetStringSize(name);
    return size;
}

static bool SameText(const TString& a, const TString& b)
{
    return a.Compare(b) == 0;
}

static bool SameDeclaration(const TNodeParameter& a, const TNodeParameter& b)
{
    return SameText(a.Name, b.Name) && SameText(a.Description, b.Description) && a.Type == b.Type &&
           a.Required == b.Required;
}

static bool SameOutput(const TOutputPort& copy, const TOutputPort& type)
{
    if (copy.ValidTypes == 0 && copy.Type != type.Type)
        return false;
    return SameText(copy.Name, type.Name) && SameText(copy.Description, type.Description) &&
           copy.ValidTypes == type.ValidTypes;
}

bool TNodeType::IsNamedOrOfClass(const char* name, const char* className) const
{
    return Name.Compare(name) == 0 || IsOfClass(className);
}

bool TNodeType::NeedsRefresh(const TNodeTypeLibrary& library) const
{
    const TNodeType* type = library.FindType(Name);
    if (type == nullptr)
        return false;
    if (!SameText(Description, type->Description) || Category != type->Category || Colour != type->Colour ||
        (Flags & FL_TYPEMASK) != (type->Flags & FL_TYPEMASK) ||
        Parameters.size() != type->Parameters.size() || Inputs.size() != type->Inputs.size() ||
        Outputs.size() != type->Outputs.size() || !SameText(ClassName, type->ClassName) ||
        !SameText(DisplayClass, type->DisplayClass) || Interfaces.size() != type->Interfaces.size())
        return true;
    for (int i = 0; i < Parameters.size(); ++i)
        if (!SameDeclaration(*Parameters[i], *type->Parameters[i]))
            return true;
    for (int i = 0; i < Inputs.size(); ++i)
        if (!SameDeclaration(*Inputs[i], *type->Inputs[i]))
            return true;
    for (int i = 0; i < Outputs.size(); ++i)
        if (!SameOutput(Outputs[i], type->Outputs[i]))
            return true;
    for (int i = 0; i < Interfaces.size(); ++i)
        if (!SameText(Interfaces[i], type->Interfaces[i]))
            return true;
    return false;
}
