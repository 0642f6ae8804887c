#include "support/sampledocument.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/trace/nodetrace.h"
#include "particles/effectgraph/usage.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>

// The numbers of a trace are those that the batch program prints of the same run.

namespace {

constexpr int NumFrames = 40;
// Values of one sample, at least.
constexpr int Plenty = 1500;
constexpr float FrameTime = 0.05f;

struct TRow
{
    int Global = -1;
    std::vector<float> Values;
};

// What the batch program prints of one attribute after one frame, by rising particle index.
struct TColumn
{
    int Group;
    int Attribute;
    bool operator<(const TColumn& other) const
    {
        return Group != other.Group ? Group < other.Group : Attribute < other.Attribute;
    }
};
using TFrame = std::map<TColumn, std::vector<TRow>>;

std::vector<std::string> Fields(const std::string& line)
{
    std::vector<std::string> fields(1);
    for (const char ch : line) {
        if (ch == ',')
            fields.emplace_back();
        else
            fields.back() += ch;
    }
    return fields;
}

std::vector<TFrame> Parse(const std::string& table)
{
    std::vector<TFrame> frames;
    std::istringstream in(table);
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        const std::vector<std::string> fields = Fields(line);
        frames.resize(std::stoul(fields.at(0)));
        TRow row;
        row.Global = std::stoi(fields.at(4));
        for (size_t i = 7; i < fields.size() && !fields[i].empty(); ++i)
            row.Values.push_back(std::strtof(fields[i].c_str(), nullptr));
        frames.back()[TColumn{std::stoi(fields.at(2)), std::stoi(fields.at(5))}].push_back(row);
    }
    return frames;
}

// One output port of one node at one of its places, which writes an attribute last.
struct TSource
{
    TNodeTrace* Trace;
    int Place;
    int Port;
    TColumn Column;
    int NodeUsage;
    int AttributeUsage;
};

class BatchTrace : public testing::Test
{
protected:
    std::string RunBatch(const std::string& name, unsigned seed)
    {
        const std::string out = Folder.Path("out");
        const std::string command =
            "XDG_CONFIG_HOME='" + Folder.GetFolder() + "' '" + CINDERMILL_BATCH + "' --node-types '" +
            SourcePath("NodeTypes") + "' --resources '" + SourcePath("samples") + "' run '" +
            SourcePath("samples/" + name + ".effect") + "' --frames " + std::to_string(NumFrames) +
            " --dt 0.05 --seed " + std::to_string(seed) + " >'" + out + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return ReadBytes(out);
    }
    void TearDown() override { TRandom::ClearDefaultSeed(); }

    // Runs the sample with all its nodes traced, and compares after each frame.
    void Compare(const std::string& name, const std::string& table)
    {
        SCOPED_TRACE(name);
        const std::vector<TFrame> frames = Parse(table);
        ASSERT_EQ(frames.size(), static_cast<size_t>(NumFrames));
        TSampleDocument sample(App, name);
        TErrorList errors;
        if (Seed != 0) {
            TRandom::SetDefaultSeed(Seed);
            sample->RebuildSchedule(true);
        }
        std::vector<std::unique_ptr<TNodeTrace>> traces;
        const std::vector<TSource> sources = Trace(*sample, traces);
        ASSERT_FALSE(sources.empty());
        NumCompared = 0;
        Living.clear();
        NextGlobal.clear();
        for (const TFrame& frame : frames) {
            ASSERT_TRUE(sample->UpdateEngine(FrameTime, errors));
            for (const TSource& source : sources)
                CompareSource(frame, source);
            for (int group = 0; group < sample->GetSchedule().GetNumGroups(); ++group)
                SetLiving(group, GlobalsOf(frame, group, sample->GetSchedule()));
        }
        EXPECT_GT(NumCompared, Plenty);
    }

