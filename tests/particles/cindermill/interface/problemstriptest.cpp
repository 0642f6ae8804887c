#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/effectgraph/simpleparameters.h"

#include <QtGui/QAccessible>
#include <QtGui/QImage>
#include <QtGui/QTextDocumentFragment>
#include <QtWidgets/QToolTip>

#include <filesystem>

namespace {

// Emitters that nothing triggers, and a stage that draws nothing.
class ProblemStrip : public GraphWindow
{
protected:
    void SetUp() override
    {
        GraphWindow::SetUp();
        Points = AddNode(*Document, "Point Emitter", 400, 200);
        Stage = AddNode(*Document, "Quad Render Stage", 4000, 3000);
    }
    TProblemStrip& Strip() { return View().GetProblems(); }
    TNodeObj& Object(TToolNode* node) { return *WindowsOf(*Document).GetScene().FindNode(node); }
    int FindEntry(const TToolNode* node)
    {
        const TDocumentProblems& problems = Document->GetProblems();
        for (int i = 0; i < problems.size(); ++i)
            if (problems[i].Node == node)
                return i;
        return -1;
    }
    // As it is drawn, in the corner of the tab.
    static bool HasBadge(const TDocGraphHeader& header, int tab)
    {
        int left = 0;
        int right = 0;
        header.GetTabEdges(tab, left, right);
        const QImage picture = header.GetHandle()->grab().toImage();
        return (picture.pixel(right - 4, 4) & 0xFFFFFF) == 0xC62828;
    }
    static TNodeTextureParameter* FindTexture(const TEffectNode& node)
    {
        return node.GetNodeType()->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE);
    }
    // -1 for none.
    static int FindGroupOf(const TEffectSchedule& schedule, const TNodeTextureParameter& texture)
    {
        for (int g = 0; g < schedule.GetNumGroups(); ++g)
            for (int i = 0; i < schedule.GetNumTiedNodes(g); ++i)
                if (FindTexture(*schedule.GetNode(schedule.GetTiedNode(g, i))) == &texture)
                    return g;
        return -1;
    }
    void SetWidth(int width) { Strip().MoveTo(0, 300, width, Strip().GetWantedHeight()); }
    static std::string Tip()
    {
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().toStdString();
    }
    void Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        Document->ApplyOperation(new TAddGraphEdgeOp(*Document, source,
                                                     source->GetNodeType()->FindOutput(output), destination,
                                                     destination->GetNodeType()->FindInput(input)));
    }

    TToolNode* Points = nullptr;
    TToolNode* Stage = nullptr;
};

} // namespace

TEST_F(ProblemStrip, StandsBelowTheGraphAsLongAsThereAreProblems)
{
    const int height = Graph().GetHandle()->height();
    EXPECT_FALSE(Strip().IsShown());
    Document->RebuildSchedule(false);
    ASSERT_GE(Strip().GetNumEntries(), 3);
    EXPECT_TRUE(Strip().IsShown());
    EXPECT_EQ(Graph().GetHandle()->height(), height - Strip().GetWantedHeight());
    EXPECT_EQ(Strip().GetHandle()->height(), Strip().GetWantedHeight());
    EXPECT_TRUE(View().GetHeader().HasProblem(0));
    Connect(First, "Count", Points, "Emission Trigger");
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_FALSE(Strip().IsShown());
    EXPECT_EQ(Graph().GetHandle()->height(), height);
    EXPECT_FALSE(View().GetHeader().HasProblem(0));
}

TEST_F(ProblemStrip, TheTabOfTheNodesGroupHasABadgeAndNoOtherGroups)
{
    // Nothing is searched for.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    TDocument* effect = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(effect, nullptr);
    TEffectGraph& graph = *effect->GetGraph();
    const int count = graph.GetNumNodes();
    for (int i = 0; i < count; ++i)
        effect->SelectNode(static_cast<TToolNode*>(graph.GetNode(i)), false);
    effect->CopySelection();
    effect->Paste();
    std::vector<TNodeTextureParameter*> textures;
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        if (TNodeTextureParameter* texture = FindTexture(*graph.GetNode(i))) {
            textures.push_back(texture);
            texture->SetValue(SourcePath("samples/textures/" + Text(texture->GetFileName())).c_str());
        }
    ASSERT_EQ(textures.size(), 2u);
    effect->RebuildSchedule(true);
    Settle();
    TDocGraphHeader& header = ViewOf(*effect).GetHeader();
    ASSERT_EQ(header.GetTabLabels().size(), 3);
    const auto expectBadges = [&](bool all, bool first, bool second) {
        EXPECT_EQ(HasBadge(header, 0), all);
        EXPECT_EQ(HasBadge(header, 1), first);
        EXPECT_EQ(HasBadge(header, 2), second);
    };
    expectBadges(false, false, false);
    for (TNodeTextureParameter* texture : textures) {
        const std::string whole = Text(texture->GetFileName());
        const int group = FindGroupOf(effect->GetSchedule(), *texture);
        texture->SetValue("nowhere.dds");
        effect->RebuildSchedule(true);
        expectBadges(true, group == GetTabGroup(effect->GetSchedule(), 1),
                     group == GetTabGroup(effect->GetSchedule(), 2));
        texture->SetValue(whole.c_str());
        effect->RebuildSchedule(true);
        expectBadges(false, false, false);
    }
}

