#include "commandsfixture.h"
#include "support/fakeexchange.h"
#include "support/randomgraph.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/main/clipboardeffect.h"
#include "particles/cindermill/main/sharedclipboard.h"

namespace {

std::string TextOf(const TEffectGraph& graph)
{
    TTextBuffer text;
    TEffectText(graph).Write(text);
    return text.Print();
}

// The nodes of a clipboard, as text.
std::string TextOf(const TClipboard& clipboard)
{
    vector<uint8_t> effect;
    TString text;
    WriteClipboardEffect(clipboard, effect, text);
    EXPECT_FALSE(effect.empty());
    return text.Print();
}

// The program under test, whose clipboard is the desktop's, and a second one, of which there is the
// clipboard.
class SharedClipboard : public Commands
{
protected:
    SharedClipboard() : Exchange(Desktop), OtherExchange(Desktop), Other(App.Get().GetNodeTypes())
    {
        App.Get().GetSharedClipboard().SetExchange(&Exchange);
        Other.SetExchange(&OtherExchange);
    }
    ~SharedClipboard() override { App.Get().GetSharedClipboard().SetExchange(nullptr); }

    // An emitter that feeds a point emitter; both are copied by the other program.
    void CopyElsewhere()
    {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        vector<TToolNode*> nodes;
        nodes.push_back(Add(document, "Emitter"));
        nodes.push_back(Add(document, "Point Emitter"));
        document.ApplyOperation(new TAddGraphEdgeOp(document, nodes[0], 0, nodes[1], 0));
        Other.Copy(nodes);
        Copied = nodes.size();
    }
    static void SelectAll(TDocument& document)
    {
        document.ClearSelection();
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
            document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(i)), false);
    }
    // Nothing of it may be done.
    void ExpectRefused(TDocument& document, const std::string& message)
    {
        const std::string before = TextOf(*document.GetGraph());
        const int steps = document.GetOperationStack()->GetNumOperations();
        Shown.Messages.clear();
        document.Paste();
        EXPECT_EQ(Shown.Messages, TNames{"The nodes on the clipboard cannot be pasted. " + message});
        EXPECT_EQ(TextOf(*document.GetGraph()), before);
        EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), steps);
    }

    TFakeDesktop Desktop;
    TFakeExchange Exchange;
    TFakeExchange OtherExchange;
    TSharedClipboard Other;
    int Copied = 0;
};

} // namespace

TEST_F(SharedClipboard, ACopyGoesToTheDesktopAsAnEffectAndAsItsText)
{
    TDocument& document = New();
    Add(document, "Emitter");
    Add(document, "Gravity");
    SelectAll(document);
    document.CopySelection();
    EXPECT_EQ(Desktop.Text, TextOf(*document.GetGraph()));
    // A file like any that the program writes.
    WriteBytes(Path("copied.effect"), std::string(Desktop.Effect.begin(), Desktop.Effect.end()));
    TDocument opened(App.Get());
    ASSERT_TRUE(opened.Load(Path("copied.effect").c_str()));
    EXPECT_EQ(TextOf(*opened.GetGraph()), Desktop.Text);
}

TEST_F(SharedClipboard, WhatAnotherProgramCopiedIsPastedByTheSameRules)
{
    for (const bool asText : {false, true}) {
        SCOPED_TRACE(asText);
        CopyElsewhere();
        if (asText)
            Desktop.Put(Desktop.Text);
        TDocument& document = New();
        TToolNode* there = Add(document, "Age");
        document.SelectNode(there, true);
        const int steps = document.GetOperationStack()->GetNumOperations();
        App.Get().OnMenu(MI_PASTE);
        ASSERT_EQ(document.GetSelection().size(), Copied);
        EXPECT_FALSE(there->IsSelected());
        EXPECT_EQ(document.GetGraph()->GetNumEdges(), 1);
        EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), steps + 1);
        const int x = document.GetSelection()[0]->GetX();
        const int y = document.GetSelection()[0]->GetY();
        App.Get().OnMenu(MI_PASTE);
        ASSERT_EQ(document.GetGraph()->GetNumNodes(), 1 + 2 * Copied);
        EXPECT_EQ(document.GetSelection()[0]->GetX(), x + 10);
        EXPECT_EQ(document.GetSelection()[0]->GetY(), y + 10);
        App.Get().OnMenu(MI_UNDO);
        App.Get().OnMenu(MI_UNDO);
        EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
        EXPECT_EQ(document.GetGraph()->GetNumEdges(), 0);
        EXPECT_EQ(Shown.Messages, TNames{});
    }
}