    unsigned Seed = 0;

private:
    static std::vector<TSource> Trace(TDocument& document, std::vector<std::unique_ptr<TNodeTrace>>& traces)
    {
        const TEffectSchedule& schedule = document.GetSchedule();
        std::vector<TSource> sources;
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
            TToolNode* node = static_cast<TToolNode*>(document.GetGraph()->GetNode(i));
            traces.push_back(std::make_unique<TNodeTrace>(document, *node));
            if (!traces.back()->Connect())
                continue;
            // The places go by the keys, group counting before place in the group.
            int place = 0;
            for (int key = 0; place < traces.back()->GetNumPlaces(); ++key) {
                const int group = key % schedule.GetNumGroups();
                const int tied = key / schedule.GetNumGroups();
                if (tied >= schedule.GetNumTiedNodes(group) ||
                    schedule.GetNode(schedule.GetTiedNode(group, tied)) != node)
                    continue;
                EXPECT_EQ(traces.back()->GetPlaceGroup(place), group);
                AddSources(schedule, *traces.back(), place++, group, tied, sources);
            }
        }
        return sources;
    }
    static void AddSources(const TEffectSchedule& schedule, TNodeTrace& trace, int place, int group, int tied,
                           std::vector<TSource>& sources)
    {
        const TNodeType& type = *trace.GetNode().GetNodeType();
        for (int port = 0; port < type.GetNumOutputs(); ++port) {
            const int attribute = schedule.GetTiedNodeOutput(group, tied, port);
            if (attribute == -1 || !IsLastWriter(schedule, group, tied, attribute) ||
                schedule.GetAttributeType(group, attribute) != type.GetOutputType(port))
                continue;
            sources.push_back(TSource{&trace, place, port, TColumn{group, attribute},
                                      schedule.GetNodeUsage(schedule.GetTiedNode(group, tied)),
                                      schedule.GetAttributeUsage(group, attribute)});
        }
    }
    // Nodes that work on one value one after the other share its attribute; those that make particles come
    // before the others.
    static bool IsLastWriter(const TEffectSchedule& schedule, int group, int tied, int attribute)
    {
        const auto usageOf = [&](int t) { return schedule.GetNodeUsage(schedule.GetTiedNode(group, t)); };
        for (int t = 0; t < schedule.GetNumTiedNodes(group); ++t) {
            const int node = schedule.GetTiedNode(group, t);
            const bool isLater =
                usageOf(t) == usageOf(tied) ? t > tied : t != tied && usageOf(tied) == TU_EMITTER;
            for (int port = 0; port < schedule.GetNode(node)->GetNodeType()->GetNumOutputs(); ++port)
                if (isLater && schedule.GetTiedNodeOutput(group, t, port) == attribute)
                    return false;
        }
        return true;
    }
    static std::vector<int> GlobalsOf(const TFrame& frame, int group, const TEffectSchedule& schedule)
    {
        std::vector<int> globals;
        for (int a = 0; a < schedule.GetNumAttributes(group); ++a) {
            const int usage = schedule.GetAttributeUsage(group, a);
            const auto rows = frame.find(TColumn{group, a});
            if ((usage != TU_PROCESS && usage != TU_RENDER) || rows == frame.end())
                continue;
            for (const TRow& row : rows->second)
                globals.push_back(row.Global);
            break;
        }
        return globals;
    }
    void SetLiving(int group, const std::vector<int>& globals)
    {
        Living[group] = globals;
        for (const int global : globals)
            NextGlobal[group] = std::max(NextGlobal[group], global + 1);
    }
    // Whether it is known of all particles printed which of those that the nodes saw they are: those of the
    // frame before but for the oldest, which gave way, then all new ones. After other deaths the ids have
    // slid meanwhile, and of particles that bear one number nobody knows which have gone.
    bool AreKnown(const std::vector<TRow>& rows, int group)
    {
        const std::vector<int>& before = Living[group];
        size_t old = 0;
        while (old < rows.size() && rows[old].Global < NextGlobal[group])
            ++old;
        if (old > before.size())
            return false;
        for (size_t i = 0; i < old; ++i)
            if (rows[i].Global != before[before.size() - old + i])
                return false;
        for (size_t i = old; i < rows.size(); ++i)
            if (rows[i].Global != NextGlobal[group] + static_cast<int>(i - old))
                return false;
        return old == before.size() || std::set<int>(before.begin(), before.end()).size() == before.size();
    }
    void CompareSource(const TFrame& frame, const TSource& source)
    {
        const auto found = frame.find(source.Column);
        if (found == frame.end())
            return;
        const std::vector<TRow>& rows = found->second;
        TNodeTrace& trace = *source.Trace;
        trace.SelectPlace(source.Place);
        const bool perParticle = source.AttributeUsage == TU_PROCESS || source.AttributeUsage == TU_RENDER;
        if (!perParticle) {
            trace.SelectParticle(0);
            if (trace.GetNumEntries(source.Port) > 0)
                CompareEntry(trace, source.Port, 0, rows.at(0));
            return;
        }
        if (source.NodeUsage != TU_PROCESS || !AreKnown(rows, source.Column.Group))
            return;
        // Of particles that bear one number, the one of the lowest index was written last.
        std::map<int, int> bearers;
        for (const TRow& row : rows) {
            const int back = bearers[row.Global]++;
            if (row.Global > trace.GetLastParticle())
                continue;
            trace.SelectParticle(row.Global);
            CompareEntry(trace, source.Port, back, row);
        }
    }
    // The entry so many before the newest.
    void CompareEntry(const TNodeTrace& trace, int port, int back, const TRow& row)
    {
        const int entry = trace.GetNumEntries(port) - 1 - back;
        ASSERT_GE(entry, 0) << row.Global;
        ASSERT_EQ(trace.GetNumComponents(port), static_cast<int>(row.Values.size()));
        for (size_t c = 0; c < row.Values.size(); ++c) {
            const float value = trace.GetEntry(port, entry, static_cast<int>(c));
            if (std::isnan(row.Values[c])) {
                ASSERT_TRUE(std::isnan(value));
            } else {
                ASSERT_EQ(value, row.Values[c])
                    << Text(trace.GetNode().GetNodeType()->Name) << ", port " << port << ", component " << c;
            }
        }
        ++NumCompared;
    }

    TTempFolder Folder;
    TTestApp App;
    TQuiet Quiet;
    // Of each group, the numbers of its particles after the frame before, and the first one not seen yet.
    std::map<int, std::vector<int>> Living;
    std::map<int, int> NextGlobal;
    int NumCompared = 0;
};

// Deterministic are the samples of which the batch program prints the same whatever it is seeded with:
// nothing that is printed draws from a generator.
TEST_F(BatchTrace, OfEveryDeterministicSampleTheTracesAreWhatTheBatchProgramPrints)
{
    int count = 0;
    for (const std::string& name : GetSampleNames()) {
        const std::string table = RunBatch(name, 1);
        if (table != RunBatch(name, 2))
            continue;
        ++count;
        Compare(name, table);
    }
    EXPECT_GE(count, 2);
}

// With one seed for all generators every effect can be repeated.
TEST_F(BatchTrace, OfEverySeededSampleTheTracesAreWhatTheBatchProgramPrints)
{
    Seed = 7;
    for (const std::string& name : GetSampleNames())
        Compare(name, RunBatch(name, Seed));
}

} // namespace
