#include "support/fakehost.h"
#include "support/randomgraph.h"
#include "support/testapp.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/effectgraph/graphcheck.h"

#include <algorithm>
#include <filesystem>
#include <functional>

// A document whose node types are not those of the library: what a refresh, a save and a load make of it.

namespace {

TNames Messages;
TNames Questions;

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::vector<std::string> LinesOf(const TErrorList& errors)
{
    std::vector<std::string> lines;
    for (const TError* error : errors)
        lines.push_back(Text(error->GetMessage()));
    return lines;
}

int CountFiles(const std::string& path)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()))
        count += entry.is_regular_file() ? 1 : 0;
    return count;
}

class ChangedTypes : public testing::Test
{
protected:
    ChangedTypes()
    {
        Messages.clear();
        Questions.clear();
        SetMessageForms([](const char* text) { Messages.push_back(text); },
                        [](const char* text) {
                            Questions.push_back(text);
                            return true;
                        });
    }
    ~ChangedTypes() override { SetMessageForms(nullptr, nullptr); }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }
    // The type of a file of the library, with its text changed.
    std::unique_ptr<TNodeType> OldType(const std::string& file,
                                       const std::function<std::string(const std::string&)>& change)
    {
        WriteBytes(Path("old.xml"), change(ReadBytes(SourcePath("NodeTypes/" + file))));
        auto type = std::make_unique<TNodeType>();
        TErrorList errors;
        if (!type->LoadXml(Path("old.xml").c_str(), errors))
            throw std::runtime_error(LinesOf(errors).at(0));
        return type;
    }
    // Random Value of before its port "Bottom" was renamed to "Low", as were the links to it.
    std::unique_ptr<TNodeType> OldRandomValue()
    {
        return OldType("Emission/RandomValue.xml",
                       [](const std::string& text) { return Replaced(text, ">Low<", ">Bottom<"); });
    }
    TToolNode* Add(TDocument& document, const TNodeType& type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, 0, 0);
        document.ApplyOperation(op);
        return op->GetNode();
    }
    TToolNode* Add(TDocument& document, const char* type) { return Add(document, App.Type(type)); }
    TToolEdge* Connect(TDocument& document, TToolNode* source, const char* output, TToolNode* destination,
                       const char* input)
    {
        TAddGraphEdgeOp* op = new TAddGraphEdgeOp(document, source, source->GetNodeType()->FindOutput(output),
                                                  destination, destination->GetNodeType()->FindInput(input));
        document.ApplyOperation(op);
        return op->GetEdge();
    }
    static TNodePolytypeParameter* Polytype(const TEffectNode* node, const char* input)
    {
        TNodeParameter* parameter = node->GetNodeType()->GetInput(node->GetNodeType()->FindInput(input));
        return static_cast<TNodePolytypeParameter*>(parameter);
    }
    static const TEffectNode* FindNode(TDocument& document, const char* type)
    {
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
            if (document.GetGraph()->GetNode(i)->GetNodeType()->Name.Compare(type) == 0)
                return document.GetGraph()->GetNode(i);
        throw std::runtime_error(std::string("no node ") + type);
    }
    std::string FaultOf(TDocument& document)
    {
        TString fault;
        return CheckGraph(*document.GetGraph(), fault) ? "" : Text(fault);
    }
    // Refreshes, saves and loads the file again: the second load may neither ask nor tell anything.
    void ExpectRefreshedForGood(const std::string& path)
    {
        {
            TDocument document(App.Get());
            ASSERT_TRUE(document.Load(path.c_str())) << document.GetLoadError().Print();
            ASSERT_EQ(Questions.size(), 1u);
            EXPECT_EQ(FaultOf(document), "");
            ASSERT_TRUE(document.Save()) << document.GetSaveError().Print();
        }
        TDocument again(App.Get());
        ASSERT_TRUE(again.Load(path.c_str())) << again.GetLoadError().Print();
        EXPECT_EQ(Questions.size(), 1u);
        EXPECT_FALSE(again.IsModified());
        EXPECT_TRUE(again.GetLoadNotes().empty());
    }

    TQuiet Quiet;
    mutable TTestApp App;
};

} // namespace