TEST_F(ProblemStrip, AClickShowsTheNode)
{
    Document->RebuildSchedule(false);
    const int entry = FindEntry(Stage);
    ASSERT_NE(entry, -1);
    EXPECT_FALSE(Graph().GetHandle()->rect().contains(MiddleOf(*Document, Stage)));
    const QPoint at(100, entry * TProblemStrip::RowHeight + 10);
    Press(Strip(), at);
    Release(Strip(), at);
    while (Graph().IsFocusing())
        Graph().OnIdle();
    EXPECT_TRUE(IsSelected(Stage));
    EXPECT_EQ(NumSelected(), 1);
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(MiddleOf(*Document, Stage)));
}

TEST_F(ProblemStrip, ItsNodesAreMarkedUntilTheyAreMended)
{
    Document->RebuildSchedule(false);
    EXPECT_FALSE(Object(Points).GetProblem().IsEmpty());
    EXPECT_FALSE(Object(Stage).GetProblem().IsEmpty());
    EXPECT_TRUE(Object(First).GetProblem().IsEmpty());
    Connect(First, "Count", Points, "Emission Trigger");
    EXPECT_TRUE(Object(Points).GetProblem().IsEmpty());
    EXPECT_FALSE(Object(Stage).GetProblem().IsEmpty());
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_TRUE(Object(Stage).GetProblem().IsEmpty());
}

TEST_F(ProblemStrip, AFurtherViewHasItToo)
{
    Document->RebuildSchedule(false);
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    Settle();
    EXPECT_TRUE(ViewOf(*Document, 1).GetProblems().IsShown());
    EXPECT_GT(ViewOf(*Document, 1).GetProblems().GetHandle()->height(), 0);
}

TEST_F(ProblemStrip, ANodeThatWentLeadsNowhere)
{
    Document->RebuildSchedule(false);
    const int entry = FindEntry(Points);
    // The addition of a node is taken back without a change of the graph.
    Document->Undo();
    Document->Undo();
    Document->Undo();
    Document->Undo();
    const QPoint at(100, entry * TProblemStrip::RowHeight + 10);
    Press(Strip(), at);
    Release(Strip(), at);
    EXPECT_EQ(NumSelected(), 0);
}

namespace {

constexpr uint32_t ProblemPaper = 0xFBE9E6;
constexpr uint32_t AgreesPaper = 0xE9F3E7;
constexpr uint32_t ToldPaper = 0xE8EEF5;
constexpr uint32_t GreyPaper = 0xEFEFEF;

// A sample in its windows, with what it names.
class AgreementStrip : public DocWindows
{
protected:
    void Open(const char* sample)
    {
        App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
        Document = LoadDocument(SourcePath(std::string("samples/") + sample + ".effect"));
        ASSERT_NE(Document, nullptr);
        ASSERT_TRUE(Document->EnsureSchedule());
        Settle();
    }
    void Export()
    {
        Host.Choice = App.Path("a.efx");
        App.Get().SetActiveDocWindow(&ViewOf(*Document), Document);
        App.Get().OnMenu(MI_EXPORT);
        do
            App.Get().OnIdle();
        while (Document->GetAgreement().IsRunning());
        Settle();
    }
    // A folder of its own with all that the sample names.
    void OpenCopy(const char* sample)
    {
        const std::filesystem::path folder = App.Path("own");
        std::filesystem::create_directory(folder);
        std::filesystem::copy(SourcePath("samples/textures"), folder / "textures");
        const std::filesystem::path file = folder / (std::string(sample) + ".effect");
        std::filesystem::copy(SourcePath(std::string("samples/") + sample + ".effect"), file);
        App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
        App.Get().GetResourceLocator().ReadSettings();
        App.Get().GetResourceLocator().AddSearchDirectory((folder / "textures").c_str());
        Document = LoadDocument(file);
        ASSERT_NE(Document, nullptr);
        ASSERT_TRUE(Document->EnsureSchedule());
        Settle();
    }
    // The preview fails, and nothing is edited.
    void TakeTexturesAway()
    {
        std::filesystem::remove_all(App.Path("own/textures"));
        Document->RebuildSchedule(true);
        Settle();
        ASSERT_GE(Document->GetProblems().size(), 1);
    }
    TProblemStrip& Strip() { return ViewOf(*Document).GetProblems(); }
    uint32_t GetPaper(int row)
    {
        const QImage picture = Strip().GetHandle()->grab().toImage();
        return picture.pixel(3, row * TProblemStrip::RowHeight + 10) & 0xFFFFFF;
    }

