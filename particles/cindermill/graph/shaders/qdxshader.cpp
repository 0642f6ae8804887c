#include "particles/cindermill/graph/shaders/qdxshader.h"

#include "library/containers/array.h"
#include "library/containers/assertion.h"
#include "library/containers/byteorder.h"
#include "library/containers/log.h"
#include "library/containers/nametocrc.h"
#include "library/containers/ownerlist.h"
#include "library/system/file.h"
#include "library/system/path.h"
#include "library/wimp/gl/device/graphicsdevice.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "particles/cindermill/graph/shaders/qdxvertexstore.h"
#include "particles/cindermill/graph/shaders/vertexstream.h"

#include <bit>
#include <cstring>

// A shader file in memory. Its offsets come from the file, so each is held against the size before use.
class TShaderImage
{
public:
    TShaderImage(const uint8_t* data, int size) : Data(data), Size(size) {}

    bool Has(int64_t offset, int64_t count) const
    {
        return offset >= 0 && count >= 0 && offset + count <= Size;
    }
    // Whether the bytes are there; if not, the log names what lacks them.
    bool Check(int64_t offset, int64_t count, const char* what) const
    {
        if (Has(offset, count))
            return true;
        DebugPrintf("Sho file is too short for its %s\n", what);
        return false;
    }
    const uint8_t* At(int64_t offset) const { return Data + offset; }
    int GetRemaining(int64_t offset) const { return static_cast<int>(Size - offset); }
    int GetSize() const { return Size; }
    uint8_t GetByte(int64_t offset) const { return Data[offset]; }
    uint16_t GetShort(int64_t offset) const { return static_cast<uint16_t>(BigU16(At(offset))); }
    uint32_t GetWord(int64_t offset) const { return BigU32(At(offset)); }

private:
    const uint8_t* Data;
    int Size;
};

// The shaders of the process.
class TQdxShaderCache
{
public:
    static TQdxShaderCache& Get()
    {
        // Shaders refer to programs of the store, which therefore must outlive them.
        TQdxVertexStore::Get();
        static TQdxShaderCache cache;
        return cache;
    }

    TQdxShader* FindFile(const char* path) const;
    TQdxShader* FindMemory(const void* data) const;
    // Parses and keeps a new shader; null if it is none.
    TQdxShader* Add(const char* path, const void* source, const uint8_t* data, int size);

private:
    TOwnerList<TQdxShader> Shaders;
};

TQdxShader* TQdxShaderCache::FindFile(const char* path) const
{
    TString wanted;
    ToKeptPath(path, wanted);
    for (TQdxShader* shader : Shaders) {
        if (shader->Source != nullptr)
            continue;
        TString name;
        ToKeptPath(shader->Name, name);
        if (name.Compare(wanted) == 0)
            return shader;
    }
    return nullptr;
}

TQdxShader* TQdxShaderCache::FindMemory(const void* data) const
{
    for (TQdxShader* shader : Shaders)
        if (data != nullptr && shader->Source == data)
            return shader;
    return nullptr;
}

TQdxShader* TQdxShaderCache::Add(const char* path, const void* source, const uint8_t* data, int size)
{
    // Parsing may stop on an assertion.
    TOwner<TQdxShader> made(new TQdxShader);
    made->Name = path;
    made->Source = source;
    if (!made->Parse(data, size))
        return nullptr;
    Shaders.push_back(made.Release());
    return Shaders.back();
}

namespace {

enum THeaderOffsets
{
    VersionOffset = 3,
    KindOffset = 4,
    PlatformOffset = 8,
    AttributeCountOffset = 10,
    ConstantCountOffset = 12,
    SamplerCountOffset = 14,
    AttributeTableOffset = 16,
    ConstantTableOffset = 18,
    SamplerTableOffset = 20,
    BlockOffset = 22,
    HeaderBytes = 24,
};

constexpr int ShoVersion = 8;
constexpr int ShoPlatform = 2;
constexpr int EntryBytes = 8;
constexpr int ConstantBytes = 12;
constexpr int SlotListMarker = 0xFFFF;
constexpr int InstructionBytes = 16;
// In both kinds of program block the lists begin behind 24 bytes.
constexpr int BlockBytes = 24;

// Slots may be counted rather than listed, and lists may lie over each other, so their number is not bounded
// by the file's bytes. More than this no program of the file's size could use.
bool CheckSlotCount(const TShaderImage& image, int64_t count)
{
    if (count <= static_cast<int64_t>(image.GetSize()) + 0x10000)
        return true;
    DebugPrintf("Sho file has more constant slots than its size allows\n");
    return false;
}

void ReadShorts(const TShaderImage& image, int64_t offset, int count, vector<uint16_t>& result)
{
    result.reserve(count);
    for (int i = 0; i < count; ++i)
        result.push_back(image.GetShort(offset + 2 * i));
}

template <class TEntries>
int FindName(const TEntries& entries, const char* name)
{
    const uint32_t id = NameToCrc(name);
    for (int i = 0; i < entries.size(); ++i)
        if (entries[i].NameId == id)
            return i;
    return -1;
}

} // namespace

