#include "particles/cindermill/graph/replay/replayreport.h"

#include "library/containers/append.h"
#include "particles/effectgraph/xmltext.h"

#include <cmath>
#include <limits>

const char* GetDifferenceKindName(TDifferenceKind kind)
{
    static const char* const names[DK_NUMKINDS] = {"value", "undefined", "unknown", "count", "stage"};
    return names[kind];
}

bool IsSameNumber(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

double GetDistance(float a, float b)
{
    if (IsSameNumber(a, b))
        return 0;
    const double distance = std::fabs(static_cast<double>(a) - b);
    return std::isfinite(distance) ? distance : std::numeric_limits<double>::infinity();
}

TString DescribeDifference(const TReplayDifference& difference)
{
    constexpr int maxName = 80;
    const TReplayPlace& place = difference.Place;
    TString what;
    if (!place.Name.IsEmpty())
        what.Format("\"%s\" of group %d", QuoteText(place.Name, maxName).Print(), place.Group);
    else
        what.Format("Group %d", place.Group);
    TString text;
    if (difference.Kind == DK_UNDEFINED)
        text.Format("%s: nothing in the exported file writes what the preview shows", what.Print());
    else if (difference.Kind == DK_UNKNOWN)
        text.Format("%s: what the exported file makes of it hangs on what is not known", what.Print());
    else
        text.Format("%s: %.9g in the preview is %.9g in the exported file", what.Print(),
                    static_cast<double>(difference.Preview), static_cast<double>(difference.Replay));
    return text;
}

TString TReplayReport::GetSummary() const
{
    TString text;
    text.Format(
        "%lld values compared, %lld equal, %lld undefined, %lld unknown, %lld particles counted in %d "
        "frames",
        static_cast<long long>(NumCompared), static_cast<long long>(NumEqual),
        static_cast<long long>(NumUndefined), static_cast<long long>(NumUnknown),
        static_cast<long long>(NumParticles), NumFrames);
    return text;
}

TReplayDifference* TReplayReport::Find(int group, int attribute, TDifferenceKind kind)
{
    for (TReplayDifference& difference : Differences)
        if (difference.Kind == kind && difference.Place.Group == group &&
            difference.Place.Attribute == attribute)
            return &difference;
    return nullptr;
}

void TReplayReport::Add(const TReplayDifference& difference)
{
    Append(Differences, difference);
}

void TReplayReport::AddNote(const TReplayNote& note)
{
    Append(Notes, note);
}

bool TReplayReport::Compare(float preview, float replay)
{
    ++NumCompared;
    if (!IsSameNumber(preview, replay))
        return false;
    ++NumEqual;
    return true;
}

void TReplayReport::CompareFixed(const TReplayPlace& place, TDifferenceKind kind, float preview, float replay)
{
    if (Compare(preview, replay))
        return;
    const double distance = GetDistance(preview, replay);
    TReplayDifference* known = Find(place.Group, place.Attribute, kind);
    if (known == nullptr) {
        TReplayDifference difference;
        difference.Place = place;
        difference.Kind = kind;
        difference.Preview = preview;
        difference.Replay = replay;
        Add(difference);
        known = Find(place.Group, place.Attribute, kind);
    }
    ++known->Times;
    if (distance > known->Worst)
        known->Worst = distance;
}

void TReplayReport::CompareNamed(TReplayPlace& place, const char* name, float preview, float replay,
                                 int component)
{
    if (!IsSameNumber(preview, replay)) {
        place.Name = name;
        place.Component = component;
    }
    CompareFixed(place, DK_VALUE, preview, replay);
}
