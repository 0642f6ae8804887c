#include "dialogfixture.h"
#include "support/accessnames.h"
#include "support/fakehost.h"
#include "support/sampledocument.h"

#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/options/nodepropertiesdialog.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/valueparameters.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <memory>

namespace {

constexpr int Ok = 1;
constexpr int Cancel = 2;
constexpr int Name = 1002;
constexpr int Priority = 1031;
constexpr int Dynamic = 1030;
constexpr int Static = 1035;
constexpr int Sides[] = {1041, 1043, 1045, 1047, 1049, 1051};
constexpr int Sample = 1055;
constexpr int Record = 1056;

const char* const NotRunning =
    "The particle effect needs to be running before a static bounding box can be sampled";
const char* const NoParticles = "No particles in buffer to sample";

using TTexts = std::vector<std::string>;

// The idle passes of a program whose one document runs.
class TRunningApp : public TWimpApp
{
public:
    explicit TRunningApp(TDocument& document) : Document(document)
    {
        TWimp::Get().SetIdle(true);
        TWimp::Get().SetApp(this);
    }
    ~TRunningApp() override
    {
        TWimp::Get().ClearApp();
        TWimp::Get().SetIdle(false);
    }
    void OnIdle() override
    {
        ++Passes;
        if (Work)
            Work();
        TErrorList errors;
        if (!IsPaused && Document.GetEngine().IsInited())
            Document.UpdateEngine(0.02f, errors);
    }

    int Passes = 0;
    bool IsPaused = false;
    std::function<void()> Work;

private:
    TDocument& Document;
};

class NodeProperties : public DialogTest
{
protected:
    NodeProperties()
    {
        SetDisplayErrors([](const char*, const TErrorList&) {});
    }
    ~NodeProperties() override { SetDisplayErrors(nullptr); }
    void SetUp() override { Load("fountain", "TSpriteRenderStage"); }
    void Load(const char* sample, const char* className)
    {
        Loaded = nullptr;
        Loaded = std::make_unique<TSampleDocument>(App, sample);
        Node = FindNode(className);
    }
    TDocument& Document() { return **Loaded; }
    TNodeType& Type() { return *Node->GetNodeType(); }
    TToolNode* FindNode(const char* className)
    {
        for (int i = 0; i < Document().GetGraph()->GetNumNodes(); ++i)
            if (Document().GetGraph()->GetNode(i)->GetNodeType()->ClassName.Compare(className) == 0)
                return static_cast<TToolNode*>(Document().GetGraph()->GetNode(i));
        throw std::runtime_error("no such node");
    }
    void Open(const std::function<void(QDialog&)>& work)
    {
        Use("dialog120", work);
        TNodePropertiesDialog dialog(Document(), *Node, App.Get().GetNodeTypes());
        dialog.Run(nullptr);
    }
    void Accept(const std::function<void(QDialog&)>& work)
    {
        Open([work](QDialog& dialog) {
            work(dialog);
            Click(dialog, Ok);
        });
    }
    void Rename(const char* name)
    {
        Accept([name](QDialog& dialog) { Type(dialog, name); });
    }
    static void Type(QDialog& dialog, const char* name)
    {
        DialogTest::Type(Find<QWidget>(dialog, Name), name);
    }
    static void Type(QWidget& field, const char* text) { DialogTest::Type(field, text); }
    static double ValueOf(QDialog& dialog, int side)
    {
        return Find<QDoubleSpinBox>(dialog, Sides[side]).value();
    }
    static std::string NoteOf(QDialog& dialog, const char* name)
    {
        return dialog.findChild<QLabel*>(name)->text().toStdString();
    }
    static void ExpectSides(QDialog& dialog, const std::vector<double>& values)
    {
        for (int i = 0; i < 6; ++i)
            EXPECT_NEAR(ValueOf(dialog, i), values[i], 0.00005) << i;
    }
    int CountOperations() { return Document().GetOperationStack()->GetNumOperations(); }
    // All particles in one place, each of a size of 5.
    void PutAll(float x, float y, float z)
    {
        const float place[] = {x, y, z, 0, 0, 0};
        const float scale[] = {3, 4};
        if (Type().FindInput("Transform") != -1)
            PutInput("Transform", place, 6);
        else
            PutInput("Position", place, 3);
        PutInput("Scale", scale, 2);
    }
    void PutInput(const char* input, const float* value, int count)
    {
        const TEffectSchedule& schedule = Document().GetSchedule();
        const int port = Type().FindInput(input);
        for (int g = 0; g < schedule.GetNumGroups(); ++g)
            for (int t = 0; t < schedule.GetNumTiedNodes(g); ++t) {
                if (schedule.GetNode(schedule.GetTiedNode(g, t)) != Node)
                    continue;
                const int attrib = schedule.GetTiedNodeInput(g, t, port);
                if (attrib == -1) {
                    static_cast<TNodeValueParameter*>(Type().GetInput(port))->SetValue(value);
                    continue;
                }
                TParticleBuffer& buffer = *Document().GetEngine().GetGroup(g);
                buffer.ForEachValue(attrib, schedule.GetAttributeUsage(g, attrib), 0,
                                    buffer.GetNumParticles(),
                                    [&](float* at) { std::copy(value, value + count, at); });
            }
    }
    void ExpectMessage(const std::function<void()>& prepare, const TTexts& messages, int button = Sample)
    {
        prepare();
        Shown.clear();
        Open([&](QDialog& dialog) {
            std::vector<double> before;
            for (int i = 0; i < 6; ++i)
                before.push_back(ValueOf(dialog, i));
            MeetMessage();
            Click(dialog, button);
            if (messages.size() == 1)
                ExpectSides(dialog, before);
        });
        EXPECT_EQ(Shown, messages);
    }