TQdxShader::TQdxShader() = default;

TQdxShader::~TQdxShader() = default;

TQdxShader* TQdxShader::LoadShaderFile(const char* path)
{
    TQdxShaderCache& cache = TQdxShaderCache::Get();
    if (TQdxShader* shader = cache.FindFile(path))
        return shader;
    // Its size is that of the file once it is open: a compiler may be writing it anew.
    TFile file;
    if (!file.OpenRead(path)) {
        DebugPrintf("Could not open sho file %s: %s\n", path, file.GetFault().Print());
        return nullptr;
    }
    array<uint8_t> data;
    data.resize(file.GetSize());
    const bool isRead = file.Read(data.data(), data.size());
    file.Close();
    if (!isRead) {
        DebugPrintf("Could not read sho file %s\n", path);
        return nullptr;
    }
    return cache.Add(path, nullptr, data.data(), data.size());
}

TQdxShader* TQdxShader::LoadShaderFromMemory(const void* data, int size)
{
    TQdxShaderCache& cache = TQdxShaderCache::Get();
    if (TQdxShader* shader = cache.FindMemory(data))
        return shader;
    return cache.Add(nullptr, data, static_cast<const uint8_t*>(data), size);
}

bool TQdxShader::Parse(const uint8_t* data, int size)
{
    const TShaderImage image(data, size);
    if (!image.Has(0, VersionOffset) || data[0] != 'S' || data[1] != 'H' || data[2] != 'O') {
        DebugPrintf("Bad sho file header\n");
        return false;
    }
    if (!image.Check(VersionOffset, 1, "header"))
        return false;
    if (image.GetByte(VersionOffset) != ShoVersion) {
        DebugPrintf("Unsupported sho version %d. Expecting 8\n", image.GetByte(VersionOffset));
        return false;
    }
    if (!image.Check(0, HeaderBytes, "header"))
        return false;
    if (image.GetShort(PlatformOffset) != ShoPlatform) {
        DebugPrintf("Shader is not compiled for QDX\n");
        return false;
    }
    if (!ReadTables(image))
        return false;
    const int block = image.GetShort(BlockOffset);
    if (!image.Check(block, BlockBytes, "program block"))
        return false;
    return image.GetWord(KindOffset) != 0 ? ReadFragmentBlock(image, block) : ReadVertexBlock(image, block);
}

bool TQdxShader::ReadTables(const TShaderImage& image)
{
    return ReadEntries(image, image.GetShort(AttributeCountOffset), image.GetShort(AttributeTableOffset),
                       "attribute table", Attributes) &&
           ReadConstants(image, image.GetShort(ConstantCountOffset), image.GetShort(ConstantTableOffset)) &&
           ReadEntries(image, image.GetShort(SamplerCountOffset), image.GetShort(SamplerTableOffset),
                       "sampler table", Samplers);
}

bool TQdxShader::ReadEntries(const TShaderImage& image, int count, int offset, const char* what,
                             vector<TEntry>& entries)
{
    if (count == 0)
        return true;
    if (!image.Check(offset, static_cast<int64_t>(count) * EntryBytes, what))
        return false;
    entries.reserve(count);
    for (int i = 0; i < count; ++i) {
        const int64_t at = offset + static_cast<int64_t>(i) * EntryBytes;
        entries.push_back({image.GetWord(at), image.GetWord(at + 4)});
    }
    return true;
}