TEST_F(ChangedTypes, ARenamedPortAndTheLinksThatNameItSurviveRefreshSaveAndLoad)
{
    const float high[3] = {7, 8, 9};
    {
        TDocument document(App.Get());
        document.New();
        TToolNode* value = Add(document, *OldRandomValue());
        TToolNode* gravity = Add(document, "Gravity");
        document.ApplyOperation(new TPolytypeUserTypeOp(value, Polytype(value, "High"), TY_VECTOR3));
        auto* vector =
            static_cast<TNodeVector3Parameter*>(Polytype(value, "High")->GetValueParameter(TY_VECTOR3));
        document.ApplyOperation(new TVector3ParamOp(vector, high));
        Connect(document, value, "Value", gravity, "Acceleration");
        ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    }
    ExpectRefreshedForGood(Path("a.effect"));
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("a.effect").c_str()));
    const TEffectNode* value = FindNode(document, "Random Value");
    const TNodePolytypeParameter* kept = Polytype(value, "High");
    EXPECT_EQ(Text(kept->GetLinkInput()), "Low");
    EXPECT_EQ(kept->GetDefaultType(), TY_VECTOR3);
    float floats[3] = {};
    kept->GetValueParameter(TY_VECTOR3)->GetValue(floats);
    EXPECT_EQ(floats[0], 7);
    EXPECT_EQ(floats[2], 9);
    // Linked ports have one type.
    EXPECT_EQ(Polytype(value, "Low")->GetDefaultType(), TY_VECTOR3);
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 1);
    EXPECT_EQ(document.GetGraph()->GetEdge(0)->GetSrcNode(), value);
    EXPECT_EQ(Text(value->GetNodeType()->GetOutput(0).Name), "Value");
    EXPECT_EQ(value->GetNodeType()->GetOutput(0).LinkInput, value->GetNodeType()->FindInput("Low"));
}

TEST_F(ChangedTypes, AfterOneRefreshNothingAsksAgain)
{
    using TChange = void (*)(TNodeType&);
    const TChange changes[] = {
        [](TNodeType& type) { type.Inputs[0]->Description = "Old"; },
        [](TNodeType& type) { type.Inputs[0]->Required = !type.Inputs[0]->Required; },
        [](TNodeType& type) { type.Parameters[0]->Description = "Old"; },
        [](TNodeType& type) { type.GetOutput(0).Description = "Old"; },
        [](TNodeType& type) { type.Description = "Old"; },
        [](TNodeType& type) { type.Flags ^= FL_LASTHINT; },
    };
    for (const TChange change : changes) {
        Questions.clear();
        TDocument document(App.Get());
        document.New();
        const std::unique_ptr<TNodeType> old(App.Type("Emitter").Clone());
        change(*old);
        Add(document, *old);
        ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
        ExpectRefreshedForGood(Path("a.effect"));
    }
}

TEST_F(ChangedTypes, WhereOnlyWordsChangedTheWholeHistoryStays)
{
    const float rates[] = {3, 4};
    {
        TDocument document(App.Get());
        document.New();
        const std::unique_ptr<TNodeType> old(App.Type("Gravity").Clone());
        for (TNodeParameter* input : old->Inputs) {
            input->Description = "Old";
            input->Required = !input->Required;
        }
        TToolNode* value = Add(document, "Random Value");
        TToolNode* gravity = Add(document, *old);
        Connect(document, value, "Value", gravity, "Acceleration");
        for (const float rate : rates) {
            const float wanted[3] = {rate, rate, rate};
            auto* velocity = static_cast<TNodeVector3Parameter*>(
                Polytype(gravity, "Velocity")->GetValueParameter(TY_VECTOR3));
            document.ApplyOperation(new TVector3ParamOp(velocity, wanted));
            // Behind another step the next one is a step of its own.
            vector<TToolNode*> nodes;
            nodes.push_back(gravity);
            document.ApplyOperation(new TMoveGraphNodeOp(nodes, 1, 1));
        }
        document.Undo();
        ASSERT_EQ(document.GetOperationStack()->GetNumOperations(), 7);
        ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str())) << document.GetSaveError().Print();
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("a.effect").c_str()));
    EXPECT_EQ(Questions.size(), 1u);
    EXPECT_EQ(LinesOf(document.GetLoadNotes()), TNames());
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), 7);
    EXPECT_EQ(document.GetOperationStack()->GetPosition(), 6);
    while (document.CanUndo())
        document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    while (document.CanRedo())
        document.Redo();
    float floats[3] = {};
    Polytype(FindNode(document, "Gravity"), "Velocity")->GetValueParameter(TY_VECTOR3)->GetValue(floats);
    EXPECT_EQ(floats[0], 4);
    EXPECT_TRUE(Messages.empty());
    EXPECT_EQ(FaultOf(document), "");
    EXPECT_TRUE(document.Save());
}

