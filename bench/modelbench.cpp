#include "bench/benchfolder.h"
#include "bench/benchtable.h"
#include "bench/graphs.h"

#include "library/containers/image/image.h"
#include "library/containers/log.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/error.h"
#include "tools/samplemaker/startsettings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>

namespace {

namespace fs = std::filesystem;

constexpr int NodeCounts[] = {10, 50, 200, 1000};
constexpr int LargeNodes = 1000;
constexpr int LargeHistory = 10000;
// What an artist feels as a pause.
constexpr double MostMilliseconds = 50;

TCindermillApp* GetApp()
{
    static const TLogCapture quiet([](const char*, void*) {}, nullptr);
    static TCindermillApp app(new TStartSettings);
    static const bool good = [] {
        TErrorList errors;
        if (!app.InitHeadless())
            return false;
        app.LoadNodeTypes(CINDERMILL_SOURCE_DIR "/NodeTypes", errors);
        app.GetResourceLocator().AddSearchDirectory(CINDERMILL_SOURCE_DIR "/samples");
        return errors.empty();
    }();
    return good ? &app : nullptr;
}

std::string ReadBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TDocument& GetGraph(TGraphShape shape, int nodes)
{
    static std::map<std::pair<int, int>, std::unique_ptr<TSampleBuilder>> effects;
    std::unique_ptr<TSampleBuilder>& effect = effects[{shape, nodes}];
    if (effect == nullptr) {
        effect = std::make_unique<TSampleBuilder>(*GetApp());
        BuildGraph(*effect, shape, nodes);
    }
    return effect->GetDocument();
}

TDocument& GetGraph(const benchmark::State& state)
{
    return GetGraph(static_cast<TGraphShape>(state.range(0)), static_cast<int>(state.range(1)));
}

void CreateSchedule(benchmark::State& state)
{
    TDocument& document = GetGraph(state);
    TEffectSchedule schedule;
    for (auto _ : state) {
        TErrorList errors;
        if (!schedule.Create(*document.GetGraph(), errors)) {
            state.SkipWithError("no schedule");
            return;
        }
    }
}

void ResolveTypes(benchmark::State& state)
{
    TDocument& document = GetGraph(state);
    for (auto _ : state)
        ResolvePolytypes(*document.GetGraph());
}

void Walk(benchmark::State& state)
{
    TDocument& document = GetGraph(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(WalkGraph(*document.GetGraph()));
}

// A document of a thousand nodes and a history of ten thousand steps, as a file.
const std::string& GetLargeFile()
{
    static const std::string path = [] {
        TSampleBuilder effect(*GetApp());
        BuildGraph(effect, GS_SYSTEMS, LargeNodes);
        effect.GetDocument().GetOperationStack()->Clear(effect.GetDocument());
        AddHistory(effect.GetDocument(), LargeHistory);
        std::string file = GetBenchFolder().GetPath("large.effect");
        return effect.GetDocument().SaveAs(file.c_str()) ? file : std::string();
    }();
    return path;
}

void LoadDocument(benchmark::State& state)
{
    for (auto _ : state) {
        auto document = std::make_unique<TDocument>(*GetApp());
        if (!document->BatchLoad(GetLargeFile().c_str()) || !document->CheckLoaded()) {
            state.SkipWithError(document->GetLoadError().Print());
            return;
        }
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
}

void SaveDocument(benchmark::State& state)
{
    TDocument document(*GetApp());
    if (!document.BatchLoad(GetLargeFile().c_str())) {
        state.SkipWithError(document.GetLoadError().Print());
        return;
    }
    const std::string path = GetBenchFolder().GetPath("saved.effect");
    for (auto _ : state) {
        if (!document.SaveAs(path.c_str())) {
            state.SkipWithError("no file");
            return;
        }
    }
}

// All that an autosave keeps the windows waiting for; a thread of its own writes the bytes.
void ImageDocument(benchmark::State& state)
{
    TDocument document(*GetApp());
    if (!document.BatchLoad(GetLargeFile().c_str())) {
        state.SkipWithError(document.GetLoadError().Print());
        return;
    }
    for (auto _ : state) {
        vector<uint8_t> bytes;
        if (!document.GetImage(bytes, 0)) {
            state.SkipWithError("no image");
            return;
        }
        benchmark::DoNotOptimize(bytes.data());
    }
}

void CopyImage(benchmark::State& state)
{
    const std::string bytes = ReadBytes(GetLargeFile());
    for (auto _ : state) {
        const std::string copy = bytes;
        benchmark::DoNotOptimize(copy.data());
    }
}

void ReadFile(benchmark::State& state, const std::string& path)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadBytes(path));
}

void WriteFile(benchmark::State& state, const std::string& path)
{
    const std::string bytes = ReadBytes(path);
    const std::string copy = GetBenchFolder().GetPath("copy");
    for (auto _ : state)
        WriteBytes(copy, bytes);
}

std::string GetLargestSample()
{
    std::string path;
    uintmax_t size = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(CINDERMILL_SOURCE_DIR "/samples")) {
        if (entry.path().extension() == ".effect" && entry.file_size() > size) {
            size = entry.file_size();
            path = entry.path().string();
        }
    }
    return path;
}

