#pragma once

#include "support/testgraph.h"

#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/graph/replay/replaycomparison.h"

// What a comparison of a running engine with a replay came to.
struct TAgreement
{
    int64_t Equal = 0;
    int64_t Unknown = 0;
    // The first of each group, attribute and kind.
    std::vector<std::string> Differences;
    std::vector<std::string> Notes;
    // Those that tell why there may be a difference.
    std::vector<std::string> Reasons;
};

inline std::string Text(const TReplayDifference& difference)
{
    const TReplayPlace& place = difference.Place;
    return "frame " + std::to_string(place.Frame) + " group " + std::to_string(place.Group) + " " +
           place.Name.Print() + " (" + std::to_string(place.Attribute) + ") component " +
           std::to_string(place.Component) + " " + GetDifferenceKindName(difference.Kind) + ": " +
           std::to_string(difference.Preview) + ", replayed " + std::to_string(difference.Replay);
}

inline TAgreement AgreementOf(const TReplayReport& report)
{
    TAgreement result;
    result.Equal = report.NumEqual;
    result.Unknown = report.NumUnknown;
    for (const TReplayDifference& difference : report.GetDifferences())
        result.Differences.push_back(Text(difference));
    for (const TReplayNote& note : report.GetNotes()) {
        result.Notes.push_back(note.Text.Print());
        if (note.MayDiffer)
            result.Reasons.push_back(note.Text.Print());
    }
    return result;
}

// Exports and replays; `error` tells why there was nothing to compare.
inline TAgreement CompareWithReplay(const TEffectSchedule& schedule, TExecServices& services,
                                    const TReplayOptions& options, std::string& error)
{
    TReplayComparison comparison(schedule, services);
    TErrorList errors;
    bool done = false;
    LogOf([&] { done = comparison.Export(errors) && comparison.Run(options, errors); });
    error = !errors.empty() ? TextsOf(errors)[0] : done ? "" : "not replayed";
    return AgreementOf(comparison.GetReport());
}