TEST_F(ChangedTypes, StepsOnAPortThatIsGoneAreDroppedAndToldTheOthersStay)
{
    const float bottom[1] = {3};
    {
        TDocument document(App.Get());
        document.New();
        TToolNode* value = Add(document, *OldRandomValue());
        TToolNode* other = Add(document, *OldRandomValue());
        auto* scalar =
            static_cast<TNodeScalarParameter*>(Polytype(value, "Bottom")->GetValueParameter(TY_SCALAR));
        document.ApplyOperation(new TScalarParamOp(scalar, bottom));
        TToolEdge* gone = Connect(document, value, "Value", other, "Bottom");
        document.ApplyOperation(new TDeleteGraphEdgeOp(gone));
        TToolEdge* edge = Connect(document, value, "Value", other, "High");
        // The wire and the node that it leads to come back.
        vector<TToolNode*> nodes;
        nodes.push_back(other);
        document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
        (void)edge;
        ASSERT_EQ(document.GetOperationStack()->GetNumOperations(), 7);
        ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("a.effect").c_str()));
    EXPECT_EQ(LinesOf(document.GetLoadNotes()),
              TNames{"3 of the 7 steps of the undo history do not fit the refreshed nodes and were dropped"});
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), 4);
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2);
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 1);
    const TEffectEdge* edge = document.GetGraph()->GetEdge(0);
    EXPECT_EQ(edge->GetDstPort(), edge->GetDstNode()->GetNodeType()->FindInput("High"));
    EXPECT_EQ(FaultOf(document), "");
    while (document.CanUndo())
        document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    while (document.CanRedo())
        document.Redo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(FaultOf(document), "");
    EXPECT_TRUE(Messages.empty());
    EXPECT_TRUE(document.Save());
}

TEST_F(ChangedTypes, WiresOfTheHistoryFollowTheirPorts)
{
    // The input "Extra" stood in front of all others, and was wired.
    const auto old = OldType("Forces/Gravity.xml", [](const std::string& text) {
        return Replaced(text, "<inputs>", "<inputs><Scalar><name>Extra</name></Scalar>");
    });
    {
        TDocument document(App.Get());
        document.New();
        TToolNode* value = Add(document, "Random Value");
        TToolNode* gravity = Add(document, *old);
        TToolEdge* edge = Connect(document, value, "Value", gravity, "Acceleration");
        Connect(document, value, "Value", gravity, "Extra");
        document.ApplyOperation(
            new TChangeGraphEdgeOp(edge, value, 0, gravity, gravity->GetNodeType()->FindInput("Velocity")));
        vector<TToolNode*> nodes;
        nodes.push_back(value);
        document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
        ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("a.effect").c_str()));
    EXPECT_EQ(LinesOf(document.GetLoadNotes()),
              TNames{"1 of the 6 steps of the undo history do not fit the refreshed nodes and were dropped"});
    document.Undo();
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 1);
    EXPECT_EQ(document.GetGraph()->GetEdge(0)->GetDstPort(),
              FindNode(document, "Gravity")->GetNodeType()->FindInput("Velocity"));
    EXPECT_EQ(FaultOf(document), "");
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetEdge(0)->GetDstPort(),
              FindNode(document, "Gravity")->GetNodeType()->FindInput("Acceleration"));
    EXPECT_EQ(FaultOf(document), "");
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumEdges(), 0);
    EXPECT_TRUE(Messages.empty());
}

