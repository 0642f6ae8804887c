#include "support/fakehost.h"
#include "support/randomgraph.h"
#include "support/sampledocument.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/export/efxfile.h"

#include <functional>

namespace {

TNames ShownErrors;

// Edits an effect as its windows do, and holds File, Export against the batch export of the saved file.
class ExportOfEdits : public testing::Test
{
protected:
    ExportOfEdits() : App(&Host)
    {
        ShownErrors.clear();
        SetMessageForms(nullptr, [](const char*) { return true; });
        SetDisplayErrors([](const char* title, const TErrorList& errors) {
            std::string text = title;
            for (const TError* error : errors) {
                TString line;
                error->GetText(line);
                text += std::string("|") + line.Print();
            }
            ShownErrors.push_back(text);
        });
    }
    ~ExportOfEdits() override
    {
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }

    // File, Export of the document. "" where it wrote nothing.
    std::string WindowExport(TDocument& document)
    {
        static int view;
        App.Get().SetActiveDocWindow(reinterpret_cast<TDocWindow*>(&view), &document);
        std::filesystem::remove(Path("window.efx"));
        Host.Choice = Path("window.efx");
        App.Get().ExportActive();
        App.Get().SetActiveDocWindow(nullptr, nullptr);
        return std::filesystem::exists(Path("window.efx")) ? ReadBytes(Path("window.efx")) : "";
    }
    // What the batch program makes of the file that the document would be saved as.
    std::string BatchExport(TDocument& document)
    {
        std::filesystem::remove(Path("batch.efx"));
        EXPECT_TRUE(document.GetChunks().Save(Path("saved.effect").c_str()));
        TDocument saved(App.Get());
        TErrorList errors;
        EXPECT_TRUE(saved.BatchLoad(Path("saved.effect").c_str()) && saved.CheckLoaded());
        if (!saved.ResolveTypes(errors) || saved.BatchExport(Path("batch.efx").c_str(), errors) != BR_DONE)
            return "";
        return ReadBytes(Path("batch.efx"));
    }
    // The two exports, which must be equal.
    std::string BothExports(TDocument& document)
    {
        const std::string window = WindowExport(document);
        EXPECT_EQ(window, BatchExport(document));
        return window;
    }
    static void Run(TDocument& document, int frames = 10)
    {
        TErrorList errors;
        for (int i = 0; i < frames; ++i)
            ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    }
    static float TimeOf(TDocument& document) { return document.GetEngine().GetTime(); }

    template <class TWork>
    static void ForEachParameter(TDocument& document, TWork&& work)
    {
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
            const TNodeType& type = *document.GetGraph()->GetNode(i)->GetNodeType();
            for (TNodeParameter* parameter : type.Parameters) {
                work(*parameter);
                if (parameter->Type == PK_GROUP)
                    for (TNodeParameter* child : static_cast<TNodeGroupParameter*>(parameter)->GetChildren())
                        work(*child);
            }
            for (TNodeParameter* input : type.Inputs)
                work(*input);
        }
    }
    // The first parameter of that name, of whatever node.
    static TNodeParameter* FindParameter(TDocument& document, const char* name)
    {
        TNodeParameter* found = nullptr;
        ForEachParameter(document, [&](TNodeParameter& parameter) {
            if (found == nullptr && parameter.Name.Compare(name) == 0)
                found = &parameter;
        });
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void SetInt(TDocument& document, TNodeParameter* parameter, int value)
    {
        ASSERT_EQ(parameter->Type, PK_INT);
        document.ApplyOperation(new TIntParamOp(static_cast<TNodeIntParameter*>(parameter), value));
    }
    static void SetScalar(TDocument& document, TNodeParameter* parameter, float value)
    {
        ASSERT_EQ(parameter->Type, TY_SCALAR);
        document.ApplyOperation(new TScalarParamOp(static_cast<TNodeScalarParameter*>(parameter), &value));
    }
    // Another number in its place.
    static void Edit(TDocument& document, TNodeParameter& parameter)
    {
        if (parameter.Type == PK_INT) {
            const int value = static_cast<TNodeIntParameter&>(parameter).Get();
            SetInt(document, &parameter, value / 2 + 3);
        } else if (parameter.Type == TY_SCALAR) {
            const float value = static_cast<TNodeScalarParameter&>(parameter).Get();
            SetScalar(document, &parameter, value * 0.75f + 0.125f);
        } else if (parameter.Type == PK_GROUP) {
            auto& group = static_cast<TNodeGroupParameter&>(parameter);
            document.ApplyOperation(new TGroupParamOp(&group, !group.Get()));
        } else if (parameter.Type == PK_ENUM) {
            auto& choice = static_cast<TNodeEnumParameter&>(parameter);
            const int next = (choice.GetIndex() + 1) % choice.GetValues().size();
            document.ApplyOperation(new TEnumParamOp(&choice, next));
        }
    }
    static void UndoAll(TDocument& document, int position)
    {
        while (document.GetOperationStack()->GetPosition() > position)
            document.Undo();
    }

    TQuiet Quiet;
    TFakeAppHost Host;
    TTestApp App;
};

// One parameter that the schedule takes its numbers from.
struct TSizeEdit
{
    const char* Name;
    std::function<void(TDocument&, TNodeParameter*)> Apply;
};

} // namespace

