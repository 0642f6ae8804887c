#include "docwindowfixture.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/tooledgerenderer.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

#include <QtWidgets/QMenu>

#include <filesystem>

namespace {

std::vector<std::string> Questions;
std::vector<std::string> Errors;
bool Answer = true;

class ReloadTypes : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Questions.clear();
        Errors.clear();
        Answer = true;
        SetMessageForms([](const char*) {},
                        [](const char* text) {
                            Questions.push_back(text);
                            return Answer;
                        });
        SetDisplayErrors([](const char* title, const TErrorList&) { Errors.push_back(title); });
        std::filesystem::copy(SourcePath("NodeTypes"), GetTypes(), std::filesystem::copy_options::recursive);
        App.Get().GetSettings().SetNodeTypesDirectory(GetTypes().c_str());
        std::filesystem::copy(SourcePath("samples/textures"), App.Path("resources"),
                              std::filesystem::copy_options::overwrite_existing);
        Document = LoadDocument(SourcePath("samples/fountain.effect"));
        ASSERT_NE(Document, nullptr);
        ASSERT_TRUE(Document->GetEngine().IsInited());
    }
    void TearDown() override
    {
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }
    std::string GetTypes() const { return App.Path("types"); }
    void Change(const std::string& file, const std::string& from, const std::string& to)
    {
        const std::string path = GetTypes() + "/" + file;
        std::string text = ReadBytes(path);
        const size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        WriteBytes(path, text.replace(at, from.size(), to));
    }
    // By the menu of the preview.
    void Reload()
    {
        MeetMenu([](QMenu& menu) {
            menu.findChild<QAction*>(QStringLiteral("menu%1").arg(PC_RELOADTYPES))->trigger();
            menu.close();
        });
        TParticleRenderWindow& view = WindowsOf(*Document).GetParticleWindow()->GetRenderWindow();
        QTest::mouseClick(view.GetHandle(), Qt::RightButton, Qt::NoModifier, QPoint(40, 40));
        Settle();
    }
    TToolNode* Find(const char* className)
    {
        for (int i = 0; i < Document->GetGraph()->GetNumNodes(); ++i)
            if (Document->GetGraph()->GetNode(i)->GetNodeType()->ClassName.Compare(className) == 0)
                return static_cast<TToolNode*>(Document->GetGraph()->GetNode(i));
        return nullptr;
    }
    static bool HasInput(const TEffectNode& node, const char* name)
    {
        return node.GetNodeType()->FindInput(name) != -1;
    }
    // An input more for Gravity, at its end.
    void ChangeGravity()
    {
        Change("Forces/Gravity.xml", "</inputs>",
               "<Scalar><name>Haste</name><Description>More of it.</Description>"
               "<defaultvalue>1</defaultvalue></Scalar></inputs>");
    }

    TDocument* Document = nullptr;
};

} // namespace

TEST_F(ReloadTypes, WhatHasNotChangedAsksNothing)
{
    const unsigned starts = Document->GetEngine().GetNumStarts();
    Reload();
    EXPECT_TRUE(Questions.empty());
    EXPECT_TRUE(Errors.empty());
    EXPECT_FALSE(Document->IsModified());
    EXPECT_EQ(Document->GetEngine().GetNumStarts(), starts) << "it runs on";
}

TEST_F(ReloadTypes, ANewTypeComesToThePalettes)
{
    const int types = App.Get().GetNodeTypes().GetNumTypes();
    const int height = ViewOf(*Document).GetTool().GetPalette().GetHeight();
    std::string text = ReadBytes(GetTypes() + "/Forces/Gravity.xml");
    text.replace(text.find("<name>Gravity</name>"), 20, "<name>Levity</name>");
    WriteBytes(GetTypes() + "/Forces/Levity.xml", text);
    Reload();
    EXPECT_EQ(App.Get().GetNodeTypes().GetNumTypes(), types + 1);
    EXPECT_NE(App.Get().GetNodeTypes().FindType("Levity"), nullptr);
    EXPECT_EQ(ViewOf(*Document).GetTool().GetPalette().GetHeight(), height + TPalette::RowHeight);
    EXPECT_TRUE(Questions.empty());
    // And can be used.
    TToolNode* node = AddNode(*Document, "Levity", 0, 0);
    EXPECT_EQ(Text(node->GetNodeType()->Name), "Levity");
}