TEST_F(SharedClipboard, WhatWasCopiedLastIsPastedByWhomeverItWas)
{
    TDocument& document = New();
    document.SelectNode(Add(document, "Age"), true);
    document.CopySelection();
    CopyElsewhere();
    document.Paste();
    EXPECT_EQ(document.GetSelection().size(), Copied);
    document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(0)), true);
    document.CopySelection();
    document.Paste();
    ASSERT_EQ(document.GetSelection().size(), 1);
    EXPECT_STREQ(document.GetSelection()[0]->GetNodeType()->Name.Print(), "Age");
}

TEST_F(SharedClipboard, CopiedTextAndFileGiveTheGraphOfTheProgramsOwnClipboard)
{
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument source(App.Get());
        ASSERT_TRUE(source.New());
        TDice dice(seed);
        TRandomGraph(App.Get(), source, dice).Build(50);
        // Some of the nodes, in an order of their own.
        source.ClearSelection();
        for (int i = source.GetGraph()->GetNumNodes() - 1; i >= 0; --i)
            if (seed % 4 == 0 || dice.Below(3) != 0)
                source.SelectNode(static_cast<TToolNode*>(source.GetGraph()->GetNode(i)), false);
        if (source.GetSelection().empty())
            continue;
        Other.Copy(source.GetSelection());
        const std::string copied = TextOf(Other.GetClipboard());
        EXPECT_EQ(Desktop.Text, copied);
        const vector<uint8_t> effect = Desktop.Effect;
        std::string pasted[3];
        for (int way = 0; way < 3; ++way) {
            if (way == 0)
                Exchange.Offer(effect, copied.c_str());
            else if (way == 1)
                Desktop.Put(copied);
            else
                Other.Copy(source.GetSelection());
            TSharedClipboard taken(App.Get().GetNodeTypes());
            TFakeExchange exchange(Desktop);
            taken.SetExchange(&exchange);
            ASSERT_EQ(taken.Fetch(), PS_READY) << taken.GetFault().Print();
            EXPECT_EQ(TextOf(taken.GetClipboard()), copied) << way;
            App.Get().GetSharedClipboard().GetClipboard().Clear();
            TDocument target(App.Get());
            ASSERT_TRUE(target.New());
            target.Paste();
            pasted[way] = TextOf(*target.GetGraph());
        }
        EXPECT_EQ(pasted[1], pasted[2]);
        EXPECT_EQ(Shown.Messages, TNames{});
    }
}

TEST_F(SharedClipboard, WhatIsNoneOfOursPastesNothingAndSaysSo)
{
    TDocument& document = New();
    for (const char* text : {"1, 2, 3", "see the cindermill effect 1 below"}) {
        Desktop.Put(text);
        Host.Statuses.clear();
        App.Get().OnMenu(MI_PASTE);
        EXPECT_EQ(Host.Statuses, TNames{"The clipboard holds no nodes"});
    }
    EXPECT_EQ(Shown.Messages, TNames{});
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    EXPECT_FALSE(document.IsModified());
}

// On X the clipboard goes with its program, unless somebody keeps it.
TEST_F(SharedClipboard, WhatWasPastedOnceIsAtHandWhenItsProgramHasEnded)
{
    TDocument& document = New();
    EXPECT_FALSE(App.Get().GetSharedClipboard().HasNodes());
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(Host.Statuses, TNames{"No nodes were copied"});
    CopyElsewhere();
    App.Get().OnMenu(MI_PASTE);
    Desktop.Lose();
    EXPECT_TRUE(App.Get().GetSharedClipboard().HasNodes());
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2 * Copied);
}

TEST_F(SharedClipboard, ATextThatBeginsLikeAnEffectsIsToldOfWithItsLine)
{
    CopyElsewhere();
    TDocument& document = New();
    Add(document, "Age");
    std::string text = Desktop.Text;
    const size_t at = text.find("category: ");
    ASSERT_NE(at, std::string::npos);
    const std::ptrdiff_t line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    text.replace(at, 8, "kategory");
    Desktop.Put(text);
    EXPECT_TRUE(App.Get().GetSharedClipboard().HasNodes());
    const std::string shown = text.substr(at - 2, text.find('\n', at) - at + 2);
    ExpectRefused(document, "Line " + std::to_string(line) + ": No node type has this: " + shown);
}

