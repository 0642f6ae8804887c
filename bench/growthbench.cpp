#include "bench/benchfolder.h"
#include "bench/benchtable.h"
#include "bench/longlists.h"

#include "library/containers/log.h"
#include "library/containers/owner.h"
#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/main/animation/animation.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/error.h"
#include "tools/samplemaker/startsettings.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

// How the time for one long list grows with the list: each benchmark runs at 10, 100 and 1,000 KB, and the
// table tells how much longer ten times as much takes.

namespace {

namespace fs = std::filesystem;

constexpr int Sizes[] = {10, 100, 1000};
constexpr int Kilobyte = 1000;
// Ten for what grows as the list does, and a little more for what is sorted or has left the caches; a list
// that each element walks along takes a hundred.
constexpr double MostGrowth = 30;

void WriteBytes(const std::string& path, const std::string& bytes)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The lists that a refresh compares one by one.
constexpr TTypeList RefreshedLists[] = {TL_ENUMVALUES, TL_GROUPMEMBERS, TL_PARAMETERS, TL_FOLLOWINGINPUTS,
                                        TL_OUTPUTS};

std::string GetTypeName(TTypeList list, int size)
{
    return std::string(GetListName(list)) + " " + std::to_string(size);
}

// The application over the types that the refreshed effects have in the library.
TCindermillApp* GetApp()
{
    static const TLogCapture quiet([](const char*, void*) {}, nullptr);
    static TCindermillApp app(new TStartSettings);
    static const bool good = [] {
        SetMessageForms([](const char*) {}, [](const char*) { return true; });
        for (const TTypeList list : RefreshedLists)
            for (const int size : Sizes)
                WriteBytes(GetBenchFolder().GetPath("types/" + GetTypeName(list, size) + ".xml"),
                           MakeTypeFile(list, size * Kilobyte, GetTypeName(list, size), false));
        TErrorList errors;
        if (!app.InitHeadless())
            return false;
        app.LoadNodeTypes(GetBenchFolder().GetPath("types").c_str(), errors);
        return errors.empty();
    }();
    return good ? &app : nullptr;
}

// One list at one size.
struct TWork
{
    // What is measured; false if it does not do what it should.
    std::function<bool()> Run;
    // What comes before each measurement; may be empty.
    std::function<bool()> Prepare;
};

using TMakeWork = std::function<TWork(int size)>;

// A benchmark is run again and again, to find how often it has to be, and for each repetition.
class TWorks
{
public:
    explicit TWorks(TMakeWork make) : Make(std::move(make)) {}
    const TWork& Use(int size)
    {
        const auto found = Works.find(size);
        return found != Works.end() ? found->second : Works.emplace(size, Make(size)).first->second;
    }

private:
    TMakeWork Make;
    std::map<int, TWork> Works;
};

void Measure(benchmark::State& state, TWorks& works)
{
    const TWork& work = works.Use(static_cast<int>(state.range(0)) * Kilobyte);
    for (auto _ : state) {
        if (work.Prepare != nullptr) {
            state.PauseTiming();
            const bool prepared = work.Prepare();
            state.ResumeTiming();
            if (!prepared) {
                state.SkipWithError("not prepared");
                return;
            }
        }
        if (!work.Run()) {
            state.SkipWithError("not done");
            return;
        }
    }
}

// Lists of ports have at most a thousand or so elements, and are walked along: their growth is only told.
bool IsBounded(TTypeList list)
{
    return list == TL_PARAMETERS || list == TL_FOLLOWINGINPUTS || list == TL_OUTPUTS;
}

// iterations: how often it is measured at a time, but for the longest list, which is once; 0 is as often as
// it takes to be sure of the time.
void Register(const std::string& name, const TMakeWork& make, double limit = MostGrowth, int iterations = 0)
{
    std::string id = name;
    for (char& ch : id)
        ch = ch == ' ' ? '_' : ch;
    AddGroup([=] {
        const auto works = std::make_shared<TWorks>(make);
        for (const int size : Sizes) {
            benchmark::internal::Benchmark* const registered = benchmark::RegisterBenchmark(
                id.c_str(), [works](benchmark::State& state) { Measure(state, *works); });
            registered->Arg(size);
            if (iterations > 0)
                registered->Iterations(size < Sizes[2] ? iterations : 1);
            else
                registered->MinTime(0.01);
        }
    });
    for (size_t i = 1; i < std::size(Sizes); ++i) {
        const std::string large = std::to_string(Sizes[i]);
        const std::string small = std::to_string(Sizes[i - 1]);
        AddRow({name + ", " + large + " / " + small + " KB", id + "/" + large, id + "/" + small, limit});
    }
}

bool ReadType(const std::string& path)
{
    TErrorList errors;
    TNodeType type;
    type.LoadXml(path.c_str(), errors);
    const TOwner<TNodeType> copy(type.Clone());
    return true;
}

TWork MakeTypeWork(TTypeList list, int size)
{
    const std::string path = GetBenchFolder().GetPath("type" + std::to_string(list) + std::to_string(size));
    WriteBytes(path, MakeTypeFile(list, size, "Type", false));
    return {[path] { return ReadType(path); }, nullptr};
}

bool OpenAndClose(const std::string& path, bool expected)
{
    TDocument document(*GetApp());
    return document.Load(path.c_str()) == expected;
}

TWork MakeOpenWork(TEffectList list, int size)
{
    const std::string path = GetBenchFolder().GetPath("effect" + std::to_string(list) + std::to_string(size));
    TDocument document(*GetApp());
    document.New();
    FillDocument(document, list, size);
    document.SaveUnchecked(path.c_str());
    return {[path, list] { return OpenAndClose(path, !IsRefused(list)); }, nullptr};
}

// An effect with a node of a type that the library has otherwise.
TWork MakeRefreshWork(TTypeList list, int size)
{
    const std::string path =
        GetBenchFolder().GetPath("refresh" + std::to_string(list) + std::to_string(size));
    WriteBytes(path, MakeTypeFile(list, size, GetTypeName(list, size / Kilobyte), true));
    TErrorList errors;
    TNodeType type;
    type.LoadXml(path.c_str(), errors);
    TDocument document(*GetApp());
    document.New();
    document.ApplyOperation(new TAddGraphNodeOp(document, type, 0, 0));
    document.SaveUnchecked(path.c_str());
    return {[path] { return OpenAndClose(path, true); }, nullptr};
}

// A filled document that lives as long as the work.
std::shared_ptr<TDocument> MakeDocument(TEffectList list, int size)
{
    auto document = std::make_shared<TDocument>(*GetApp());
    document->New();
    FillDocument(*document, list, size);
    return document;
}

TWork MakeSaveWork(TEffectList list, int size)
{
    const std::shared_ptr<TDocument> document = MakeDocument(list, size);
    const std::string path = GetBenchFolder().GetPath("saved");
    return {[document, path] { return document->SaveAs(path.c_str()); }, nullptr};
}

bool UndoAll(TDocument& document)
{
    while (document.CanUndo())
        document.Undo();
    return document.CanRedo();
}

bool RedoAll(TDocument& document)
{
    while (document.CanRedo())
        document.Redo();
    return document.CanUndo();
}

// The path of a file with the history; empty if it cannot be written.
std::string SaveHistory(TEffectList list, int size)
{
    const std::string path =
        GetBenchFolder().GetPath("history" + std::to_string(list) + std::to_string(size));
    return MakeDocument(list, size)->SaveAs(path.c_str()) ? path : std::string();
}

std::shared_ptr<TDocument> LoadHistory(const std::string& path)
{
    auto document = std::make_shared<TDocument>(*GetApp());
    return !path.empty() && document->Load(path.c_str()) ? document : nullptr;
}

std::shared_ptr<TDocument> MakeLoaded(TEffectList list, int size)
{
    return LoadHistory(SaveHistory(list, size));
}

TWork MakeUndoWork(TEffectList list, int size)
{
    const std::shared_ptr<TDocument> document = MakeLoaded(list, size);
    return {[document] { return document != nullptr && UndoAll(*document) && RedoAll(*document); }, nullptr};
}

// A step after all others were taken back.
TWork MakeDropWork(TEffectList list, int size)
{
    const std::string path = SaveHistory(list, size);
    const auto document = std::make_shared<std::shared_ptr<TDocument>>();
    return {[document] {
                (*document)->ApplyOperation(new TMoveGraphNodeOp(vector<TToolNode*>(), 1, 1));
                return !(*document)->CanRedo();
            },
            [document, path] {
                *document = LoadHistory(path);
                return *document != nullptr && UndoAll(**document);
            }};
}

void SelectAll(TDocument& document)
{
    document.ClearSelection();
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
        document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(i)), false);
}