bool TQdxShader::ReadConstants(const TShaderImage& image, int count, int offset)
{
    if (count == 0)
        return true;
    if (!image.Check(offset, static_cast<int64_t>(count) * ConstantBytes, "constant table"))
        return false;
    Constants.resize(count);
    int64_t slotCount = 0;
    for (int i = 0; i < count; ++i) {
        const int64_t at = offset + static_cast<int64_t>(i) * ConstantBytes;
        TShaderConstant& constant = Constants[i];
        constant.NameId = image.GetWord(at);
        constant.Type[0] = image.GetByte(at + 4);
        constant.Type[1] = image.GetByte(at + 5);
        const int slots = image.GetShort(at + 6);
        const int first = image.GetShort(at + 8);
        slotCount += slots;
        if (!CheckSlotCount(image, slotCount))
            return false;
        if (first == SlotListMarker) {
            const int list = image.GetShort(at + 10);
            if (!image.Check(list, 2 * slots, "slot list"))
                return false;
            ReadShorts(image, list, slots, constant.Slots);
        } else {
            constant.Slots.reserve(slots);
            for (int slot = 0; slot < slots; ++slot)
                constant.Slots.push_back(static_cast<uint16_t>(first + slot));
        }
    }
    return true;
}

bool TQdxShader::ReadFragmentBlock(const TShaderImage& image, int block)
{
    FragmentProgram.Reset(new TQdxFragmentProgram);
    const int64_t microcode = block + static_cast<int64_t>(image.GetWord(block + 16));
    if (!image.Check(microcode, InstructionBytes, "microcode"))
        return false;
    return FragmentProgram->Translate(image.At(microcode), image.GetRemaining(microcode)) &&
           ReadFragmentParameters(image, block);
}

bool TQdxShader::ReadFragmentParameters(const TShaderImage& image, int block)
{
    const int64_t count = image.GetWord(block + 20);
    if (!image.Check(block + BlockBytes, 4 * count, "patch lists"))
        return false;
    FragmentParameters.resize(static_cast<int>(count));
    int64_t positionCount = 0;
    for (int i = 0; i < static_cast<int>(count); ++i) {
        const int64_t list = block + static_cast<int64_t>(image.GetWord(block + BlockBytes + 4 * i));
        if (!image.Check(list, 2, "patch list"))
            return false;
        const int positions = image.GetShort(list);
        positionCount += positions;
        if (!image.Check(list + 2, 2 * positions, "patch list") || !CheckSlotCount(image, positionCount))
            return false;
        ReadShorts(image, list + 2, positions, FragmentParameters[i]);
        for (uint16_t& position : FragmentParameters[i]) {
            const int ref =
                FragmentProgram->FindConstantRef(static_cast<uint32_t>(position) * InstructionBytes);
            ASSERT_TEXT(ref != -1, "i < m_constantRefs.size()");
            position = static_cast<uint16_t>(ref);
        }
    }
    return true;
}

bool TQdxShader::ReadVertexBlock(const TShaderImage& image, int block)
{
    const int count = image.GetShort(block);
    const int64_t microcode = block + static_cast<int64_t>(image.GetShort(block + 18));
    if (!image.Check(microcode, static_cast<int64_t>(count) * InstructionBytes, "microcode"))
        return false;
    // Without an end the program would run on into whatever the store holds behind it.
    bool hasEnd = false;
    for (int i = 0; i < count; ++i)
        hasEnd = hasEnd || (image.GetByte(microcode + i * InstructionBytes + 15) & 1) != 0;
    if (!hasEnd) {
        DebugPrintf("Vertex program has no end\n");
        return false;
    }
    if (!ReadDefaultConstants(image, block))
        return false;
    TQdxVertexStore& store = TQdxVertexStore::Get();
    store.SetLoadSlot(0);
    store.SetStartSlot(0);
    store.LoadInstructions(image.At(microcode), count);
    VertexProgram = store.GetProgram();
    return true;
}

