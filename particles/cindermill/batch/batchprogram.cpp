#include "particles/cindermill/batch/batchprogram.h"

#include "library/containers/append.h"
#include "library/containers/image/image.h"
#include "library/containers/nametocrc.h"
#include "library/containers/strtoid.h"
#include "library/system/file.h"
#include "particles/cindermill/batch/runtable.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/export/efxlisting.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr int StatusDone = 0;
constexpr int StatusErrors = 1;
constexpr int StatusUsage = 2;

// The log of what is told in other ways, or to no one.
void DropLine(const char* text, void* data)
{
    (void)text;
    (void)data;
}

void AppendLine(const char* text, void* data)
{
    vector<char>& log = *static_cast<vector<char>*>(data);
    const int length = static_cast<int>(std::strlen(text));
    memcpy(Extend(log, length), text, static_cast<size_t>(length));
}

void PrintLine(const char* line, void* data)
{
    (void)data;
    std::printf("%s\n", line);
}

// The errors in the wording of the batch export.
void PrintErrors(TBatchResult result, const TErrorList& errors)
{
    TDocument::LogBatchResult(result, errors);
}

// The first reason that a library gives for refusing a file, for the message about it.
void KeepFirstLine(const char* text, void* data)
{
    TString& line = *static_cast<TString*>(data);
    if (line.IsEmpty()) {
        line = text;
        line.Trim();
    }
}

// As the driver gets it, or as translation leaves it.
void GetShaderText(const TQdxShader& shader, bool raw, TString& text)
{
    if (!shader.IsFragmentProgram()) {
        text = shader.GetVertexProgram()->GetText();
        return;
    }
    if (raw) {
        text = shader.GetFragmentProgram()->GetText();
        return;
    }
    uint32_t targets[TQdxFragmentProgram::NumUnits];
    for (uint32_t& target : targets)
        target = TY_Target2D;
    shader.GetFragmentProgram()->GetVariantText(targets, 0, text);
}

void PrintPorts(const char* name, int type, bool& first)
{
    std::printf("%s%s:%s", first ? "" : ", ", name, GetTypeName(type));
    first = false;
}

} // namespace

const TBatchProgram::TCommandEntry TBatchProgram::Commands[] = {
    {"types", "", &TBatchProgram::Types, true},
    {"check", "FILE...", &TBatchProgram::Check, false},
    {"report", "FILE", &TBatchProgram::Report, false},
    {"dump", "FILE", &TBatchProgram::Dump, false},
    {"export", "FILE OUT.efx", &TBatchProgram::Export, false},
    {"run", "FILE [--frames N] [--dt S] [--seed K]", &TBatchProgram::RunEngine, false},
    {"efx", "FILE.efx", &TBatchProgram::Efx, false},
    {"translate", "FILE.sho [--raw]", &TBatchProgram::Translate, false},
    {"image", "IN OUT --format N", &TBatchProgram::Image, false},
    {"resave", "IN OUT", &TBatchProgram::Resave, false},
    {"hash", "NAME...", &TBatchProgram::Hash, false},
};

TBatchProgram::TBatchProgram() = default;

TBatchProgram::~TBatchProgram() = default;

int TBatchProgram::ReportUsage(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputs("\nusage: cindermill-batch [--node-types DIR] [--resources DIR] COMMAND ARGUMENTS\n", stderr);
    for (const TCommandEntry& entry : Commands)
        std::fprintf(stderr, "    %s %s\n", entry.Name, entry.Usage);
    return StatusUsage;
}

bool TBatchProgram::ReadOptions(TArguments& arguments)
{
    for (;;) {
        TString* option = arguments.TakeIf("--node-types")  ? &NodeTypesDirectory
                          : arguments.TakeIf("--resources") ? &ResourcesDirectory
                                                            : nullptr;
        if (option == nullptr)
            return true;
        if (arguments.IsEmpty())
            return false;
        *option = arguments.Take();
    }
}

