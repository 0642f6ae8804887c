#include "bench/benchtable.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <set>

namespace {

std::vector<TBenchRow>& Rows()
{
    static std::vector<TBenchRow> rows;
    return rows;
}

std::vector<std::function<void()>>& Groups()
{
    static std::vector<std::function<void()>> groups;
    return groups;
}

// Prints what the library prints, to the standard error, and remembers the shortest time per thing in
// seconds.
class TShortestTimes : public benchmark::ConsoleReporter
{
public:
    TShortestTimes() : ConsoleReporter(OO_Tabular)
    {
        SetOutputStream(&std::cerr);
        SetErrorStream(&std::cerr);
    }
    // The machine is told of once, however many groups there are.
    bool ReportContext(const Context& context) override
    {
        const bool isFirst = !HasContext;
        HasContext = true;
        name_field_width_ = context.name_field_width;
        return !isFirst || ConsoleReporter::ReportContext(context);
    }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred)
                Failed.insert(GetName(run));
            else if (run.run_type == Run::RT_Iteration)
                Add(run);
        }
    }
    // 0 if the benchmark did not run.
    double Get(const std::string& name) const
    {
        const auto it = Times.find(name);
        return it != Times.end() ? it->second : 0;
    }
    bool HasFailed(const std::string& name) const { return Failed.count(name) != 0; }
    bool HasAnyFailed() const { return !Failed.empty(); }

private:
    static std::string GetName(const Run& run)
    {
        const std::string& arguments = run.run_name.args;
        return run.run_name.function_name + (arguments.empty() ? "" : "/" + arguments);
    }
    void Add(const Run& run)
    {
        const auto things = run.counters.find(ItemCounter);
        const double count = things != run.counters.end() ? things->second.value : 1;
        // Not the time on the clock, as other programs' turns are in that, unless it is asked for.
        const bool isClock = !run.run_name.time_type.empty() && run.run_name.time_type != "process_time";
        const double total = isClock ? run.real_accumulated_time : run.cpu_accumulated_time;
        const double time = total / static_cast<double>(std::max<int64_t>(run.iterations, 1)) / count;
        const auto [it, isNew] = Times.emplace(GetName(run), time);
        if (!isNew)
            it->second = std::min(it->second, time);
    }

    std::map<std::string, double> Times;
    std::set<std::string> Failed;
    bool HasContext = false;
};

std::string TimeText(double seconds)
{
    char text[64];
    if (seconds < 1e-6)
        std::snprintf(text, sizeof text, "%.2f ns", seconds * 1e9);
    else if (seconds < 1e-3)
        std::snprintf(text, sizeof text, "%.2f us", seconds * 1e6);
    else
        std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
    return text;
}

std::string Number(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

void PrintLine(const std::string& label, const std::string& time, const std::string& baseline,
               const std::string& ratio, const std::string& figure)
{
    std::printf("%-62s %12s %12s %8s  %s\n", label.c_str(), time.c_str(), baseline.c_str(), ratio.c_str(),
                figure.c_str());
}

void PrintRow(const TBenchRow& row, const TShortestTimes& times)
{
    if (times.HasFailed(row.Measured) || times.HasFailed(row.Baseline)) {
        PrintLine(row.Label, "", "", "", "FAILED");
        return;
    }
    const double time = times.Get(row.Measured);
    const double baseline = times.Get(row.Baseline);
    if (time == 0 || (baseline == 0 && !row.Baseline.empty()))
        return;
    std::string figure;
    const double value = row.Baseline.empty() ? time * 1e3 : time / baseline;
    if (row.Limit > 0) {
        figure = (row.Baseline.empty() ? "at most " + Number("%g", row.Limit) + " ms"
                                       : "at most " + Number("%g", row.Limit)) +
                 (value <= row.Limit ? "" : ": MISSED");
    }
    if (row.Baseline.empty())
        PrintLine(row.Label, TimeText(time), "", "", figure);
    else
        PrintLine(row.Label, TimeText(time), TimeText(baseline), Number("%.2f", value), figure);
}

} // namespace

void AddGroup(const std::function<void()>& registration)
{
    Groups().push_back(registration);
}

void AddRow(const TBenchRow& row)
{
    Rows().push_back(row);
}

// --no-header leaves out the table's first line, so that the tables of several programs make one.
int main(int argc, char** argv)
{
    bool header = true;
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--no-header") == 0)
            header = false;
        else
            arguments.push_back(argv[i]);
    }
    // Taking turns keeps a busy moment of the machine from falling on one side of a ratio.
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char repetitions[] = "--benchmark_repetitions=7";
    arguments.insert(arguments.begin() + 1, {interleaving, repetitions});
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()) || !RegisterBenchmarks())
        return 1;
    TShortestTimes times;
    if (Groups().empty())
        benchmark::RunSpecifiedBenchmarks(&times);
    for (const std::function<void()>& registration : Groups()) {
        benchmark::ClearRegisteredBenchmarks();
        registration();
        benchmark::RunSpecifiedBenchmarks(&times);
    }
    if (header)
        PrintLine("", "time", "baseline", "ratio", "figure");
    for (const TBenchRow& row : Rows())
        PrintRow(row, times);
    return times.HasAnyFailed() ? 1 : 0;
}