TEST_F(ExportOfEdits, CountsAndLifeTimesAreThoseOfTheMoment)
{
    const auto setInt = [](int value) {
        return
            [value](TDocument& document, TNodeParameter* parameter) { SetInt(document, parameter, value); };
    };
    const auto setScalar = [](float value) {
        return [value](TDocument& document, TNodeParameter* parameter) {
            SetScalar(document, parameter, value);
        };
    };
    const TSizeEdit edits[] = {
        {"Particle Count", setInt(50)}, {"Per frame max emission", setInt(40)}, {"Max Age", setScalar(2.5f)}};
    for (const bool runs : {false, true})
        for (const TSizeEdit& edit : edits) {
            SCOPED_TRACE(std::string(edit.Name) + (runs ? ", beside a running preview" : ""));
            TSampleDocument sample(App, "fountain");
            if (runs)
                Run(*sample);
            const float time = TimeOf(*sample);
            const std::string before = BothExports(*sample);
            ASSERT_FALSE(before.empty());
            edit.Apply(*sample, FindParameter(*sample, edit.Name));
            const std::string after = BothExports(*sample);
            EXPECT_NE(after, before);
            sample->Undo();
            EXPECT_EQ(BothExports(*sample), before);
            sample->Redo();
            EXPECT_EQ(BothExports(*sample), after);
            // What is exported is nothing to the preview.
            EXPECT_EQ(TimeOf(*sample), time);
            Run(*sample);
        }
    EXPECT_EQ(ShownErrors, TNames{});
}

TEST_F(ExportOfEdits, ALifeTimeOfAnEmitterIsThatOfTheMoment)
{
    for (const char* name : {"burst", "impact", "rain"}) {
        SCOPED_TRACE(name);
        TSampleDocument sample(App, name);
        const std::string before = BothExports(*sample);
        auto* group = static_cast<TNodeGroupParameter*>(FindParameter(*sample, "Max life time"));
        if (!group->Get())
            sample->ApplyOperation(new TGroupParamOp(group, true));
        const std::string bounded = BothExports(*sample);
        SetScalar(*sample, FindParameter(*sample, "Life Time"), 7.25f);
        const std::string after = BothExports(*sample);
        EXPECT_NE(after, before);
        EXPECT_NE(after, bounded);
        sample->Undo();
        EXPECT_EQ(BothExports(*sample), bounded);
    }
}

TEST_F(ExportOfEdits, EverySampleIsExportedAsTheBatchProgramDoes)
{
    for (const std::string& name : GetSampleNames()) {
        SCOPED_TRACE(name);
        TSampleDocument sample(App, name);
        const int position = sample->GetOperationStack()->GetPosition();
        Run(*sample);
        const std::string before = BothExports(*sample);
        ASSERT_FALSE(before.empty());
        ForEachParameter(*sample, [&](TNodeParameter& parameter) {
            if (parameter.Type == PK_INT || parameter.Type == TY_SCALAR)
                Edit(*sample, parameter);
        });
        const std::string after = BothExports(*sample);
        EXPECT_NE(after, before);
        UndoAll(*sample, position);
        EXPECT_EQ(BothExports(*sample), before);
        while (sample->CanRedo())
            sample->Redo();
        EXPECT_EQ(BothExports(*sample), after);
    }
}