int TBatchProgram::Run(int argc, char** argv)
{
    TArguments arguments(argc - 1, argv + 1);
    if (!ReadOptions(arguments))
        return ReportUsage("An option lacks its directory");
    const char* word = arguments.Take();
    if (word == nullptr)
        return ReportUsage("No command is given");
    for (const TCommandEntry& entry : Commands)
        if (std::strcmp(entry.Name, word) == 0)
            return Start(entry, arguments);
    return ReportUsage("There is no command \"%s\"", word);
}

// A failed assertion ends the command: what it was writing has not replaced anything.
int TBatchProgram::Start(const TCommandEntry& command, TArguments& arguments)
{
    int status = StatusErrors;
    TString text;
    const bool finished = RunGuarded(
        [&] {
            App.Reset(new TCindermillApp(OpenSettingsStore()));
            if (!App->InitHeadless())
                return;
            if (!ResourcesDirectory.IsEmpty())
                App->GetResourceLocator().AddSearchDirectory(ResourcesDirectory);
            if (command.NeedsNodeTypes)
                NodeTypesSound = LoadNodeTypes();
            status = (this->*command.Function)(arguments);
        },
        text);
    if (!finished) {
        std::fprintf(stderr, "%s\n", text.Print());
        status = StatusErrors;
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("The standard output cannot be written\n", stderr);
        status = status == StatusUsage ? StatusUsage : StatusErrors;
    }
    return status;
}

void TBatchProgram::ReadNodeTypes(TErrorList& errors)
{
    TString directory = NodeTypesDirectory;
    if (directory.IsEmpty() && !App->FindNodeTypesDirectory(directory)) {
        directory = App->GetProgramDirectory();
        directory += "\\NodeTypes";
    }
    App->LoadNodeTypes(directory, errors);
    NodeTypesRead = true;
}

bool TBatchProgram::LoadNodeTypes()
{
    TErrorList errors;
    ReadNodeTypes(errors);
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        text.Trim();
        std::fprintf(stderr, "%s\n", text.Print());
    }
    return errors.empty();
}

int TBatchProgram::Types(TArguments& arguments)
{
    if (!arguments.IsEmpty())
        return ReportUsage("types takes no arguments");
    const TNodeTypeLibrary& library = App->GetNodeTypes();
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType& type = *library.GetType(i);
        std::printf("%s\t%s\t%s\t", type.Name.Print(), GetUsageName(type.Category), type.ClassName.Print());
        bool first = true;
        for (int p = 0; p < type.GetNumInputs(); ++p)
            PrintPorts(type.GetInput(p)->Name.Print(), type.GetBasicInputType(p), first);
        std::putchar('\t');
        first = true;
        for (int p = 0; p < type.GetNumOutputs(); ++p)
            PrintPorts(type.GetOutput(p).Name.Print(), type.GetOutput(p).Type, first);
        std::putchar('\n');
    }
    return NodeTypesSound ? StatusDone : StatusErrors;
}

bool TBatchProgram::LoadFile(TDocument& document, const char* path)
{
    bool loaded = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        loaded = document.BatchLoad(path) && CheckLoaded(document);
    }
    if (!loaded)
        std::fprintf(stderr, "%s: %s\n", path, document.GetLoadError().Print());
    for (const TError* note : document.GetLoadNotes())
        std::fprintf(stderr, "%s: %s\n", path, note->GetMessage().Print());
    return loaded;
}

// The library is read only for a file whose own links may need it; what is wrong with it is told by "types".
bool TBatchProgram::CheckLoaded(TDocument& document)
{
    if (document.CheckLoaded(false))
        return true;
    TErrorList ignored;
    if (!NodeTypesRead)
        ReadNodeTypes(ignored);
    return document.CheckLoaded();
}