bool TQdxShader::ReadDefaultConstants(const TShaderImage& image, int block)
{
    const int count = image.GetShort(block + 22);
    const int64_t slots = block + BlockBytes;
    const int64_t values = block + ((4 * count + 39) & ~15);
    if (count == 0)
        return true;
    if (!image.Check(slots, 4 * count, "default constants") ||
        !image.Check(values, 16 * count, "default constants"))
        return false;
    DefaultConstants.resize(count);
    for (int i = 0; i < count; ++i) {
        DefaultConstants[i].Slot = image.GetWord(slots + 4 * i);
        for (int c = 0; c < 4; ++c)
            DefaultConstants[i].Value[c] = std::bit_cast<float>(image.GetWord(values + 16 * i + 4 * c));
    }
    return true;
}

int TQdxShader::FindAttribute(const char* name) const
{
    return FindName(Attributes, name);
}

int TQdxShader::FindConstant(const char* name) const
{
    return FindName(Constants, name);
}

int TQdxShader::FindSampler(const char* name) const
{
    return FindName(Samplers, name);
}

void TQdxShader::SetFragmentConstant(int index, const float* value)
{
    ASSERT_TEXT(FragmentProgram != nullptr, "FragmentProgram != 0");
    // A constant may have no patch list where nothing uses it.
    if (index < 0 || index >= FragmentParameters.size())
        return;
    for (uint16_t ref : FragmentParameters[index])
        FragmentProgram->SetConstant(ref, value);
}

void TQdxShader::SetVertexStream(int attribute, TVertexStream* buffer, int offset)
{
    ASSERT(attribute >= 0 && attribute < NumVertexStreams);
    VertexStreams[attribute].Buffer = buffer;
    VertexStreams[attribute].Offset = offset;
}

void TQdxShader::SetTexture(int index, const TRenderTextureInstance* texture)
{
    ASSERT(index >= 0 && index < NumTextures);
    Textures[index] = texture;
}

void TQdxShader::ResetTextures()
{
    for (const TRenderTextureInstance*& texture : Textures)
        texture = nullptr;
}

namespace {

constexpr int ArrayOfFloats = TVertexStream::TypeFloat;

// Streams advance per item where the driver can do so by itself.
bool CanDrawInstances()
{
    return !TVertexStream::HasSoftwareVertices() && GetGraphicsDevice()->CanDrawInstances();
}

// The same four floats for all vertices. The first attribute must be an array for anything to be drawn, so it
// is one whose item never changes.
void PointAtValue(unsigned attribute, const float* value)
{
    if (attribute != 0) {
        GetGraphicsDevice()->SetAttributeValue(attribute, value);
        return;
    }
    TVertexArray array;
    array.Values = reinterpret_cast<const uint8_t*>(value);
    array.Size = 4;
    array.Type = ArrayOfFloats;
    array.Advance = TVertexArray::Never;
    GetGraphicsDevice()->SetAttributeArray(0, array);
}

void PointAtStream(unsigned attribute, const TQdxShader::TStreamSlot& slot, int firstItem, bool perVertex)
{
    TVertexStream& stream = *slot.Buffer;
    const TVertexStream::TElement& element = stream.GetElementAt(slot.Offset);
    const TVertexStream::TPosition place = stream.GetPosition();
    const size_t item =
        perVertex ? 0 : static_cast<size_t>(firstItem) * static_cast<size_t>(stream.GetStride());
    TVertexArray array;
    array.Buffer = place.Buffer;
    // Within a buffer the place is a number, and its base nothing that could be pointed from.
    array.Values = reinterpret_cast<const uint8_t*>(reinterpret_cast<uintptr_t>(place.Base) + item +
                                                    static_cast<size_t>(slot.Offset));
    array.Size = element.Size;
    array.Type = element.Type;
    array.Normalised = element.Normalised;
    array.Stride = stream.GetStride();
    array.Advance = perVertex ? TVertexArray::PerVertex : TVertexArray::PerItem;
    GetGraphicsDevice()->SetAttributeArray(attribute, array);
}

void PointAtFloats(unsigned attribute, const vector<float>& floats, int size)
{
    TVertexArray array;
    array.Values = reinterpret_cast<const uint8_t*>(floats.data());
    array.Size = size;
    array.Type = ArrayOfFloats;
    GetGraphicsDevice()->SetAttributeArray(attribute, array);
}

// What the driver would read for each vertex, one after the other.
void ExpandStream(const TQdxShader::TStreamSlot& slot, int firstItem, int numItems, bool perVertex,
                  int perItem, vector<float>& result)
{
    const TVertexStream& stream = *slot.Buffer;
    const int size = stream.GetElementAt(slot.Offset).Size;
    const uint8_t* data = static_cast<const uint8_t*>(stream.GetData()) + slot.Offset;
    result.resize(numItems * perItem * size);
    float* out = result.data();
    for (int i = 0; i < numItems; ++i) {
        for (int v = 0; v < perItem; ++v) {
            const size_t item = static_cast<size_t>(perVertex ? v : firstItem + i);
            memcpy(out, data + item * static_cast<size_t>(stream.GetStride()),
                   static_cast<size_t>(size) * sizeof(float));
            out += size;
        }
    }
}

void ExpandValue(const float* value, int numVertices, vector<float>& result)
{
    result.resize(4 * numVertices);
    for (int i = 0; i < 4 * numVertices; ++i)
        result.data()[i] = value[i % 4];
}

} // namespace