    TDocument* Document = nullptr;
};

} // namespace

TEST_F(AgreementStrip, AnExportStaysInSightUntilTheNextEdit)
{
    ASSERT_NO_FATAL_FAILURE(Open("fountain"));
    const int height = GraphOf(*Document).GetHandle()->height();
    EXPECT_FALSE(Strip().IsShown());
    Export();
    EXPECT_EQ(Strip().GetNumEntries(), 1);
    EXPECT_TRUE(Strip().IsShown());
    EXPECT_EQ(GraphOf(*Document).GetHandle()->height(), height - TProblemStrip::RowHeight);
    EXPECT_FALSE(ViewOf(*Document).GetHeader().HasProblem(0));
    const std::string status = Host.Statuses.back();
    EXPECT_EQ(status.find("Exported "), 0u);
    EXPECT_EQ(status.substr(status.size() - 26), ". Preview and export agree");
    // It leads nowhere.
    const QPoint at(100, 10);
    Press(Strip(), at);
    Release(Strip(), at);
    EXPECT_TRUE(Document->GetSelection().empty());
    AddNode(*Document, "Gravity", 200, 400);
    App.Get().OnIdle();
    Settle();
    EXPECT_FALSE(Strip().IsShown());
    EXPECT_EQ(GraphOf(*Document).GetHandle()->height(), height);
}

TEST_F(AgreementStrip, EachOfItsEntriesLeadsToItsNode)
{
    ASSERT_NO_FATAL_FAILURE(Open("waterfall"));
    Export();
    const vector<TVerdictLine>& lines = Document->GetAgreement().GetLines();
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(Strip().GetNumEntries(), lines.size());
    for (int i = 0; i < lines.size() && i < TProblemStrip::MaxRows; ++i) {
        ASSERT_NE(lines[i].Node, nullptr);
        Document->ClearSelection();
        SetView(GraphOf(*Document), 20000, 20000, 1);
        const QPoint at(100, i * TProblemStrip::RowHeight + 10);
        Press(Strip(), at);
        Release(Strip(), at);
        while (GraphOf(*Document).IsFocusing())
            GraphOf(*Document).OnIdle();
        ASSERT_EQ(Document->GetSelection().size(), 1);
        EXPECT_EQ(Document->GetSelection()[0], lines[i].Node);
        EXPECT_EQ(Text(lines[i].Node->GetNodeType()->Name), "Grid");
        EXPECT_TRUE(GraphOf(*Document).GetHandle()->rect().contains(
            MiddleOf(*Document, static_cast<const TToolNode*>(lines[i].Node))));
    }
}

TEST_F(AgreementStrip, ProblemsComeFirst)
{
    ASSERT_NO_FATAL_FAILURE(OpenCopy("fireflies"));
    Export();
    EXPECT_EQ(Strip().GetNumEntries(), 2);
    EXPECT_EQ(GetPaper(0), ToldPaper);
    ASSERT_NO_FATAL_FAILURE(TakeTexturesAway());
    const int problems = Document->GetProblems().size();
    ASSERT_EQ(Strip().GetNumEntries(), problems + 2);
    ASSERT_LT(problems, TProblemStrip::MaxRows) << "one that is told can be seen";
    for (int row = 0; row < std::min(problems + 2, int(TProblemStrip::MaxRows)); ++row)
        EXPECT_EQ(GetPaper(row), row < problems ? ProblemPaper : ToldPaper);
}

TEST_F(AgreementStrip, WhatDoesNotRunIsNotSaidToAgree)
{
    ASSERT_NO_FATAL_FAILURE(OpenCopy("fountain"));
    Export();
    EXPECT_EQ(Strip().GetNumEntries(), 1);
    EXPECT_EQ(GetPaper(0), AgreesPaper);
    ASSERT_NO_FATAL_FAILURE(TakeTexturesAway());
    ASSERT_EQ(Strip().GetNumEntries(), Document->GetProblems().size());
    EXPECT_EQ(Strip().GetWantedHeight(), Strip().GetNumEntries() * TProblemStrip::RowHeight);
    for (int row = 0; row < Strip().GetNumEntries(); ++row)
        EXPECT_EQ(GetPaper(row), ProblemPaper);
}