bool Export(TDocument& document, const std::string& path)
{
    TErrorList errors;
    return document.BatchExport(path.c_str(), errors) == BR_DONE;
}

bool LoadLargestSample(TDocument& document)
{
    TErrorList errors;
    return document.BatchLoad(GetLargestSample().c_str()) && document.ResolveTypes(errors);
}

// The largest sample as the console reads it; empty if it cannot be had.
const std::string& GetExportedSample()
{
    static const std::string path = [] {
        TDocument document(*GetApp());
        std::string file = GetBenchFolder().GetPath("sample.efx");
        return LoadLargestSample(document) && Export(document, file) ? file : std::string();
    }();
    return path;
}

// Schedule, engine and file, as the batch program does it.
void ExportSample(benchmark::State& state)
{
    TDocument document(*GetApp());
    const std::string path = GetBenchFolder().GetPath("measured.efx");
    bool good = LoadLargestSample(document);
    for (auto _ : state)
        good = good && Export(document, path);
    if (!good)
        state.SkipWithError("no export");
}

const std::vector<std::string>& GetStagePrograms()
{
    static const std::vector<std::string> programs = [] {
        std::vector<std::string> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(CINDERMILL_BINARY_DIR "/shaders"))
            if (entry.path().extension() == ".sho")
                files.push_back(ReadBytes(entry.path().string()));
        return files;
    }();
    return programs;
}

uint32_t WordAt(const std::string& bytes, size_t offset, size_t count)
{
    uint32_t word = 0;
    for (size_t i = 0; i < count; ++i)
        word = word << 8 | static_cast<uint8_t>(bytes[offset + i]);
    return word;
}

// The store of vertex programs keeps what it once translated, so the words are given to the translation
// itself.
void TranslateVertexProgram(const std::string& file)
{
    const size_t block = WordAt(file, 22, 2);
    const size_t microcode = block + WordAt(file, block + 18, 2);
    std::vector<TVertexInstruction> code(WordAt(file, block, 2));
    for (size_t i = 0; i < 4 * code.size(); ++i)
        code[i / 4].Words[i % 4] = WordAt(file, microcode + 4 * i, 4);
    TQdxVertexProgram program;
    program.Translate(code.data(), static_cast<int>(code.size()));
    benchmark::DoNotOptimize(program.GetText().Print());
}

void TranslateStages(benchmark::State& state)
{
    uint32_t targets[TQdxFragmentProgram::NumUnits];
    std::fill(std::begin(targets), std::end(targets), static_cast<uint32_t>(TY_Target2D));
    for (auto _ : state) {
        for (const std::string& file : GetStagePrograms()) {
            TQdxShader shader;
            if (!shader.Parse(reinterpret_cast<const uint8_t*>(file.data()), static_cast<int>(file.size()))) {
                state.SkipWithError("no shader");
                return;
            }
            TString text;
            if (shader.IsFragmentProgram())
                shader.GetFragmentProgram()->GetVariantText(targets, 0, text);
            else
                TranslateVertexProgram(file);
            benchmark::DoNotOptimize(text.Print());
        }
    }
}

void CopyStages(benchmark::State& state)
{
    for (auto _ : state)
        for (const std::string& file : GetStagePrograms()) {
            std::string copy(file);
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        }
}

constexpr int PictureSize = 1024;
constexpr int PictureBytes = 4 * PictureSize * PictureSize;

struct TPictureFormat
{
    const char* Name;
    const char* FourCC;
    int BitsPerPixel;
    int Bits;
    uint32_t Masks[4];
};

constexpr TPictureFormat PictureFormats[] = {
    {"DXT1", "DXT1", 4, 0, {}},
    {"DXT3", "DXT3", 8, 0, {}},
    {"DXT5", "DXT5", 8, 0, {}},
    {"32 bits", nullptr, 32, 32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}},
};

// A square of noise.
std::string MakePicture(const TPictureFormat& format)
{
    uint32_t header[32] = {};
    std::memcpy(&header[0], "DDS ", 4);
    header[1] = 124;
    header[2] = 0x1007;
    header[3] = header[4] = PictureSize;
    header[19] = 32;
    header[20] = format.FourCC != nullptr ? 4 : 0x41;
    if (format.FourCC != nullptr)
        std::memcpy(&header[21], format.FourCC, 4);
    header[22] = static_cast<uint32_t>(format.Bits);
    std::copy(std::begin(format.Masks), std::end(format.Masks), header + 23);
    header[27] = 0x1000;
    std::string bytes(reinterpret_cast<const char*>(header), sizeof header);
    uint32_t noise = 1;
    for (int i = 0; i < PictureSize * PictureSize / 8 * format.BitsPerPixel; ++i) {
        noise = noise * 1664525 + 1013904223;
        bytes += static_cast<char>(noise >> 24);
    }
    return bytes;
}