TEST_F(SharedClipboard, TypesThatTheLibraryDoesNotHaveAreNamed)
{
    TDocument& document = New();
    vector<TToolNode*> nodes;
    TDocument other(App.Get());
    ASSERT_TRUE(other.New());
    nodes.push_back(Add(other, "Emitter"));
    nodes[0]->GetNodeType()->Name = "Fountain";
    nodes[0]->GetNodeType()->ClassName = "TFountain";
    nodes.push_back(Add(other, "Age"));
    nodes[1]->GetNodeType()->Name = "My own age";
    Other.Copy(nodes);
    const std::string message = "The node types here have none for \"Fountain\" (TFountain)";
    ExpectRefused(document, message);
    Desktop.Put(Desktop.Text);
    ExpectRefused(document, message);
}

TEST_F(SharedClipboard, WiresInACircleAreRefused)
{
    TDocument source(App.Get());
    ASSERT_TRUE(source.New());
    vector<TToolNode*> nodes;
    nodes.push_back(Add(source, "Add"));
    nodes.push_back(Add(source, "Add"));
    source.ApplyOperation(new TAddGraphEdgeOp(source, nodes[0], 0, nodes[1], 0));
    nodes[1]->SetPosition(500, 0);
    Other.Copy(nodes);
    std::string text = Desktop.Text;
    const size_t from = text.find(" from: \"");
    ASSERT_NE(from, std::string::npos);
    const size_t begin = text.rfind('\n', from) + 1;
    std::string line = text.substr(begin, text.find('\n', from) + 1 - begin);
    const size_t target = line.find("from: \"Add\"") + std::strlen("from: \"Add\"");
    const bool first = line[target] != '#';
    line = first ? line.insert(target, "#2") : line.erase(target, 2);
    // The last line of the other node.
    const size_t behind = first ? text.find("\n\n", text.find("\nnode \"Add\"\n") + 1) + 1
                                : text.find("\n\n", text.find("\nnode \"Add\"#2\n") + 1) + 1;
    Desktop.Put(text.insert(behind, line));
    ExpectRefused(New(), "The edges of the graph run in a circle");
}

TEST_F(SharedClipboard, ADamagedEffectIsRefusedOrTakenWhole)
{
    CopyElsewhere();
    const vector<uint8_t> whole = Desktop.Effect;
    TDocument& document = New();
    TDice dice(5);
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
        vector<uint8_t> damaged = whole;
        if (round < 100)
            damaged.resize(static_cast<int>(dice.Below(static_cast<uint32_t>(whole.size()))));
        else
            for (uint32_t n = 0; n <= dice.Below(4); ++n)
                damaged[static_cast<int>(dice.Below(static_cast<uint32_t>(whole.size())))] ^=
                    static_cast<uint8_t>(1u << dice.Below(8));
        if (damaged.empty())
            continue;
        Desktop.Put("");
        Desktop.Effect = damaged;
        Shown.Messages.clear();
        const int before = document.GetGraph()->GetNumNodes();
        const TPasteState state = App.Get().GetSharedClipboard().Fetch();
        EXPECT_NE(state, PS_NOTHING);
        if (state == PS_REFUSED) {
            ++refused;
            EXPECT_FALSE(App.Get().GetSharedClipboard().GetFault().IsEmpty());
        }
        EXPECT_EQ(document.GetGraph()->GetNumNodes(), before);
    }
    EXPECT_GT(refused, 100);
}

TEST_F(SharedClipboard, ARefusedTextLeavesWhatWasTakenBefore)
{
    CopyElsewhere();
    TDocument& document = New();
    document.Paste();
    const std::string whole = Desktop.Text;
    Desktop.Put(whole.substr(0, whole.size() / 2));
    Shown.Messages.clear();
    document.Paste();
    EXPECT_EQ(Shown.Messages.size(), 1u);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), Copied);
    Desktop.Put(whole);
    document.Paste();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2 * Copied);
}

TEST_F(SharedClipboard, OnlyAPasteAsksWhoeverHasTheClipboard)
{
    CopyElsewhere();
    TDocument& document = New();
    document.SelectNode(Add(document, "Age"), true);
    for (const int id : {MI_UNDO, MI_REDO, MI_COPY, MI_CUT, MI_DELETE, MI_FOCUSALL})
        App.Get().GetIdleReason(id);
    EXPECT_EQ(Exchange.Questions, 0);
    EXPECT_EQ(App.Get().GetIdleReason(MI_PASTE), nullptr);
    EXPECT_EQ(Exchange.Questions, 1);
    // Who was slow to answer is not asked again for the sake of a menu.
    Exchange.Slow = true;
    EXPECT_EQ(App.Get().GetIdleReason(MI_PASTE), nullptr);
    EXPECT_EQ(Exchange.Questions, 2);
    EXPECT_EQ(App.Get().GetIdleReason(MI_PASTE), nullptr);
    EXPECT_EQ(Exchange.Questions, 2);
}