TEST_F(ChangedTypes, NothingThatALoadWouldRefuseIsWrittenOverAGoodFile)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* node = Add(document, "Random Value");
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    const std::string good = ReadBytes(Path("a.effect"));
    Add(document, "Age");
    const int files = CountFiles(Path("a.effect"));
    Polytype(node, "High")->SetLinkInput("Nowhere");
    EXPECT_FALSE(document.Save());
    EXPECT_EQ(Text(document.GetSaveError()),
              "Node \"Random Value\": \"High\" follows an input that does not exist");
    EXPECT_FALSE(document.SaveAs(Path("b.effect").c_str()));
    EXPECT_FALSE(std::filesystem::exists(Path("b.effect")));
    EXPECT_EQ(ReadBytes(Path("a.effect")), good);
    EXPECT_EQ(CountFiles(Path("a.effect")), files);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(Text(document.GetPath()), Path("a.effect"));
    ASSERT_TRUE(document.SaveUnchecked(Path("c.effect").c_str()));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(Text(document.GetPath()), Path("a.effect"));
    Polytype(node, "High")->SetLinkInput("Low");
    EXPECT_TRUE(document.Save());
    EXPECT_TRUE(document.GetSaveError().IsEmpty());
    EXPECT_NE(ReadBytes(Path("a.effect")), good);
}

TEST_F(ChangedTypes, LinksThatNameNothingAreMendedAtLoadAndToldOnce)
{
    const float high[1] = {7};
    {
        TDocument document(App.Get());
        document.New();
        TToolNode* node = Add(document, "Random Value");
        auto* scalar =
            static_cast<TNodeScalarParameter*>(Polytype(node, "High")->GetValueParameter(TY_SCALAR));
        scalar->SetValue(high);
        TToolNode* unknown = Add(document, "Random Value");
        unknown->GetNodeType()->Name = "Mine";
        for (TToolNode* spoilt : {node, unknown}) {
            Polytype(spoilt, "High")->SetLinkInput("Gone");
            Polytype(spoilt, "Low")->SetLinkOutput("Gone too");
            spoilt->GetNodeType()->GetOutput(0).LinkInput = 99;
        }
        ASSERT_TRUE(document.SaveUnchecked(Path("a.effect").c_str()));
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("a.effect").c_str())) << document.GetLoadError().Print();
    EXPECT_EQ(
        LinesOf(document.GetLoadNotes()),
        (TNames{
            "Node \"Random Value\": \"Low\" follows an output that does not exist; it follows none now",
            "Node \"Random Value\": \"High\" follows an input that does not exist; it follows \"Low\" now",
            "Node \"Random Value\": \"Value\" follows an input that does not exist; it follows \"Low\" now",
            "Node \"Mine\": \"Low\" follows an output that does not exist; it follows none now",
            "Node \"Mine\": \"High\" follows an input that does not exist; it follows none now",
            "Node \"Mine\": \"Value\" follows an input that does not exist; it follows none now"}));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(FaultOf(document), "");
    const TEffectNode* node = FindNode(document, "Random Value");
    EXPECT_EQ(static_cast<TNodeScalarParameter*>(Polytype(node, "High")->GetValueParameter(TY_SCALAR))->Get(),
              7);
    EXPECT_EQ(node->GetNodeType()->GetOutput(0).LinkInput, 0);
    ASSERT_TRUE(document.Save());
    TDocument again(App.Get());
    ASSERT_TRUE(again.Load(Path("a.effect").c_str()));
    EXPECT_TRUE(again.GetLoadNotes().empty());
    EXPECT_FALSE(again.IsModified());
    EXPECT_TRUE(Questions.empty());
}