    // Turns the loop that the dialog waits in, as far as it gets while a test stands in it.
    static bool Turn(const std::function<bool()>& condition, int turns = 100000)
    {
        const QDeadlineTimer end(Patience * 1000);
        for (int i = 0; i < turns && !end.hasExpired(); ++i) {
            if (condition())
                return true;
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            QThread::msleep(1);
        }
        return condition();
    }

    std::unique_ptr<TSampleDocument> Loaded;
    TToolNode* Node = nullptr;
};

} // namespace

TEST_F(NodeProperties, ARenderNodeHasAllFields)
{
    Type().SetRenderPriority(17);
    Type().SetFlag(FL_STATICBOUNDS, true);
    Type().BoundsMin = TVector3(-1, -2.5f, -3);
    Type().BoundsMax = TVector3(1, 2, 3.0625f);
    Open([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QString("Node Properties"));
        EXPECT_EQ(Find<QLineEdit>(dialog, Name).text(), QString("Sprite Render Stage"));
        EXPECT_EQ(dialog.focusWidget(), &Find<QLineEdit>(dialog, Name));
        TTexts labels;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            if (!label->text().isEmpty())
                labels.push_back(label->text().toStdString());
        EXPECT_EQ(labels, (TTexts{"Name:", "Render priority:", "Lower priortiy nodes render first",
                                  "Static BB min x:", "y:", "z:", "max:", "y:", "z:"}));
        const QDoubleSpinBox& priority = Find<QDoubleSpinBox>(dialog, Priority);
        EXPECT_EQ(priority.text(), QString("17"));
        EXPECT_EQ(priority.minimum(), 0);
        EXPECT_EQ(priority.maximum(), 255);
        EXPECT_EQ(Find<QCheckBox>(dialog, Dynamic).text(), QString("Dynamic Bounding Box"));
        EXPECT_EQ(Find<QCheckBox>(dialog, Static).text(), QString("Static Bounding Box"));
        EXPECT_FALSE(Find<QCheckBox>(dialog, Dynamic).isChecked());
        EXPECT_TRUE(Find<QCheckBox>(dialog, Static).isChecked());
        ExpectSides(dialog, {-1, -2.5, -3, 1, 2, 3.0625});
        EXPECT_EQ(Find<QDoubleSpinBox>(dialog, Sides[5]).text(), QString("3.0625"));
        EXPECT_EQ(Find<QPushButton>(dialog, Sample).text(), QString("Sample"));
        EXPECT_EQ(Find<QPushButton>(dialog, Record).text(), QString("Record"));
    });
}