TEST_F(AgreementStrip, WhatWasCutShortIsGrey)
{
    ASSERT_NO_FATAL_FAILURE(OpenCopy("fountain"));
    TAgreementLimits limits;
    limits.Whole = 0;
    Document->GetAgreement().SetLimits(limits);
    Export();
    ASSERT_EQ(Strip().GetNumEntries(), 1);
    EXPECT_EQ(GetPaper(0), GreyPaper);
}

TEST_F(ProblemStrip, AListThatIsToldAnewStaysWhereItWasScrolledTo)
{
    for (int i = 0; i < 4; ++i)
        AddNode(*Document, "Quad Render Stage", 4000, 4000 + 400 * i);
    Document->RebuildSchedule(false);
    const int count = Strip().GetNumEntries();
    ASSERT_GT(count, TProblemStrip::MaxRows + 2);
    const auto look = [&] { return Strip().GetHandle()->grab().toImage(); };
    const QImage top = look();
    TMessage message;
    message.Type = MT_WHEEL;
    // As a touchpad tells it: a notch is a row, and its parts are none.
    message.Delta = -WheelNotch / 8;
    for (int i = 0; i < 7; ++i)
        Strip().OnMessage(message);
    EXPECT_EQ(top, look());
    Strip().OnMessage(message);
    message.Delta = -WheelNotch;
    Strip().OnMessage(message);
    const QImage scrolled = look();
    ASSERT_NE(top, scrolled);
    Document->GetHost()->AgreementChanged(*Document);
    Settle();
    EXPECT_EQ(look(), scrolled);
    // But no further than the list reaches.
    for (int i = 0; i < count; ++i)
        Strip().OnMessage(message);
    while (Strip().GetNumEntries() == count && Document->CanUndo()) {
        Document->Undo();
        Document->RebuildSchedule(false);
    }
    ASSERT_LT(Strip().GetNumEntries(), count);
    ASSERT_GT(Strip().GetNumEntries(), TProblemStrip::MaxRows);
    const QImage shorter = look();
    Strip().OnMessage(message);
    EXPECT_EQ(look(), shorter);
}

TEST_F(ProblemStrip, IsReadAndPressedByKeys)
{
    Document->RebuildSchedule(false);
    const int count = Strip().GetNumEntries();
    ASSERT_GT(count, 1);
    QAccessibleInterface& list = *QAccessible::queryAccessibleInterface(Strip().GetHandle());
    EXPECT_EQ(list.role(), QAccessible::List);
    EXPECT_EQ(list.text(QAccessible::Name), QString("Problems"));
    ASSERT_EQ(list.childCount(), count);
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(list.child(i)->text(QAccessible::Name).toStdString(), Text(Strip().GetEntry(i).Text));
        EXPECT_EQ(list.child(i)->text(QAccessible::Description), QString("Problem"));
    }
    Frame.BringToTop();
    Graph().TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    Key(Graph(), Qt::Key_F6);
    ASSERT_TRUE(Strip().HasFocus());
    EXPECT_EQ(list.focusChild(), list.child(0));
    for (int i = 1; i < count; ++i) {
        const QImage before = Strip().GetHandle()->grab().toImage();
        Key(Strip(), Qt::Key_Down);
        EXPECT_EQ(list.focusChild(), list.child(i));
        EXPECT_NE(Strip().GetHandle()->grab().toImage(), before);
        EXPECT_GE(Strip().GetEntryTop(i), 0);
        EXPECT_LT(Strip().GetEntryTop(i), Strip().GetHandle()->height());
    }
    Key(Strip(), Qt::Key_Home);
    const int entry = FindEntry(Stage);
    ASSERT_NE(entry, -1);
    for (int i = 0; i < entry; ++i)
        Key(Strip(), Qt::Key_Down);
    Document->ClearSelection();
    Key(Strip(), Qt::Key_Return);
    EXPECT_TRUE(IsSelected(Stage));
    EXPECT_TRUE(Graph().HasFocus());
    // A tool presses and leads there too.
    Document->ClearSelection();
    list.child(entry)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(IsSelected(Stage));
    list.child(entry)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(Strip().HasFocus());
    EXPECT_EQ(list.focusChild(), list.child(entry));
    Key(Strip(), Qt::Key_Escape);
    EXPECT_TRUE(Graph().HasFocus());
}