TEST_F(ReloadTypes, ChangedTypesAreAskedAboutAndRefreshedWithTheirViews)
{
    TToolNode* gravity = Find("TGravity");
    ASSERT_NE(gravity, nullptr);
    TGraphScene& scene = WindowsOf(*Document).GetScene();
    const TEffectEdge* wire = gravity->GetInput(0);
    ASSERT_NE(wire, nullptr);
    Document->SelectNode(gravity, true);
    ChangeGravity();
    Reload();
    ASSERT_EQ(Questions.size(), 1u);
    EXPECT_EQ(Questions[0], Text(Document->GetPath()) + ": 1 node types need refreshing. Refresh now?");
    EXPECT_TRUE(HasInput(*gravity, "Haste"));
    EXPECT_EQ(gravity->GetInput(0), wire);
    EXPECT_TRUE(Document->IsModified());
    EXPECT_TRUE(Document->GetEngine().IsInited()) << "it ran, so it runs";
    EXPECT_TRUE(Document->GetSelection().empty());
    // All that is drawn is there.
    for (int i = 0; i < Document->GetGraph()->GetNumNodes(); ++i)
        EXPECT_NE(scene.FindNode(static_cast<TToolNode*>(Document->GetGraph()->GetNode(i))), nullptr) << i;
    for (int i = 0; i < Document->GetGraph()->GetNumEdges(); ++i)
        EXPECT_NE(scene.FindEdge(static_cast<TToolEdge*>(Document->GetGraph()->GetEdge(i))), nullptr) << i;
    // A second time there is nothing to ask.
    Reload();
    EXPECT_EQ(Questions.size(), 1u);
    TErrorList errors;
    EXPECT_TRUE(Document->UpdateEngine(0.02f, errors));
}

TEST_F(ReloadTypes, WhoDeclinesKeepsAll)
{
    TToolNode* gravity = Find("TGravity");
    const unsigned starts = Document->GetEngine().GetNumStarts();
    Answer = false;
    ChangeGravity();
    Reload();
    EXPECT_EQ(Questions.size(), 1u);
    EXPECT_FALSE(HasInput(*gravity, "Haste"));
    EXPECT_FALSE(Document->IsModified());
    EXPECT_EQ(Document->GetEngine().GetNumStarts(), starts);
}

TEST_F(ReloadTypes, TheHistoryGoesOnOverARefresh)
{
    const int start = Document->GetOperationStack()->GetPosition();
    TToolNode* added = AddNode(*Document, "Gravity", 400, 400);
    AddNode(*Document, "Wind", 500, 500);
    const auto undoAll = [this, start] {
        while (Document->GetOperationStack()->GetPosition() > start)
            Document->Undo();
    };
    undoAll();
    ASSERT_FALSE(Document->GetGraph()->Has(added));
    ChangeGravity();
    Reload();
    ASSERT_EQ(Questions.size(), 1u);
    // A node that only the history holds comes back as what it is now.
    ASSERT_TRUE(Document->CanRedo());
    while (Document->CanRedo())
        Document->Redo();
    EXPECT_TRUE(Document->GetGraph()->Has(added));
    EXPECT_TRUE(HasInput(*added, "Haste"));
    EXPECT_NE(WindowsOf(*Document).GetScene().FindNode(added), nullptr);
    undoAll();
    EXPECT_FALSE(Document->GetGraph()->Has(added));
    EXPECT_TRUE(Document->IsModified());
}

