#include "particles/cindermill/graph/operations/operationfixture.h"
#include "particles/cindermill/graph/operations/operations.h"
#include "particles/effectgraph/effectgraphclasses.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/effectgraph/error.h"

#include <cstring>
#include <stdexcept>

TFakeDocument::TFakeDocument() : Graph(new TEffectGraph), Stack(new TOperationStack)
{
    RegisterEffectGraphClasses();
    RegisterOperations();
    Chunks.AddChunk(Stack);
    Chunks.AddChunk(Graph);
}

void TFakeDocument::GraphChanged()
{
    ++GraphChanges;
    Events.push_back("changed");
    Graph->GraphChanged();
}

TToolNode* TFakeDocument::AddNode(const char* label, const TNodeType& type, int x, int y)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*this, type, x, y);
    Label(op->GetNode(), label);
    Apply(op);
    return op->GetNode();
}

TToolEdge* TFakeDocument::Connect(const char* label, TToolNode* source, int sourcePort,
                                  TToolNode* destination, int destinationPort)
{
    TAddGraphEdgeOp* op = new TAddGraphEdgeOp(*this, source, sourcePort, destination, destinationPort);
    Label(op->GetEdge(), label);
    Apply(op);
    return op->GetEdge();
}

void TFakeDocument::Tell(const char* what, const void* object)
{
    Events.push_back(std::string(what) + " " + LabelOf(object));
}

std::string TFakeDocument::LabelOf(const void* object) const
{
    const auto it = Labels.find(object);
    return it == Labels.end() ? "?" : it->second;
}

std::string TFakeDocument::TakeEvents()
{
    std::string result;
    for (const std::string& event : Events)
        result += (result.empty() ? "" : ", ") + event;
    Events.clear();
    return result;
}

std::string TFakeDocument::NodesOf() const
{
    std::string result;
    for (int i = 0; i < Graph->GetNumNodes(); ++i)
        result += LabelOf(Graph->GetNode(i));
    return result;
}

std::string TFakeDocument::EdgesOf() const
{
    std::string result;
    for (int i = 0; i < Graph->GetNumEdges(); ++i)
        result += LabelOf(Graph->GetEdge(i));
    return result;
}

bool TFakeDocument::Holds(const TChunk* chunk)
{
    vector<TChunk*> chunks;
    Chunks.GetChunksOfClass(chunk->GetClassId(), chunks);
    return chunks.index_of(const_cast<TChunk*>(chunk)) != -1;
}

