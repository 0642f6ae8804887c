#include "commandsfixture.h"

#include "library/containers/append.h"
#include "library/system/files/chunkfile.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/clipboardeffect.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

// What goes to the clipboard can be read again, and what comes from there is refused before it takes much.
class ClipboardEffect : public Commands
{
protected:
    // Of one type, which is changed for each.
    template <class TChange>
    void Copy(int count, const TChange& change)
    {
        TOwnerList<TToolNode> nodes;
        for (int i = 0; i < count; ++i) {
            nodes.push_back(new TToolNode);
            nodes[i]->Create(nullptr, App.Type("Age"), i, 0, false);
            change(*nodes[i]->GetNodeType(), i);
        }
        Copied.Copy(nodes.Get());
        WriteClipboardEffect(Copied, Effect, Text);
    }
    std::string FaultOf(const vector<uint8_t>& effect)
    {
        TString fault;
        return ReadClipboardEffect(effect, App.Get().GetNodeTypes(), Read, fault) ? "" : fault.Print();
    }
    std::string FaultOfText()
    {
        TString fault;
        return ReadClipboardText(Text.Print(), App.Get().GetNodeTypes(), Read, fault) ? "" : fault.Print();
    }

    TClipboard Copied;
    TClipboard Read;
    vector<uint8_t> Effect;
    TString Text;
};

} // namespace

TEST_F(ClipboardEffect, OnlyATextThatCanBeReadIsWritten)
{
    const auto describe = [](TNodeType& type, int i) { type.Description = std::to_string(i).c_str(); };
    Copy(TEffectTextReader::MaxTypes, describe);
    EXPECT_EQ(FaultOfText(), "");
    Copy(TEffectTextReader::MaxTypes + 1, describe);
    EXPECT_TRUE(Text.IsEmpty());
    EXPECT_EQ(FaultOf(Effect), "");
    const auto add = [](int count) {
        return [count](TNodeType& type, int) {
            auto* choice = static_cast<TNodeEnumParameter*>(CreateNodeParameter(PK_ENUM));
            choice->Name = "Choice";
            for (int i = 0; i < count; ++i)
                choice->AddEntry(TNodeEnumParameter::TEntry{std::to_string(i).c_str(), i});
            Append(type.Parameters, static_cast<TNodeParameter*>(choice));
        };
    };
    Copy(1, add(TNodeType::MaxPorts));
    EXPECT_EQ(FaultOfText(), "");
    Copy(1, add(TNodeType::MaxPorts + 1));
    EXPECT_TRUE(Text.IsEmpty());
    EXPECT_EQ(FaultOf(Effect), "");
    // Each node has a copy of the type's lines.
    Copy(2100, add(1000));
    EXPECT_TRUE(Text.IsEmpty());
}

TEST_F(ClipboardEffect, AnEffectOfTooManyNodesIsNeitherWrittenNorRead)
{
    const auto keep = [](TNodeType& type, int) { type.Description = nullptr; };
    Copy(TEffectTextReader::MaxNodes, keep);
    EXPECT_EQ(FaultOf(Effect), "");
    Copy(TEffectTextReader::MaxNodes + 1, keep);
    EXPECT_TRUE(Effect.empty());
    EXPECT_TRUE(Text.IsEmpty());
    TChunkFile chunks;
    chunks.AddChunk(new TOperationStack);
    TEffectGraph* graph = new TEffectGraph;
    chunks.AddChunk(graph);
    vector<TEffectNode*> nodes;
    for (const TToolNode* source : Copied.GetNodes()) {
        TToolNode* node = new TToolNode;
        node->Create(nullptr, *source->GetNodeType(), source->GetX(), source->GetY(), false);
        node->RegisterChunks(chunks);
        Append(nodes, static_cast<TEffectNode*>(node));
    }
    graph->AddNodes(nodes);
    ASSERT_TRUE(chunks.SaveToMemory(Effect, 0));
    EXPECT_EQ(FaultOf(Effect), "There are 16385 nodes in it; the most are 16384");
}

TEST_F(ClipboardEffect, AnEffectWithoutNodesIsNothingToPaste)
{
    TChunkFile chunks;
    chunks.AddChunk(new TOperationStack);
    chunks.AddChunk(new TEffectGraph);
    ASSERT_TRUE(chunks.SaveToMemory(Effect, 0));
    EXPECT_EQ(FaultOf(Effect), "There are no nodes in it");
}

TEST_F(ClipboardEffect, AFileOfManyObjectsOrBytesIsRefusedAtOnce)
{
    constexpr int Count = 1 << 20;
    vector<uint8_t> effect;
    for (const char c : {'C', 'H', 'N', 'K'})
        Append(effect, static_cast<uint8_t>(c));
    for (int shift = 0; shift < 32; shift += 8)
        Append(effect, static_cast<uint8_t>(Count >> shift));
    effect.resize(8 + 12 * Count);
    EXPECT_EQ(FaultOf(effect), "Chunkfile holds more chunks than are taken here");
    effect.resize((16 << 20) + 1);
    EXPECT_EQ(FaultOf(effect), "The effect is larger than 16 MB");
}

TEST_F(ClipboardEffect, UnknownTypesOfAllNodesAreCounted)
{
    Copy(8000, [](TNodeType& type, int i) {
        type.Description = nullptr;
        type.Name = ("N" + std::to_string(i)).c_str();
        type.ClassName = "TUnknown";
    });
    const std::string fault = FaultOf(Effect);
    EXPECT_EQ(fault.find("The node types here have none for \"N0\" (TUnknown), \"N1\""), 0u) << fault;
    EXPECT_NE(fault.find("\"N7\" (TUnknown) and 7992 more"), std::string::npos) << fault;
}