namespace {

// The library's files with ports, parameters and entries that it does not have, in front of those that it
// has.
void WriteOtherLibrary(const std::string& folder, std::mt19937& random)
{
    const auto insertAfter = [&](std::string& text, const std::string& tag, const std::string& more) {
        const size_t at = text.find(tag);
        if (at != std::string::npos && random() % 2 == 0)
            text.insert(at + tag.size(), more);
    };
    std::filesystem::create_directories(folder);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SourcePath("NodeTypes"))) {
        if (!entry.is_regular_file())
            continue;
        std::string text = ReadBytes(entry.path().string());
        insertAfter(text, "<parameters>",
                    "<Int><name>Extra Int</name></Int><Scalar><name>Extra</name></Scalar>");
        insertAfter(text, "<inputs>",
                    "<Scalar><name>Extra</name></Scalar><Vector3><name>More</name></Vector3>");
        insertAfter(text, "<outputs>", "<Scalar><name>Extra Out</name></Scalar>");
        insertAfter(text, "<Enum>\n", "<value>Extra=77</value>\n");
        if (random() % 2 == 0)
            text = Replaced(text, "<bypassable/>", "");
        if (random() % 2 == 0)
            text = Replaced(text, "<Transform>", "<Transform required=true>");
        if (random() % 2 == 0)
            text = Replaced(text, "<Description>", "<Description>Old: ");
        if (random() % 2 == 0)
            text = Replaced(text, ">Low<", ">Bottom<");
        WriteBytes(folder + "/" + entry.path().filename().string(), text);
    }
}

} // namespace

// Random effects, with all their history, made with one library and refreshed to another.
TEST(ChangedLibraries, EveryStepOfARefreshedHistoryLeavesASoundEffect)
{
    const TQuiet quiet;
    const TTempFolder folder;
    const std::string path = folder.Path("a.effect");
    int whole = 0;
    int kept = 0;
    int dropped = 0;
    SetMessageForms([](const char* text) { Messages.push_back(text); },
                    [](const char* text) {
                        Questions.push_back(text);
                        return true;
                    });
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        Messages.clear();
        Questions.clear();
        std::mt19937 random(seed);
        const std::string types = folder.Path("types" + std::to_string(seed));
        WriteOtherLibrary(types, random);
        int steps = 0;
        {
            TTestApp app(nullptr, types);
            TDocument document(app.Get());
            document.New();
            TDice dice(seed);
            TRandomGraph(app.Get(), document, dice).Build(120);
            for (auto i = random() % 60; i > 0; --i)
                document.Undo();
            steps = document.GetOperationStack()->GetNumOperations();
            ASSERT_TRUE(document.SaveAs(path.c_str())) << document.GetSaveError().Print();
        }
        TTestApp app;
        const auto expectSound = [&](TDocument& document) {
            TString fault;
            ASSERT_TRUE(CheckGraph(*document.GetGraph(), fault)) << fault.Print();
        };
        TDocument document(app.Get());
        ASSERT_TRUE(document.Load(path.c_str())) << document.GetLoadError().Print();
        // Nothing is asked where no node of the graph is of a changed type.
        if (Questions.empty())
            continue;
        expectSound(document);
        kept += document.GetOperationStack()->GetNumOperations();
        dropped += steps - document.GetOperationStack()->GetNumOperations();
        ASSERT_TRUE(document.Save()) << document.GetSaveError().Print();
        {
            TDocument again(app.Get());
            ASSERT_TRUE(again.Load(path.c_str())) << again.GetLoadError().Print();
            EXPECT_EQ(Questions.size(), 1u);
        }
        while (document.CanRedo()) {
            document.Redo();
            expectSound(document);
        }
        while (document.CanUndo()) {
            document.Undo();
            expectSound(document);
        }
        whole += document.GetGraph()->GetNumNodes() == 0 ? 1 : 0;
        while (document.CanRedo()) {
            document.Redo();
            expectSound(document);
        }
        EXPECT_EQ(std::count(Messages.begin(), Messages.end(),
                             "The undo history does not fit the effect and was cleared"),
                  0);
        ASSERT_TRUE(document.Save()) << document.GetSaveError().Print();
        // A new edit frees what the undone steps held.
        for (int i = 0; i < 20; ++i)
            document.Undo();
        document.ApplyOperation(new TMoveGraphNodeOp(vector<TToolNode*>(), 1, 1));
        expectSound(document);
        ASSERT_TRUE(document.Save()) << document.GetSaveError().Print();
    }
    SetMessageForms(nullptr, nullptr);
    EXPECT_GT(kept, 0);
    EXPECT_GT(dropped, 0);
    EXPECT_GT(kept, dropped);
    // Hardly any history is cut off at its beginning.
    EXPECT_GT(whole, 6);
}