TEST_F(ProblemStrip, AHeldSpaceLeadsToTheNodeAndDoesNothingThere)
{
    Document->RebuildSchedule(false);
    const int entry = FindEntry(Stage);
    ASSERT_NE(entry, -1);
    Frame.BringToTop();
    Strip().TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Strip().HasFocus(); }));
    Strip().Mark(entry);
    Space(true);
    EXPECT_FALSE(IsSelected(Stage));
    Space(false);
    EXPECT_TRUE(IsSelected(Stage));
    ASSERT_TRUE(Graph().HasFocus());
    Space(true);
    EXPECT_FALSE(Graph().GetActions().GetSearch().IsOpen());
}

TEST_F(ProblemStrip, TheKeysStayInTheViewWhenTheProblemsAreMended)
{
    Document->RebuildSchedule(false);
    Frame.BringToTop();
    Strip().TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return Strip().HasFocus(); }));
    Connect(First, "Count", Points, "Emission Trigger");
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_FALSE(Strip().IsShown());
    EXPECT_TRUE(Graph().HasFocus());
}

TEST_F(ProblemStrip, WhereThePointerRestsAnEntryThatIsCutIsToldWhole)
{
    Document->RebuildSchedule(false);
    ASSERT_GT(Strip().GetNumEntries(), 1);
    SetWidth(150);
    const std::string text = Text(Strip().GetEntry(1).Text);
    const QAccessibleInterface& list = *QAccessible::queryAccessibleInterface(Strip().GetHandle());
    EXPECT_EQ(list.child(1)->text(QAccessible::Name).toStdString(), text);
    Move(Strip(), QPoint(60, Strip().GetEntryTop(1) + 10), Qt::NoButton);
    ASSERT_TRUE(WaitFor([] { return QToolTip::isVisible(); }));
    EXPECT_EQ(Tip(), text);
    EXPECT_EQ(Strip().GetTold(), 1);
    Move(Strip(), QPoint(60, 10), Qt::NoButton);
    EXPECT_EQ(Strip().GetTold(), -1);
    EXPECT_TRUE(WaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(ProblemStrip, TheKeysTellAnEntryWholeWhereItIsCutAndOnlyThere)
{
    Document->RebuildSchedule(false);
    ASSERT_GT(Strip().GetNumEntries(), 2);
    SetWidth(1500);
    Key(Strip(), Qt::Key_Down);
    EXPECT_FALSE(QToolTip::isVisible());
    SetWidth(150);
    Key(Strip(), Qt::Key_Down);
    ASSERT_TRUE(QToolTip::isVisible());
    EXPECT_EQ(Tip(), Text(Strip().GetEntry(2).Text));
    // It is mended.
    Connect(First, "Count", Points, "Emission Trigger");
    Connect(Points, "Start Transform", Stage, "Transform");
    EXPECT_EQ(Strip().GetTold(), -1);
}

TEST_F(ProblemStrip, TheLastLineLeavesRoomForHowManyThereAre)
{
    for (int i = 0; i < 6; ++i)
        AddNode(*Document, "Quad Render Stage", 4000, 4000 + 400 * i);
    Document->RebuildSchedule(false);
    ASSERT_GT(Strip().GetNumEntries(), TProblemStrip::MaxRows);
    // A width in which each of the entries in sight has room for its text, but the last none for more.
    const auto hasTip = [&](int entry) {
        Strip().Mark(0);
        for (int i = 0; i < entry; ++i)
            Key(Strip(), Qt::Key_Down);
        return Strip().GetTold() != -1;
    };
    const int last = TProblemStrip::MaxRows - 1;
    int width = 100;
    for (SetWidth(width); hasTip(last); SetWidth(width += 4))
        ASSERT_LT(width, 3000);
    const QImage whole = Strip().GetHandle()->grab().toImage();
    ASSERT_FALSE(whole.isNull());
    // Right of the text there is a gap before how many there are.
    const int middle = last * TProblemStrip::RowHeight + TProblemStrip::RowHeight / 2;
    int gap = 0;
    int widest = 0;
    for (int x = 24; x < whole.width() - 8; ++x) {
        bool isEmpty = true;
        for (int y = middle - 7; y < middle + 7; ++y)
            isEmpty = isEmpty && (whole.pixel(x, y) & 0xFFFFFF) == 0xFBE9E6;
        gap = isEmpty ? gap + 1 : 0;
        widest = std::max(widest, gap);
    }
    EXPECT_GE(widest, 7);
}