void TQdxShader::SetConstant(int index, const float* value)
{
    if (IsFragmentProgram()) {
        SetFragmentConstant(index, value);
        return;
    }
    if (index < 0 || index >= Constants.size())
        return;
    const vector<uint16_t>& slots = Constants[index].Slots;
    for (int i = 0; i < slots.size(); ++i)
        VertexProgram->SetConstant(slots[i], value + 4 * i);
}

void TQdxShader::SetVertexValue(int attribute, const float* value, int count)
{
    ASSERT(attribute >= 0 && attribute < NumVertexStreams);
    TStreamSlot slot;
    for (int i = 0; i < count; ++i)
        slot.Value[i] = value[i];
    VertexStreams[attribute] = slot;
}

bool TQdxShader::Bind()
{
    if (GetGraphicsDevice() == nullptr)
        return false;
    if (IsFragmentProgram())
        return FragmentProgram->Bind(Textures);
    if (!VertexProgram->Bind())
        return false;
    // Another shader of the same instructions may have left its own.
    for (const TDefaultConstant& constant : DefaultConstants)
        VertexProgram->SetConstant(static_cast<int>(constant.Slot), constant.Value);
    return true;
}

void TQdxShader::Unbind()
{
    ResetTextures();
    for (TStreamSlot& slot : VertexStreams)
        slot = TStreamSlot();
    if (GetGraphicsDevice() != nullptr)
        GetGraphicsDevice()->DisableProgram(IsFragmentProgram() ? AT_FRAGMENT : AT_VERTEX);
}

void TQdxShader::Draw(int primitive, int first, int count, uint16_t perVertex, int perItem)
{
    ASSERT_TEXT(!IsFragmentProgram(), "!IsFragmentProgram()");
    if (count <= 0 || perItem <= 0 || GetGraphicsDevice() == nullptr)
        return;
    if (CanDrawInstances())
        DrawInstances(primitive, first / perItem, count / perItem, perVertex, perItem);
    else
        DrawExpanded(primitive, first / perItem, count / perItem, perVertex, perItem);
    GetGraphicsDevice()->ResetAttributes(NumVertexStreams);
}

void TQdxShader::DrawInstances(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem)
{
    for (unsigned a = 0; a < NumVertexStreams; ++a) {
        if (VertexStreams[a].Buffer != nullptr)
            PointAtStream(a, VertexStreams[a], firstItem, (perVertex >> a & 1) != 0);
        else
            PointAtValue(a, VertexStreams[a].Value);
    }
    GetGraphicsDevice()->DrawInstances(primitive, perItem, numItems);
}

void TQdxShader::DrawExpanded(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem)
{
    vector<float> arrays[NumVertexStreams];
    for (unsigned a = 0; a < NumVertexStreams; ++a) {
        const TStreamSlot& slot = VertexStreams[a];
        if (slot.Buffer == nullptr && a != 0) {
            GetGraphicsDevice()->SetAttributeValue(a, slot.Value);
            continue;
        }
        int size = 4;
        if (slot.Buffer != nullptr) {
            ExpandStream(slot, firstItem, numItems, (perVertex >> a & 1) != 0, perItem, arrays[a]);
            size = slot.Buffer->GetElementAt(slot.Offset).Size;
        } else {
            ExpandValue(slot.Value, numItems * perItem, arrays[a]);
        }
        PointAtFloats(a, arrays[a], size);
    }
    GetGraphicsDevice()->Draw(primitive, numItems * perItem);
}
