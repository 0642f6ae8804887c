#include "effectbench.h"

#include "particles/cindermill/graph/replay/differencesource.h"
#include "particles/cindermill/graph/replay/replayverdict.h"

#include <algorithm>
#include <ctime>

namespace {

// Values of nodes that hang on one another over a long way, all of which differ.
class TLongWay
{
public:
    explicit TLongWay(int length)
    {
        Emitter = Bench.AddPopulation();
        const TEffectBench::TShownValue value =
            Bench.AddShownValue(Emitter, TY_SCALAR, {"Result", TY_SCALAR});
        Nodes.push_back(value.Source);
        for (int i = 1; i < length; ++i) {
            TEffectNode* node = Bench.Add("TMultiply", TU_PROCESS, {{"A", TY_SCALAR}, {"B", TY_SCALAR}},
                                          {{"Result", TY_SCALAR}});
            Bench.Graph.Wire(Nodes.back(), 0, node, 0);
            Nodes.push_back(node);
        }
        Bench.Graph.Wire(Nodes.back(), 0, value.Stage, 2);
        TErrorList errors;
        LogOf([&] { EXPECT_TRUE(Bench.Schedule.Create(Bench.Graph.GetGraph(), errors)); });
        for (int group = 0; group < Bench.Schedule.GetNumGroups(); ++group)
            for (const TTiedNode& tied : Bench.Schedule.GetGroup(group).TiedNodes)
                if (std::find(Nodes.begin(), Nodes.end(), Bench.Schedule.GetNode(tied.Node)) != Nodes.end())
                    AddDifference(group, tied.Outputs[0]);
        for (const TEffectNode* node : Nodes)
            AddNote(node, false);
    }
    void AddNote(const TEffectNode* node, bool mayDiffer)
    {
        TReplayNote note;
        note.Text = "A note";
        note.Node = node;
        note.Group = 1;
        note.MayDiffer = mayDiffer;
        Report.AddNote(note);
    }

    TEffectBench Bench;
    TEffectNode* Emitter = nullptr;
    std::vector<TEffectNode*> Nodes;
    TReplayReport Report;

private:
    void AddDifference(int group, int attrib)
    {
        TReplayDifference difference;
        difference.Kind = DK_VALUE;
        difference.Preview = 1;
        difference.Times = 1;
        difference.Place.Frame = 1;
        difference.Place.Group = group;
        difference.Place.Attribute = attrib;
        difference.Place.Name = "Result";
        Report.Add(difference);
    }
};

// Of the processor, whatever else the machine does meanwhile.
double GetMilliseconds(std::clock_t since)
{
    return 1000.0 * static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
}

// The longest part, in milliseconds.
template <class TParts, class TWork>
double RunParts(TParts& parts, TWork&& work)
{
    double longest = 0;
    while (!parts.IsDone()) {
        const std::clock_t begin = std::clock();
        work();
        longest = std::max(longest, GetMilliseconds(begin));
    }
    return longest;
}

} // namespace

// Each difference hangs on all values behind it. The bounds are wide: a way that asks all differences at each
// of its steps takes twenty seconds.
TEST(VerdictParts, ALongWayBackIsNoLongPart)
{
    TLongWay way(1000);
    way.AddNote(way.Emitter, true);
    const std::clock_t begin = std::clock();
    TDifferenceSources sources(way.Bench.Schedule, way.Report);
    const double source = RunParts(sources, [&] { sources.FindNext(); });
    TVerdictSearch search(way.Bench.Schedule, way.Report, 1);
    int parts = 0;
    const double reason = RunParts(search, [&] {
        search.RunPart();
        ++parts;
    });
    const double taken = GetMilliseconds(begin);
    const int count = way.Report.GetDifferences().size();
    EXPECT_EQ(1000, count);
    std::printf("%d differences: %.1f ms, the longest parts %.2f and %.2f ms\n", count, taken, source,
                reason);
    EXPECT_LT(taken, 5000.0);
    EXPECT_LT(std::max(source, reason), 100.0);
    EXPECT_EQ(count + way.Report.GetNotes().size() + 1, parts);
    EXPECT_EQ(count, search.GetVerdict().GetNumDifferences());
    EXPECT_EQ(0, search.GetVerdict().GetNumWithoutReason());
}

// All values come from the first that differs; what lies behind it tells why, and what lies before it does
// not.
TEST(VerdictParts, TheWayEndsAtTheFirstValueThatDiffers)
{
    for (const bool isBehind : {true, false}) {
        TLongWay way(20);
        way.AddNote(isBehind ? way.Emitter : way.Nodes[1], true);
        FindDifferenceSources(way.Bench.Schedule, way.Report);
        for (const TReplayDifference& difference : way.Report.GetDifferences())
            EXPECT_EQ(way.Nodes[0], difference.Place.Node);
        const TReplayVerdict verdict(way.Bench.Schedule, way.Report, 1);
        EXPECT_EQ(20, verdict.GetNumDifferences());
        EXPECT_EQ(isBehind ? 0 : 20, verdict.GetNumWithoutReason());
        EXPECT_EQ(isBehind ? 1 : 0, verdict.GetReasons().size());
        EXPECT_EQ(way.Nodes[0], verdict.GetFirstNode());
    }
}

// A later difference of a value is none on the way of an earlier one.
TEST(VerdictParts, TheWayGoesOnlyOverWhatDifferedByThen)
{
    TLongWay way(20);
    for (TReplayDifference& difference : way.Report.GetDifferences())
        difference.Place.Frame = 5;
    const int last = way.Report.GetDifferences().size() - 1;
    for (int i = 10; i <= last; ++i)
        way.Report.GetDifferences()[i].Place.Frame = 2;
    FindDifferenceSources(way.Bench.Schedule, way.Report);
    EXPECT_EQ(way.Nodes[0], way.Report.GetDifferences()[9].Place.Node);
    EXPECT_EQ(way.Nodes[10], way.Report.GetDifferences()[10].Place.Node);
    EXPECT_EQ(way.Nodes[10], way.Report.GetDifferences()[last].Place.Node);
}