// The types of polytype ports are not in the file: they are settled once, here.
bool TBatchProgram::LoadGraph(TDocument& document, const char* path)
{
    if (!LoadFile(document, path))
        return false;
    TString text;
    if (RunGuarded([&] { document.GetGraph()->GraphChanged(); }, text))
        return true;
    std::fprintf(stderr, "%s: %s\n", path, text.Print());
    return false;
}

bool TBatchProgram::CheckFile(const char* path)
{
    TDocument document(*App);
    if (!LoadGraph(document, path))
        return false;
    TErrorList errors;
    bool sound = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        sound = document.CreateSchedule(errors) && document.InitEngine(errors, true);
    }
    if (sound && errors.empty())
        return true;
    std::fprintf(stderr, "%s: ", path);
    PrintErrors(sound ? BR_DONE : BR_SCHEDULEFAILED, errors);
    return false;
}

int TBatchProgram::Check(TArguments& arguments)
{
    if (arguments.IsEmpty())
        return ReportUsage("check needs a file");
    int status = StatusDone;
    while (const char* path = arguments.Take())
        if (!CheckFile(path))
            status = StatusErrors;
    return status;
}

int TBatchProgram::Report(TArguments& arguments)
{
    if (arguments.GetNumLeft() != 1)
        return ReportUsage("report takes one file");
    TDocument document(*App);
    if (!LoadGraph(document, arguments.Take()))
        return StatusErrors;
    TString report;
    {
        TLogCapture quiet(DropLine, nullptr);
        document.GetReport(report);
    }
    std::fputs(report.Print(), stdout);
    return StatusDone;
}

int TBatchProgram::Dump(TArguments& arguments)
{
    if (arguments.GetNumLeft() != 1)
        return ReportUsage("dump takes one file");
    TDocument document(*App);
    if (!LoadGraph(document, arguments.Take()))
        return StatusErrors;
    TErrorList errors;
    vector<char> log;
    bool created = false;
    {
        TLogCapture capture(AppendLine, &log);
        created = document.CreateSchedule(errors);
    }
    if (!created) {
        PrintErrors(BR_SCHEDULEFAILED, errors);
        return StatusErrors;
    }
    std::fwrite(log.data(), 1, static_cast<size_t>(log.size()), stdout);
    return StatusDone;
}

int TBatchProgram::Export(TArguments& arguments)
{
    if (arguments.GetNumLeft() != 2)
        return ReportUsage("export takes a file and the file to write");
    const char* in = arguments.Take();
    const char* out = arguments.Take();
    if (IsSameFile(in, out)) {
        std::fprintf(stderr, "%s: This is the effect itself, which its export would replace\n", out);
        return StatusErrors;
    }
    TDocument document(*App);
    if (!LoadGraph(document, in))
        return StatusErrors;
    TErrorList errors;
    TBatchResult result;
    {
        TLogCapture quiet(DropLine, nullptr);
        result = document.BatchExport(out, errors);
    }
    PrintErrors(result, errors);
    return result == BR_DONE && errors.empty() ? StatusDone : StatusErrors;
}

int TBatchProgram::RunEngine(TArguments& arguments)
{
    const char* path = arguments.Take();
    if (path == nullptr)
        return ReportUsage("run needs a file");
    int frames = 100;
    float dt = 0.02f;
    while (!arguments.IsEmpty()) {
        uint32_t seed = 0;
        if (arguments.TakeIf("--frames")) {
            if (!ParseWhole(arguments.Take(), 0, INT_MAX, frames))
                return ReportUsage("--frames takes a whole number");
        } else if (arguments.TakeIf("--dt")) {
            if (!ParseReal(arguments.Take(), dt))
                return ReportUsage("--dt takes a number of seconds");
        } else if (arguments.TakeIf("--seed")) {
            if (!ParseUnsigned(arguments.Take(), seed))
                return ReportUsage("--seed takes an unsigned 32-bit number");
            TRandom::SetDefaultSeed(seed);
        } else {
            return ReportUsage("run does not know \"%s\"", arguments.Take());
        }
    }
    TDocument document(*App);
    if (!LoadGraph(document, path))
        return StatusErrors;
    TErrorList errors;
    bool inited = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        inited = document.CreateSchedule(errors) && document.InitEngineWithoutRender(errors);
    }
    if (!inited) {
        PrintErrors(BR_SCHEDULEFAILED, errors);
        return StatusErrors;
    }
    TRunTable table(document.GetEngine(), stdout);
    table.WriteHeader();
    for (int frame = 1; frame <= frames; ++frame) {
        document.GetEngine().Update(dt);
        table.WriteFrame(frame);
    }
    return StatusDone;
}