static uint32_t U32At(const std::string& bytes, size_t at)
{
    if (at + 4 > bytes.size())
        throw std::runtime_error("a chunk file that ends too early");
    uint32_t value = 0;
    for (size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<uint8_t>(bytes[at + i]);
    return value;
}

TChunkFileBytes TChunkFileBytes::Parse(const std::string& bytes)
{
    TChunkFileBytes result;
    result.Entries.resize(U32At(bytes, 4));
    size_t body = 8 + 12 * result.Entries.size();
    size_t at = 8;
    for (TEntry& entry : result.Entries) {
        entry.NameID = U32At(bytes, at);
        entry.Version = U32At(bytes, at + 8);
        entry.Body = bytes.substr(body, U32At(bytes, at + 4));
        body += entry.Body.size();
        at += 12;
    }
    if (body != bytes.size())
        throw std::runtime_error("a chunk file of another size");
    return result;
}

std::string TChunkFileBytes::Join() const
{
    std::string bytes = "CHNK" + I32(static_cast<int>(Entries.size()));
    for (const TEntry& entry : Entries)
        bytes += I32(static_cast<int>(entry.NameID)) + I32(static_cast<int>(entry.Body.size())) +
                 I32(static_cast<int>(entry.Version));
    for (const TEntry& entry : Entries)
        bytes += entry.Body;
    return bytes;
}

TChunkFileBytes SavedFile(TChunkFile& chunks)
{
    const TTempFolder folder;
    const std::string path = folder.Path("saved");
    if (!chunks.Save(path.c_str()))
        throw std::runtime_error("a chunk file cannot be saved");
    return TChunkFileBytes::Parse(ReadBytes(path));
}

TChunkFileBytes::TEntry SavedChunk(TChunkFile& chunks, const TChunk* chunk)
{
    return SavedFile(chunks).Entries[static_cast<size_t>(chunk->ChunkIdx)];
}

std::string I32(int value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(static_cast<uint32_t>(value) >> (8 * i));
    return bytes;
}

std::string F32(float value)
{
    int bits;
    std::memcpy(&bits, &value, 4);
    return I32(bits);
}

std::string Ref(const TChunk* chunk)
{
    return I32(chunk == nullptr ? -1 : chunk->ChunkIdx);
}

std::string U8(int value)
{
    return std::string(1, static_cast<char>(value));
}

std::string Padded(const std::string& text)
{
    std::string bytes = text;
    do
        bytes += '\0';
    while (bytes.size() % 4 != 0);
    return bytes;
}

std::unique_ptr<TNodeType> ParseType(const std::string& xml)
{
    const TTempFolder folder;
    WriteBytes(folder.Path("type.xml"), xml);
    auto type = std::make_unique<TNodeType>();
    TErrorList errors;
    if (!type->LoadXml(folder.Path("type.xml").c_str(), errors)) {
        TString text;
        (*errors.begin())->GetText(text);
        throw std::runtime_error(Text(text));
    }
    return type;
}

const TNodeType& GetPlainType()
{
    static const std::unique_ptr<TNodeType> type =
        ParseType("<node><name>Plain</name><type>process</type><bypassable/><colour>red</colour>"
                  "<inputs><Scalar><name>In</name></Scalar><Scalar><name>Other</name></Scalar></inputs>"
                  "<outputs><Scalar><name>Out</name></Scalar></outputs><code><classname>TNothing</"
                  "classname></code></node>");
    return *type;
}

const TNodeType& GetPolytypeType()
{
    static const std::unique_ptr<TNodeType> type = ParseType(
        "<node><name>Poly</name><type>process</type><colour>blue</colour><inputs>"
        "<Polytype><name>A</name><validtypes><scalar></scalar><vector3></vector3></validtypes></Polytype>"
        "<Polytype><name>B</name><linkinput>A</linkinput><validtypes><scalar></scalar><vector3></vector3>"
        "</validtypes></Polytype><Scalar><name>C</name></Scalar></inputs><outputs>"
        "<Polytype><name>Out</name><linkinput>A</linkinput><validtypes><Scalar/><Vector3/></validtypes></"
        "Polytype>"
        "<Polytype><name>Copy</name><linkoutput>Out</linkoutput><validtypes><Scalar/><Vector3/></validtypes>"
        "</Polytype></outputs><code><classname>TNothing</classname></code></node>");
    return *type;
}

const TNodeType& GetEveryType()
{
    static const std::unique_ptr<TNodeType> type = ParseType(
        "<node><name>Every</name><type>process</type><colour>green</colour><parameters>"
        "<Scalar><name>Scalar</name><defaultvalue>1</defaultvalue></Scalar>"
        "<Scalar><name>Scalar2</name></Scalar>"
        "<Scale><name>Scale</name></Scale>"
        "<Vector3><name>Vector3</name></Vector3>"
        "<Vector3><name>Vector32</name></Vector3>"
        "<Quaternion><name>Quaternion</name></Quaternion>"
        "<Colour><name>Colour</name></Colour>"
        "<Transform><name>Transform</name></Transform>"
        "<TextureCoords><name>TextureCoords</name></TextureCoords>"
        "<Bool><name>Bool</name></Bool>"
        "<Enum><name>Enum</name><value>One=10</value><value>Two=20</value><value>Three=30</value></Enum>"
        "<Int><name>Int</name><defaultvalue>5</defaultvalue></Int>"
        "<Int><name>Int2</name></Int>"
        "<Texture><name>Texture</name></Texture>"
        "<Ramp><name>Ramp</name><type>vector3</type>"
        "<defaultvalues>{0,0},{1,1}</defaultvalues><defaultvalues>{0,2},{1,3}</defaultvalues></Ramp>"
        "<Group><name>Group</name><parameters><Int><name>Inner</name></Int></parameters></Group>"
        "<Animation><name>Animation</name></Animation>"
        "<Colour><name>Colour2</name></Colour>"
        "</parameters><code><classname>TNothing</classname></code></node>");
    return *type;
}