TEST_F(ExportOfEdits, EveryNumberSwitchAndChoiceOfEverySampleCountsAtOnce)
{
    for (const std::string& name : GetSampleNames()) {
        TSampleDocument sample(App, name);
        const int position = sample->GetOperationStack()->GetPosition();
        vector<TNodeParameter*> parameters;
        ForEachParameter(*sample, [&](TNodeParameter& parameter) { parameters.push_back(&parameter); });
        for (TNodeParameter* parameter : parameters) {
            SCOPED_TRACE(name + ", " + parameter->Name.Print());
            Edit(*sample, *parameter);
            if (sample->GetOperationStack()->GetPosition() == position)
                continue;
            BothExports(*sample);
            UndoAll(*sample, position);
        }
    }
}

TEST_F(ExportOfEdits, ANodeThatWasAddedIsExportedAndThePreviewStartsAnew)
{
    TSampleDocument sample(App, "fountain");
    Run(*sample);
    sample->ApplyOperation(new TAddGraphNodeOp(*sample, App.Type("Wind"), 0, 0));
    EXPECT_GT(TimeOf(*sample), 0);
    EXPECT_FALSE(BothExports(*sample).empty());
    EXPECT_EQ(TimeOf(*sample), 0);
    Run(*sample);
    sample->Undo();
    EXPECT_FALSE(BothExports(*sample).empty());
    Run(*sample);
}

TEST_F(ExportOfEdits, AnEffectWithAnErrorIsNotExportedAndTellsIt)
{
    for (const bool runs : {false, true}) {
        TSampleDocument sample(App, "fountain");
        if (runs)
            Run(*sample);
        const std::string good = BothExports(*sample);
        Host.Taken();
        ShownErrors.clear();
        TNodeParameter* texture = FindParameter(*sample, "Texture");
        TString name = static_cast<TNodeTextureParameter*>(texture)->GetFileName();
        sample->ApplyOperation(new TTextureParamOp(static_cast<TNodeTextureParameter*>(texture), ""));
        sample->RebuildSchedule(true);
        ASSERT_FALSE(sample->GetEngine().IsInited());
        SetInt(*sample, FindParameter(*sample, "Particle Count"), 50);
        EXPECT_EQ(BothExports(*sample), "");
        EXPECT_EQ(Host.Taken(), TNames{}) << "nobody need choose a path for what is not written";
        EXPECT_EQ(ShownErrors, TNames{"Schedule errors|No texture specified in Quad Render Stage"});
        // Mended, it is exported with all that was edited meanwhile.
        sample->ApplyOperation(new TTextureParamOp(static_cast<TNodeTextureParameter*>(texture), name));
        const std::string mended = BothExports(*sample);
        EXPECT_FALSE(mended.empty());
        EXPECT_NE(mended, good);
    }
}

// An addition is no change of the shape until somebody schedules it: here it takes the effect's only way to
// work.
TEST_F(ExportOfEdits, AScheduleThatFailsForTheExportEmptiesThePreview)
{
    TSampleDocument sample(App, "fountain");
    Run(*sample);
    const std::unique_ptr<TNodeType> lost(App.Type("Wind").Clone());
    lost->ClassName = "TNoSuchClass";
    sample->ApplyOperation(new TAddGraphNodeOp(*sample, *lost, 0, 0));
    EXPECT_EQ(WindowExport(*sample), "");
    EXPECT_EQ(ShownErrors.size(), 1u);
    EXPECT_FALSE(sample->GetEngine().IsInited());
    sample->Undo();
    EXPECT_FALSE(BothExports(*sample).empty());
    Run(*sample);
}

TEST_F(ExportOfEdits, RandomEditsOfAnyKindAreExportedAsTheBatchProgramDoes)
{
    int exported = 0;
    for (uint32_t seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph graph(App.Get(), document, dice);
        graph.AddSystem();
        for (int i = 0; i < 8; ++i) {
            for (int edits = 0; edits < 4; ++edits)
                graph.Edit();
            if (!BothExports(document).empty())
                ++exported;
            TErrorList errors;
            document.UpdateEngine(0.02f, errors);
        }
    }
    EXPECT_GT(exported, 30);
}