int TBatchProgram::Efx(TArguments& arguments)
{
    if (arguments.GetNumLeft() != 1)
        return ReportUsage("efx takes one file");
    const char* path = arguments.Take();
    TString fault;
    if (ListEfx(path, PrintLine, nullptr, fault))
        return StatusDone;
    std::fprintf(stderr, "%s: %s\n", path, fault.Print());
    return StatusErrors;
}

int TBatchProgram::Translate(TArguments& arguments)
{
    const char* path = arguments.Take();
    const bool raw = arguments.TakeIf("--raw");
    if (path == nullptr || !arguments.IsEmpty())
        return ReportUsage("translate takes one file");
    TString reason;
    TQdxShader* shader = nullptr;
    {
        TLogCapture capture(KeepFirstLine, &reason);
        shader = TQdxShader::LoadShaderFile(path);
    }
    if (shader == nullptr) {
        std::fprintf(stderr, "%s: %s\n", path, reason.IsEmpty() ? "The file cannot be read" : reason.Print());
        return StatusErrors;
    }
    TString text;
    GetShaderText(*shader, raw, text);
    std::fputs(text.Print(), stdout);
    return StatusDone;
}

int TBatchProgram::Image(TArguments& arguments)
{
    const char* in = arguments.Take();
    const char* out = arguments.Take();
    int format = 0;
    if (out == nullptr || !arguments.TakeIf("--format") ||
        !ParseWhole(arguments.Take(), 0, IF_NUMFORMATS - 1, format) || !arguments.IsEmpty())
        return ReportUsage(
            "image takes a picture, the file to write, and --format with a number from 0 to %d",
            IF_NUMFORMATS - 1);
    TImage image;
    TString reason;
    bool loaded = false;
    {
        TLogCapture capture(KeepFirstLine, &reason);
        loaded = image.Load(in);
    }
    if (!loaded) {
        if (reason.IsEmpty())
            GetReadFault(in, reason);
        if (reason.IsEmpty())
            reason = "This is no sound DDS or HVT picture";
        std::fprintf(stderr, "%s: %s\n", in, reason.Print());
        return StatusErrors;
    }
    if (image.Save(out, format, reason))
        return StatusDone;
    std::fprintf(stderr, "%s: The picture cannot be written: %s\n", out, reason.Print());
    return StatusErrors;
}

int TBatchProgram::Resave(TArguments& arguments)
{
    if (arguments.GetNumLeft() != 2)
        return ReportUsage("resave takes a file and the file to write");
    const char* in = arguments.Take();
    const char* out = arguments.Take();
    TDocument document(*App);
    if (!LoadFile(document, in))
        return StatusErrors;
    if (document.SaveAs(out))
        return StatusDone;
    const TString& reason = document.GetSaveError();
    if (reason.IsEmpty())
        std::fprintf(stderr, "%s: The file cannot be written: %s\n", out,
                     document.GetChunks().File.GetFault().Print());
    else
        std::fprintf(stderr, "%s: %s\n", out, reason.Print());
    return StatusErrors;
}

int TBatchProgram::Hash(TArguments& arguments)
{
    if (arguments.IsEmpty())
        return ReportUsage("hash needs a name");
    while (const char* name = arguments.Take())
        std::printf("%s\t%08x\t%08x\n", name, StrToID(name), NameToCrc(name));
    return StatusDone;
}