TWork MakeDeleteWork(TEffectList list, int size)
{
    const std::shared_ptr<TDocument> document = MakeLoaded(list, size);
    return {[document] {
                document->ApplyOperation(new TDeleteGraphNodeOp(document->GetSelection()));
                const bool gone = document->GetGraph()->GetNumNodes() == 0;
                document->Undo();
                document->Redo();
                document->Undo();
                return gone && document->GetGraph()->GetNumNodes() > 0;
            },
            [document] {
                SelectAll(*document);
                return true;
            }};
}

TWork MakePasteWork(TEffectList list, int size)
{
    const std::shared_ptr<TDocument> document = MakeLoaded(list, size);
    return {[document] {
                const int before = document->GetGraph()->GetNumNodes();
                document->CopySelection();
                document->Paste();
                const bool done = document->GetGraph()->GetNumNodes() == 2 * before;
                document->Undo();
                return done;
            },
            [document] {
                SelectAll(*document);
                return true;
            }};
}

TWork MakeScheduleWork(TEffectList list, int size)
{
    const std::shared_ptr<TDocument> document = MakeLoaded(list, size);
    return {[document] {
                TErrorList errors;
                document->CreateSchedule(errors);
                return true;
            },
            nullptr};
}

TWork MakeAnimationWork(int size)
{
    const std::string path = GetBenchFolder().GetPath("animation" + std::to_string(size) + ".vori");
    WriteBytes(path, MakeAnimationFile(size));
    return {[path] {
                TAnimation animation;
                return animation.Load(path.c_str());
            },
            nullptr};
}