TEST_F(ReloadTypes, AllOpenDocumentsAreAsked)
{
    TDocument* other = LoadDocument(SourcePath("samples/rain.effect"));
    ASSERT_NE(other, nullptr);
    TDocument* unsaved = NewDocument();
    ASSERT_NE(unsaved, nullptr);
    AddNode(*unsaved, "Age", 0, 0);
    Change("Life/Age.xml", "<name>Age</name>\n    <description>", "<name>Age</name>\n    <description>Now: ");
    Reload();
    ASSERT_EQ(Questions.size(), 3u);
    // Each tells which it is about.
    EXPECT_EQ(Questions[0].find(Text(Document->GetPath()) + ": "), 0u) << Questions[0];
    EXPECT_EQ(Questions[1].find(Text(other->GetPath()) + ": "), 0u) << Questions[1];
    EXPECT_EQ(Questions[2], "doc: 1 node types need refreshing. Refresh now?");
    EXPECT_TRUE(Document->IsModified());
    EXPECT_TRUE(other->IsModified());
}

TEST_F(ReloadTypes, FilesThatCannotBeReadAreListed)
{
    WriteBytes(GetTypes() + "/Forces/Gravity.xml", "<node><name>Gravity");
    Reload();
    ASSERT_EQ(Errors.size(), 1u);
    EXPECT_EQ(Errors[0], "Loading node types");
    EXPECT_EQ(App.Get().GetNodeTypes().FindType("Gravity"), nullptr);
    // The effect has its own.
    EXPECT_NE(Find("TGravity"), nullptr);
    TErrorList errors;
    EXPECT_TRUE(Document->UpdateEngine(0.02f, errors));
}

TEST_F(ReloadTypes, WithoutTheFolderNothingHappens)
{
    std::filesystem::remove_all(GetTypes());
    const int types = App.Get().GetNodeTypes().GetNumTypes();
    Reload();
    EXPECT_EQ(App.Get().GetNodeTypes().GetNumTypes(), types);
}

TEST_F(ReloadTypes, PreviewsOfOneNameHaveTitlesOfTheirOwn)
{
    const auto title = [](TDocument& document) { return TitleOf(*WindowsOf(document).GetParticleWindow()); };
    TDocument* first = NewDocument();
    TDocument* second = NewDocument();
    TDocument* third = NewDocument();
    EXPECT_EQ(title(*first), "Effect Display - [doc]");
    EXPECT_EQ(title(*second), "Effect Display - [doc] (2)");
    EXPECT_EQ(title(*third), "Effect Display - [doc] (3)");
    AddNode(*second, "Gravity", 0, 0);
    EXPECT_EQ(title(*second), "Effect Display - [doc*]");
    EXPECT_EQ(TitleOf(ViewOf(*second)), "doc*");
    AddNode(*first, "Gravity", 0, 0);
    EXPECT_EQ(title(*first), "Effect Display - [doc*] (2)");
}

TEST_F(ReloadTypes, AltAndAClickOnATabShowTheGroupAlone)
{
    TDocument* document = LoadDocument(SourcePath("samples/campfire.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    TParticleWindow& preview = *WindowsOf(*document).GetParticleWindow();
    const TVector2 offset = GraphOf(*document).GetRenderer().GetOffset();
    const auto click = [&](int tab) {
        int left = 0;
        int right = 0;
        header.GetTabEdges(tab, left, right);
        QTest::mouseClick(header.GetHandle(), Qt::LeftButton, Qt::AltModifier,
                          QPoint((left + right) / 2, 10));
    };
    click(2);
    EXPECT_EQ(preview.GetOnlyGroup(), GetTabGroup(document->GetSchedule(), 2));
    click(1);
    EXPECT_EQ(preview.GetOnlyGroup(), GetTabGroup(document->GetSchedule(), 1));
    click(1);
    EXPECT_EQ(preview.GetOnlyGroup(), -1);
    click(2);
    click(0);
    EXPECT_EQ(preview.GetOnlyGroup(), -1);
    EXPECT_EQ(GraphOf(*document).GetRenderer().GetOffset(), offset) << "the graph stays where it is";
    // The budget's lines lead to the graph.
    preview.OnCommand(nullptr, PC_BUDGET, CC_MENU);
    WindowsOf(*document).FrameGroup(*document, GetTabGroup(document->GetSchedule(), 2));
    EXPECT_NE(GraphOf(*document).GetRenderer().GetOffset(), offset);
}