TEST_F(NodeProperties, EveryControlHasANameForAssistiveTools)
{
    Open([](QDialog& dialog) {
        EXPECT_GT(ExpectNames(dialog), 10);
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&Find<QDoubleSpinBox>(dialog, Sides[4]))
                      ->text(QAccessible::Name),
                  QString("Static bounding box, greatest y"));
    });
}

TEST_F(NodeProperties, AnotherNodeHasItsNameOnly)
{
    for (const char* className : {"TEmitter", "TGravity", "TAge"}) {
        Node = FindNode(className);
        Open([](QDialog& dialog) {
            EXPECT_TRUE(IsShown(dialog, Name));
            for (const int id : {Priority, Dynamic, Static, Sides[0], Sides[5], Sample, Record})
                EXPECT_EQ(dialog.findChild<QWidget*>(NameOf(id)), nullptr) << id;
        });
    }
    Rename("Falling");
    EXPECT_EQ(Text(Type().Name), "Falling");
}

TEST_F(NodeProperties, OkMakesOneOperationOfAllChanges)
{
    const int before = CountOperations();
    Accept([](QDialog& dialog) {
        Type(dialog, "Drops");
        Type(Find<QWidget>(dialog, Priority), "40");
        Click(dialog, Dynamic);
        Click(dialog, Static);
        for (int i = 0; i < 6; ++i)
            Type(Find<QWidget>(dialog, Sides[i]), std::to_string(i - 3).c_str());
    });
    EXPECT_EQ(CountOperations(), before + 1);
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Text(Type().Name), "Drops");
    EXPECT_EQ(Type().GetRenderPriority(), 40);
    EXPECT_TRUE(Type().HasFlag(FL_DYNAMICBOUNDS));
    EXPECT_TRUE(Type().HasFlag(FL_STATICBOUNDS));
    EXPECT_EQ(Type().BoundsMin, TVector3(-3, -2, -1));
    EXPECT_EQ(Type().BoundsMax, TVector3(0, 1, 2));
    Document().Undo();
    EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    EXPECT_EQ(Type().GetRenderPriority(), 0);
    EXPECT_FALSE(Type().HasFlag(FL_DYNAMICBOUNDS));
    EXPECT_FALSE(Type().HasFlag(FL_STATICBOUNDS));
    EXPECT_EQ(Type().BoundsMin, TVector3());
    EXPECT_EQ(Type().BoundsMax, TVector3());
}