// A text may be of any size; that there is one is enough for a menu.
TEST_F(SharedClipboard, AMenuFetchesNoText)
{
    New();
    for (const char* text : {"1, 2, 3", "cindermill effect 1"}) {
        Desktop.Put(text);
        EXPECT_TRUE(App.Get().GetSharedClipboard().HasNodes());
    }
    EXPECT_EQ(Exchange.TextsFetched, 0);
    Desktop.Put("");
    EXPECT_FALSE(App.Get().GetSharedClipboard().HasNodes());
}

// As is what Copy Value or a field put there.
TEST_F(SharedClipboard, WhereTheDesktopHasNoNodesThoseCopiedHereArePasted)
{
    TDocument& document = New();
    document.SelectNode(Add(document, "Age"), true);
    App.Get().OnMenu(MI_COPY);
    Desktop.Put("1, 2, 3");
    EXPECT_EQ(App.Get().GetIdleReason(MI_PASTE), nullptr);
    App.Get().OnMenu(MI_PASTE);
    ASSERT_EQ(document.GetGraph()->GetNumNodes(), 2);
    EXPECT_STREQ(document.GetSelection()[0]->GetNodeType()->Name.Print(), "Age");
    // What claims to be nodes is what was meant.
    Desktop.Put("cindermill effect 1\n");
    ExpectRefused(document, "The text ends at line 1 without its section \"order\"");
}

TEST_F(SharedClipboard, WhoDoesNotAnswerIsAskedOnceByAPaste)
{
    CopyElsewhere();
    TDocument& document = New();
    Exchange.Slow = true;
    Exchange.Silent = true;
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(Host.Statuses, TNames{"The program that has the clipboard does not answer"});
    EXPECT_EQ(Exchange.Questions, 1);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    Exchange.Slow = false;
    Exchange.Silent = false;
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), Copied);
}

TEST_F(SharedClipboard, WhoDoesNotGiveWhatItHasIsNotAskedForAnotherFormOfIt)
{
    CopyElsewhere();
    TDocument& document = New();
    Exchange.Slow = true;
    Exchange.Withholds = true;
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(Host.Statuses, TNames{"The program that has the clipboard does not answer"});
    EXPECT_EQ(Exchange.Questions, 2);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(SharedClipboard, WhatComesLateIsPasted)
{
    CopyElsewhere();
    TDocument& document = New();
    Exchange.Slow = true;
    App.Get().OnMenu(MI_PASTE);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), Copied);
}

TEST_F(SharedClipboard, ATypeIsKnownByItsClass)
{
    TDocument other(App.Get());
    ASSERT_TRUE(other.New());
    vector<TToolNode*> nodes;
    nodes.push_back(Add(other, "Age"));
    nodes[0]->GetNodeType()->ClassName = "TOldAge";
    Other.Copy(nodes);
    ExpectRefused(New(), "The node types here have none for \"Age\" (TOldAge)");
}

// A text from elsewhere must not make a document that cannot be kept.
TEST_F(SharedClipboard, WhatWasPastedCanBeSaved)
{
    CopyElsewhere();
    const std::string text = Desktop.Text;
    const auto name = [&](size_t length) {
        std::string named = text;
        const std::string old = "\"Point Emitter\"";
        for (size_t at = 0; (at = named.find(old, at)) != std::string::npos; at += length + 2)
            named.replace(at, old.size(), "\"" + std::string(length, 'Q') + "\"");
        Desktop.Put(named);
    };
    TDocument& document = New();
    name(4096);
    Shown.Messages.clear();
    document.Paste();
    EXPECT_EQ(Shown.Messages.size(), 1u);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    name(4095);
    document.Paste();
    ASSERT_EQ(document.GetGraph()->GetNumNodes(), Copied);
    ASSERT_TRUE(document.SaveAs(Path("pasted.effect").c_str()));
    TDocument opened(App.Get());
    EXPECT_TRUE(opened.Load(Path("pasted.effect").c_str()));
}