void SetMegabytes(benchmark::State& state)
{
    state.counters[ItemCounter] = PictureBytes / 1048576.0;
}

void DecodePicture(benchmark::State& state)
{
    const TPictureFormat& format = PictureFormats[state.range(0)];
    const std::string path = GetBenchFolder().GetPath(std::string(format.Name) + ".dds");
    WriteBytes(path, MakePicture(format));
    TImage image;
    for (auto _ : state) {
        if (!image.LoadDds(path.c_str())) {
            state.SkipWithError("no picture");
            return;
        }
    }
    SetMegabytes(state);
}

void CopyPixels(benchmark::State& state)
{
    const std::vector<char> source(PictureBytes, 1);
    std::vector<char> dest(PictureBytes);
    for (auto _ : state) {
        std::memcpy(dest.data(), source.data(), source.size());
        benchmark::DoNotOptimize(dest.data());
        benchmark::ClobberMemory();
    }
    SetMegabytes(state);
}

// A row with its baseline and, for a largest case, one that holds the time itself against the limit.
void AddRows(const std::string& label, const std::string& baselineLabel, const std::string& measured,
             const std::string& baseline, bool isLargest)
{
    AddRow({label + " / " + baselineLabel, measured, baseline, 0});
    if (isLargest)
        AddRow({label, measured, "", MostMilliseconds});
}

void RegisterGraphs()
{
    for (int shape = 0; shape < GS_NUMSHAPES; ++shape)
        for (const int nodes : NodeCounts) {
            const auto add = [&](const char* name, void (*function)(benchmark::State&)) {
                benchmark::RegisterBenchmark(name, function)->Args({shape, nodes})->MinTime(0.05);
            };
            add("CreateSchedule", &CreateSchedule);
            add("ResolveTypes", &ResolveTypes);
            add("Walk", &Walk);
            const std::string arguments = "/" + std::to_string(shape) + "/" + std::to_string(nodes);
            const std::string what =
                ", " + std::to_string(nodes) + " nodes, " + GetShapeName(static_cast<TGraphShape>(shape));
            AddRows("schedule" + what, "walk", "CreateSchedule" + arguments, "Walk" + arguments,
                    nodes == LargeNodes);
            AddRows("polytypes" + what, "walk", "ResolveTypes" + arguments, "Walk" + arguments,
                    nodes == LargeNodes);
        }
}

void RegisterFiles()
{
    const auto add = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)->MinTime(0.05);
    };
    add("LoadDocument", &LoadDocument);
    add("ReadDocument", [](benchmark::State& state) { ReadFile(state, GetLargeFile()); });
    add("SaveDocument", &SaveDocument);
    add("WriteDocument", [](benchmark::State& state) { WriteFile(state, GetLargeFile()); });
    add("ImageDocument", &ImageDocument);
    add("CopyImage", &CopyImage);
    add("ExportSample", &ExportSample);
    add("WriteSample", [](benchmark::State& state) { WriteFile(state, GetExportedSample()); });
    add("TranslateStages", &TranslateStages);
    add("CopyStages", &CopyStages);
    const std::string what =
        std::to_string(LargeNodes) + " nodes, " + std::to_string(LargeHistory) + " operations";
    AddRows("load, " + what, "plain read", "LoadDocument", "ReadDocument", true);
    AddRows("save, " + what, "plain write", "SaveDocument", "WriteDocument", true);
    AddRows("autosave's pause, " + what, "copy of it", "ImageDocument", "CopyImage", true);
    AddRows("export, largest sample", "plain write", "ExportSample", "WriteSample", true);
    AddRows("translation, all stage programs", "copy of them", "TranslateStages", "CopyStages", true);
}

void RegisterPictures()
{
    benchmark::RegisterBenchmark("CopyPixels", &CopyPixels)->MinTime(0.05);
    for (size_t i = 0; i < std::size(PictureFormats); ++i) {
        benchmark::RegisterBenchmark("DecodePicture", &DecodePicture)
            ->Arg(static_cast<int>(i))
            ->MinTime(0.05);
        AddRows(std::string("DDS decoding, a megabyte of pixels, ") + PictureFormats[i].Name, "memory copy",
                "DecodePicture/" + std::to_string(i), "CopyPixels", true);
    }
}

} // namespace

bool RegisterBenchmarks()
{
    if (GetApp() == nullptr) {
        std::fprintf(stderr, "The node types cannot be loaded\n");
        return false;
    }
    if (GetStagePrograms().empty() || GetLargeFile().empty() || GetExportedSample().empty()) {
        std::fprintf(stderr, "The stage programs, the large document or the exported sample cannot be had\n");
        return false;
    }
    RegisterGraphs();
    RegisterFiles();
    RegisterPictures();
    return true;
}