TEST_F(NodeProperties, NothingChangedIsNoOperation)
{
    const int before = CountOperations();
    Accept([](QDialog&) {});
    Accept([](QDialog& dialog) {
        Type(dialog, "Sprite Render Stage");
        Click(dialog, Static);
        Click(dialog, Static);
    });
    EXPECT_EQ(CountOperations(), before);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(NodeProperties, CancelEscapeAndTheCloseBoxChangeNothing)
{
    const int before = CountOperations();
    const auto edit = [](QDialog& dialog) {
        Type(dialog, "Drops");
        Click(dialog, Static);
    };
    Open([&](QDialog& dialog) {
        edit(dialog);
        Click(dialog, Cancel);
        EXPECT_FALSE(dialog.isVisible());
    });
    Open([&](QDialog& dialog) {
        edit(dialog);
        QTest::keyClick(&Find<QWidget>(dialog, Sides[2]), Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    Open([&](QDialog& dialog) {
        edit(dialog);
        dialog.close();
    });
    EXPECT_EQ(CountOperations(), before);
    EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    EXPECT_TRUE(Shown.empty());
}

TEST_F(NodeProperties, ReturnIsOk)
{
    for (const int id : {Name, Priority, Dynamic, Static, Sides[3], Sample, Record}) {
        const std::string name = "Drops " + std::to_string(id);
        Type().SetFlag(FL_STATICBOUNDS, true);
        Open([&](QDialog& dialog) {
            Type(dialog, name.c_str());
            QWidget& control = Find<QWidget>(dialog, id);
            control.setFocus();
            QTest::keyClick(&control, Qt::Key_Return);
            EXPECT_FALSE(dialog.isVisible()) << id;
        });
        EXPECT_EQ(Text(Type().Name), name);
    }
}

TEST_F(NodeProperties, TabWalksTheFields)
{
    Type().SetFlag(FL_STATICBOUNDS, true);
    Open([](QDialog& dialog) {
        std::vector<int> ids = {Priority, Dynamic, Static};
        ids.insert(ids.end(), Sides, Sides + 6);
        ids.insert(ids.end(), {Sample, Record, Ok, Cancel, Name});
        for (const int id : ids) {
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(dialog.focusWidget()->objectName(), NameOf(id));
        }
    });
}

TEST_F(NodeProperties, TheSidesAreEnabledWithTheStaticBox)
{
    Open([](QDialog& dialog) {
        const auto areEnabled = [&dialog](bool enabled) {
            for (const int id : Sides)
                if (Find<QWidget>(dialog, id).isEnabled() != enabled)
                    return false;
            return true;
        };
        EXPECT_TRUE(areEnabled(false));
        Click(dialog, Dynamic);
        EXPECT_TRUE(areEnabled(false));
        Click(dialog, Static);
        EXPECT_TRUE(areEnabled(true));
        // The two boxes know nothing of each other.
        EXPECT_TRUE(Find<QCheckBox>(dialog, Dynamic).isChecked());
        Click(dialog, Static);
        EXPECT_TRUE(areEnabled(false));
    });
}

TEST_F(NodeProperties, EachPairIsPutInOrder)
{
    Accept([](QDialog& dialog) {
        Click(dialog, Static);
        const char* const texts[] = {"5", "1", "0", "-5", "2", "0"};
        for (int i = 0; i < 6; ++i)
            Type(Find<QWidget>(dialog, Sides[i]), texts[i]);
    });
    EXPECT_EQ(Type().BoundsMin, TVector3(-5, 1, 0));
    EXPECT_EQ(Type().BoundsMax, TVector3(5, 2, 0));
}

TEST_F(NodeProperties, WhatWasNotChangedIsKept)
{
    Type().SetFlag(FL_STATICBOUNDS, true);
    Type().BoundsMin = TVector3(0.123456f, -3e7f, 4);
    Type().BoundsMax = TVector3(0.654321f, 3e7f, 2);
    Accept([](QDialog& dialog) {
        EXPECT_EQ(ValueOf(dialog, 1), -1000000);
        EXPECT_EQ(ValueOf(dialog, 4), 1000000);
        Type(Find<QWidget>(dialog, Priority), "9");
    });
    EXPECT_EQ(Type().GetRenderPriority(), 9);
    EXPECT_EQ(Type().BoundsMin, TVector3(0.123456f, -3e7f, 4));
    EXPECT_EQ(Type().BoundsMax, TVector3(0.654321f, 3e7f, 2));
    Accept([](QDialog& dialog) { Type(Find<QWidget>(dialog, Sides[3]), "7"); });
    EXPECT_EQ(Type().BoundsMin, TVector3(0.123456f, -3e7f, 4));
    EXPECT_EQ(Type().BoundsMax, TVector3(7, 3e7f, 2));
}

TEST_F(NodeProperties, PriorityIs0To255)
{
    const auto type = [this](const char* text) {
        Accept([text](QDialog& dialog) { Type(Find<QWidget>(dialog, Priority), text); });
        return Type().GetRenderPriority();
    };
    EXPECT_EQ(type("255"), 255);
    EXPECT_EQ(type("256"), 255);
    EXPECT_EQ(type("-4"), 0);
}

TEST_F(NodeProperties, AnEmptyNameIsNotTaken)
{
    const int before = CountOperations();
    Open([](QDialog& dialog) {
        EXPECT_EQ(NoteOf(dialog, "namenote"), "");
        Type(dialog, "");
        EXPECT_NE(NoteOf(dialog, "namenote"), "");
        Click(dialog, Ok);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    EXPECT_EQ(CountOperations(), before);
    // What else was changed is taken.
    Accept([](QDialog& dialog) {
        Type(dialog, "");
        Type(Find<QWidget>(dialog, Priority), "3");
    });
    EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    EXPECT_EQ(Type().GetRenderPriority(), 3);
}

TEST_F(NodeProperties, TheNameOfATypeOfAnotherClassIsNotTaken)
{
    for (const char* name : {"Gravity", "gRAVITY", "Quad Render Stage"}) {
        Open([name](QDialog& dialog) {
            Type(dialog, name);
            EXPECT_NE(NoteOf(dialog, "namenote"), "");
            Click(dialog, Ok);
        });
        EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    }
    Open([](QDialog& dialog) {
        Type(dialog, "Gravity");
        Type(dialog, "Gravity 2");
        EXPECT_EQ(NoteOf(dialog, "namenote"), "");
    });
    // Its own type's name, in another spelling, is one of its class.
    Rename("sprite render stage");
    EXPECT_EQ(Text(Type().Name), "sprite render stage");
}

TEST_F(NodeProperties, TheNameOfAnotherTypeOfTheSameClassIsTaken)
{
    TNodeType* twin = App.Type("Sprite Render Stage").Clone();
    twin->Name = "Sprite Twin";
    App.Get().GetNodeTypes().AddType(twin);
    Rename("Sprite Twin");
    EXPECT_EQ(Text(Type().Name), "Sprite Twin");
}

TEST_F(NodeProperties, ANameThatNoFileHoldsIsNotTaken)
{
    const std::string longest(4095, 'x');
    const auto rename = [this](const std::string& name) {
        Accept([&name](QDialog& dialog) {
            Find<QLineEdit>(dialog, Name).setText(QString::fromStdString(name));
        });
    };
    rename(longest + "x");
    EXPECT_EQ(Text(Type().Name), "Sprite Render Stage");
    rename(longest);
    EXPECT_EQ(Text(Type().Name), longest);
}

TEST_F(NodeProperties, ARenamedNodeSavesLoadsAndExportsAsBefore)
{
    const auto exported = [this](TDocument& document, const char* leaf) {
        TErrorList errors;
        EXPECT_EQ(document.BatchExport(App.Path(leaf).c_str(), errors), BR_DONE);
        return ReadBytes(App.Path(leaf));
    };
    Load("campfire", "TEmitter");
    const std::string before = exported(Document(), "before.efx");
    for (const char* className : {"TEmitter", "TAge", "TShaper", "TSpriteRenderStage"}) {
        Node = FindNode(className);
        Rename((std::string("My ") + className).c_str());
    }
    EXPECT_EQ(exported(Document(), "renamed.efx"), before);
    ASSERT_TRUE(Document().SaveAs(App.Path("renamed.effect").c_str()));
    TDocument loaded(App.Get());
    ASSERT_TRUE(loaded.Load(App.Path("renamed.effect").c_str()));
    EXPECT_TRUE(loaded.GetLoadNotes().empty());
    int renamed = 0;
    for (int i = 0; i < loaded.GetGraph()->GetNumNodes(); ++i)
        renamed += Text(loaded.GetGraph()->GetNode(i)->GetNodeType()->Name).rfind("My ", 0) == 0;
    EXPECT_EQ(renamed, 4);
    EXPECT_EQ(exported(loaded, "loaded.efx"), before);
}

TEST_F(NodeProperties, ARenamedNodeIsNamedInErrors)
{
    Rename("Drops");
    TNodeError error(Node, "is wet");
    TString text;
    error.GetText(text);
    EXPECT_EQ(Text(text), "Node \"Drops\" : is wet");
}

TEST_F(NodeProperties, ARenamedNodeIsNamedInWhatIsReportedOfTheSchedule)
{
    Rename("Drops");
    TErrorList errors;
    ASSERT_TRUE(Document().CreateSchedule(errors));
    const std::string dump = LogOf([&] { Document().GetSchedule().Dump(); });
    EXPECT_NE(dump.find("] Drops ("), std::string::npos);
    EXPECT_NE(dump.find("] Gravity ("), std::string::npos);
    EXPECT_EQ(dump.find("Sprite Render Stage"), std::string::npos);
}

TEST_F(NodeProperties, SampleFillsTheSixSides)
{
    Loaded->Run(1);
    PutAll(10, 20, 30);
    const int before = CountOperations();
    Accept([](QDialog& dialog) {
        Click(dialog, Static);
        Click(dialog, Sample);
        ExpectSides(dialog, {5, 15, 25, 15, 25, 35});
    });
    EXPECT_EQ(Type().BoundsMin, TVector3(5, 15, 25));
    EXPECT_EQ(Type().BoundsMax, TVector3(15, 25, 35));
    EXPECT_EQ(CountOperations(), before + 1);
    EXPECT_TRUE(Shown.empty());
    // What the field cannot show to the last place is kept all the same.
    Loaded->Run(1);
    PutAll(0.123456f, 0, 0);
    Accept([](QDialog& dialog) { Click(dialog, Sample); });
    EXPECT_EQ(Type().BoundsMax[0], 5.123456f);
}

TEST_F(NodeProperties, SampleNeedsARunningEffect)
{
    ExpectMessage([this] { Document().ClearEngine(); }, {NotRunning});
    ExpectMessage([] {}, {NotRunning}, Record);
}

TEST_F(NodeProperties, SampleNeedsTheNodeInTheSchedule)
{
    ExpectMessage(
        [this] {
            TAddGraphNodeOp* op = new TAddGraphNodeOp(Document(), App.Type("Sprite Render Stage"), 0, 0);
            Node = op->GetNode();
            Document().ApplyOperation(op);
        },
        {"Could not find node in schedule"});
}

TEST_F(NodeProperties, SampleNeedsAnInputForThePlace)
{
    ExpectMessage([this] { Type().GetInput(Type().FindInput("Transform"))->Name = "Somewhere"; },
                  {"Could not find a suitably named input in the render node to sample positions from. "
                   "Looking for \"Transform\" or \"Position\""});
}

TEST_F(NodeProperties, SampleNeedsAConnectedPlace)
{
    const int port = Type().FindInput("Transform");
    TEffectEdge* edge = Node->GetInput(port);
    ExpectMessage([&] { Node->SetInput(port, nullptr); }, {"Position field of render node is not connected"});
    Node->SetInput(port, edge);
}

TEST_F(NodeProperties, SampleNeedsParticles)
{
    ExpectMessage([this] { Document().RebuildSchedule(true); }, {NoParticles});
}

TEST_F(NodeProperties, WithoutAScaleSampleGoesOnFromCentres)
{
    Loaded->Run(1);
    PutAll(10, 20, 30);
    Type().GetInput(Type().FindInput("Scale"))->Name = "Largeness";
    Open([this](QDialog& dialog) {
        MeetMessage();
        Click(dialog, Sample);
        ExpectSides(dialog, {10, 20, 30, 10, 20, 30});
    });
    EXPECT_EQ(Shown,
              TTexts{"Could not scale attribute - reverting to sampling from particle centre positions"});
}

TEST_F(NodeProperties, WithoutAVelocitySampleGoesOnFromCentres)
{
    Load("sparks", "TVelocityTrailRenderStage");
    Loaded->Run(1);
    PutAll(10, 20, 30);
    Type().GetInput(Type().FindInput("Velocity"))->Name = "Speed";
    Open([this](QDialog& dialog) {
        MeetMessage();
        Click(dialog, Sample);
        ExpectSides(dialog, {10, 20, 30, 10, 20, 30});
    });
    EXPECT_EQ(Shown,
              TTexts{"Could not velocity attribute - reverting to sampling from particle centre positions"});
}

TEST_F(NodeProperties, ThePreviewRunsWhileTheDialogIsOpen)
{
    TRunningApp running(Document());
    bool closed = false;
    Meet("dialog120", [&](QDialog&) {
        const float before = Document().GetEngine().GetTime();
        Once([&, before] { return Document().GetEngine().GetTime() > before + 0.2f; },
             [&closed] {
                 closed = true;
                 QApplication::activeModalWidget()->close();
             });
    });
    TNodePropertiesDialog dialog(Document(), *Node, App.Get().GetNodeTypes());
    dialog.Run(nullptr);
    EXPECT_TRUE(closed);
}

// What stands over the dialog may have come up in the middle of work.
TEST_F(NodeProperties, ThePreviewStandsStillUnderAMessage)
{
    TRunningApp running(Document());
    Type().GetInput(Type().FindInput("Transform"))->Name = "Somewhere";
    int before = 0;
    Meet("message", [&](QDialog& box) {
        before = running.Passes;
        const bool ended = Turn([] { return false; }, 20);
        EXPECT_FALSE(ended);
        EXPECT_EQ(running.Passes, before);
        box.accept();
    });
    Open([](QDialog& dialog) { Click(dialog, Sample); });
}

// The box that Record shows grows with the frames, until it is switched off.
TEST_F(NodeProperties, RecordGrowsTheBoxOverAllFrames)
{
    Loaded->Run(1);
    PutAll(0, 0, 0);
    TRunningApp running(Document());
    running.IsPaused = true;
    std::vector<float> places;
    running.Work = [&] {
        if (places.empty())
            return;
        TErrorList errors;
        ASSERT_TRUE(Document().UpdateEngine(0.02f, errors));
        PutAll(places.front(), 0, 0);
        places.erase(places.begin());
    };
    Open([&](QDialog& dialog) {
        const auto shows = [&dialog](const char* note) {
            return Turn([&] { return NoteOf(dialog, "recordnote") == note; });
        };
        Click(dialog, Static);
        Click(dialog, Record);
        EXPECT_TRUE(Find<QPushButton>(dialog, Record).isChecked());
        EXPECT_EQ(NoteOf(dialog, "recordnote"), "Recording: 1 frame");
        EXPECT_FALSE(Find<QWidget>(dialog, Sample).isEnabled());
        EXPECT_TRUE(Find<QDoubleSpinBox>(dialog, Sides[0]).isReadOnly());
        ExpectSides(dialog, {-5, -5, -5, 5, 5, 5});
        places = {4};
        EXPECT_TRUE(shows("Recording: 2 frames"));
        ExpectSides(dialog, {-5, -5, -5, 9, 5, 5});
        places = {-20, 1};
        EXPECT_TRUE(shows("Recording: 4 frames"));
        ExpectSides(dialog, {-25, -5, -5, 9, 5, 5});
        // A preview that is paused adds nothing, and says so.
        EXPECT_TRUE(shows("Recording: 4 frames, paused"));
        places = {1};
        EXPECT_TRUE(shows("Recording: 5 frames"));
        EXPECT_TRUE(shows("Recording: 5 frames, paused"));
        Click(dialog, Record);
        EXPECT_EQ(NoteOf(dialog, "recordnote"), "Recorded 5 frames");
        EXPECT_FALSE(Find<QPushButton>(dialog, Record).isChecked());
        EXPECT_TRUE(Find<QWidget>(dialog, Sample).isEnabled());
        EXPECT_FALSE(Find<QDoubleSpinBox>(dialog, Sides[0]).isReadOnly());
        places = {100};
        EXPECT_TRUE(Turn([&] { return places.empty(); }));
        ExpectSides(dialog, {-25, -5, -5, 9, 5, 5});
        Click(dialog, Ok);
    });
    EXPECT_EQ(Type().BoundsMin, TVector3(-25, -5, -5));
    EXPECT_EQ(Type().BoundsMax, TVector3(9, 5, 5));
    EXPECT_TRUE(Shown.empty());
}

TEST_F(NodeProperties, OkTakesWhatWasRecordedSoFar)
{
    Loaded->Run(1);
    PutAll(1, 1, 1);
    Accept([](QDialog& dialog) { Click(dialog, Record); });
    EXPECT_EQ(Type().BoundsMin, TVector3(-4, -4, -4));
    EXPECT_EQ(Type().BoundsMax, TVector3(6, 6, 6));
}

TEST_F(NodeProperties, ARecordWithoutAParticleTellsSoAtItsEnd)
{
    Document().RebuildSchedule(true);
    const TVector3 before = Type().BoundsMax;
    Accept([this](QDialog& dialog) {
        Click(dialog, Record);
        EXPECT_TRUE(Shown.empty());
        MeetMessage();
        Click(dialog, Record);
    });
    EXPECT_EQ(Shown, TTexts{NoParticles});
    EXPECT_EQ(Type().BoundsMax, before);
}

TEST_F(NodeProperties, ARecordEndsWithTheEffect)
{
    Loaded->Run(1);
    TRunningApp running(Document());
    running.IsPaused = true;
    Open([&](QDialog& dialog) {
        Click(dialog, Record);
        MeetMessage();
        Document().ClearEngine();
        EXPECT_TRUE(Turn([&] { return !Find<QPushButton>(dialog, Record).isChecked() && !Shown.empty(); }));
    });
    EXPECT_EQ(Shown, TTexts{NotRunning});
}

TEST_F(NodeProperties, OnASmallScreenTheFieldsAreScrolled)
{
    Open([](QDialog& dialog) {
        dialog.resize(300, 180);
        Settle();
        EXPECT_LE(dialog.width(), 300);
        EXPECT_LE(dialog.height(), 180);
        EXPECT_GT(Find<QScrollArea>(dialog, 1009).verticalScrollBar()->maximum(), 0);
        EXPECT_TRUE(dialog.rect().contains(Find<QWidget>(dialog, Ok).geometry()));
    });
}

// Everything can be read, on screens of whatever scale.
class ScaledProperties : public NodeProperties
{
protected:
    static void ExpectRoom(QDialog& dialog)
    {
        Settle();
        QScrollArea& frame = Find<QScrollArea>(dialog, 1009);
        EXPECT_EQ(frame.verticalScrollBar()->maximum(), 0);
        EXPECT_EQ(frame.horizontalScrollBar()->maximum(), 0);
        const QWidget* page = dialog.findChild<QWidget*>("nodeproperties");
        for (const QWidget* child : page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            EXPECT_TRUE(page->rect().contains(child->geometry())) << child->objectName().toStdString();
            EXPECT_GE(child->width(), child->minimumSizeHint().width());
            EXPECT_GE(child->height(), child->minimumSizeHint().height());
        }
    }
};

TEST_F(ScaledProperties, TheDialogHasRoomForItsTexts)
{
    Loaded->Run(1);
    Open([](QDialog& dialog) {
        ExpectRoom(dialog);
        Click(dialog, Static);
        Click(dialog, Record);
        ExpectRoom(dialog);
        Picture(dialog, "nodeproperties-render");
        Type(dialog, "Gravity");
        ExpectRoom(dialog);
        Picture(dialog, "nodeproperties-name");
    });
    Node = FindNode("TGravity");
    Open([](QDialog& dialog) {
        ExpectRoom(dialog);
        Picture(dialog, "nodeproperties-other");
    });
}