TWork MakeShaderWork(int size)
{
    std::string stage;
    for (const fs::directory_entry& entry : fs::directory_iterator(CINDERMILL_BINARY_DIR "/shaders")) {
        const std::string bytes = entry.path().extension() == ".sho" ? ReadBytes(entry.path().string()) : "";
        if (bytes.size() > 8 && (bytes[4] | bytes[5] | bytes[6] | bytes[7]) != 0)
            stage = bytes;
    }
    const std::string file = MakeShaderFile(stage, size);
    return {[file] {
                TQdxShader shader;
                return shader.Parse(reinterpret_cast<const uint8_t*>(file.data()),
                                    static_cast<int>(file.size()));
            },
            nullptr};
}

void RegisterEffects()
{
    const auto add = [](const char* what, TEffectList list, TWork (*make)(TEffectList, int),
                        int iterations = 0) {
        Register(
            std::string(what) + " " + GetListName(list), [=](int size) { return make(list, size); },
            MostGrowth, iterations);
    };
    for (int i = 0; i < EL_NUMEFFECTLISTS; ++i) {
        const TEffectList list = static_cast<TEffectList>(i);
        add("open", list, &MakeOpenWork);
        if (!IsRefused(list))
            add("save", list, &MakeSaveWork);
    }
    for (const TEffectList list : {EL_STEPS, EL_ADDITIONS, EL_MOVEDNODES}) {
        add("undo, redo", list, &MakeUndoWork);
        // Each takes a loaded document, which costs a thousand times the drop.
        add("drop", list, &MakeDropWork, 5);
    }
    for (const TEffectList list : {EL_NODES, EL_WIRES}) {
        add("delete all", list, &MakeDeleteWork);
        add("paste", list, &MakePasteWork);
        add("schedule", list, &MakeScheduleWork);
    }
}

} // namespace

bool RegisterBenchmarks()
{
    if (GetApp() == nullptr) {
        std::fprintf(stderr, "The node types cannot be loaded\n");
        return false;
    }
    for (int i = 0; i < TL_NUMTYPELISTS; ++i) {
        const TTypeList list = static_cast<TTypeList>(i);
        Register(
            std::string("node type, ") + GetListName(list),
            [list](int size) { return MakeTypeWork(list, size); }, IsBounded(list) ? 0 : MostGrowth);
    }
    for (const TTypeList list : RefreshedLists)
        Register(
            std::string("refresh, ") + GetListName(list),
            [list](int size) { return MakeRefreshWork(list, size); }, IsBounded(list) ? 0 : MostGrowth);
    Register("animation, keys", &MakeAnimationWork);
    Register("shader, instructions", &MakeShaderWork);
    RegisterEffects();
    return true;
}
