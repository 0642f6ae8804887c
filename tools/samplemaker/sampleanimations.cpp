#include "tools/samplemaker/sampleanimations.h"

#include "library/system/file.h"
#include "tools/samplemaker/samplemaths.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

struct TTrack
{
    int KeyStride;
    // KeyStride numbers for each time.
    std::vector<double> Values;
    std::vector<double> Times;
};

std::string ToText(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.4f", value);
    return std::string(text) == "-0.0000" ? "0.0000" : text;
}

std::string ToText(const TTrack& track)
{
    std::string text =
        "      <animChannel>\n        <animData numKeys=" + std::to_string(track.Times.size()) +
        " keyStride=" + std::to_string(track.KeyStride) + ">\n          <keyValues>\n";
    const size_t stride = static_cast<size_t>(track.KeyStride);
    for (size_t i = 0; i < track.Values.size(); ++i) {
        text += i % stride == 0 ? "            " : " ";
        text += ToText(track.Values[i]);
        if (i % stride == stride - 1)
            text += "\n";
    }
    text += "          </keyValues>\n          <keyTimes>\n           ";
    for (double time : track.Times)
        text += " " + ToText(time);
    return text + "\n          </keyTimes>\n        </animData>\n      </animChannel>\n";
}

bool WriteAnimation(const char* path, const std::vector<TTrack>& tracks)
{
    std::string text = "<?xml version=\"1.0\"?>\n<VOR>\n  <animclip>\n    <anim>\n";
    for (const TTrack& track : tracks)
        text += ToText(track);
    text += "    </anim>\n  </animclip>\n</VOR>\n";
    TFile file;
    if (!file.OpenWrite(path))
        return false;
    file.Write(text.data(), static_cast<int>(text.size()));
    return file.Close();
}

// A closed knot that winds about a ring three times while it goes round twice.
bool MakeKnot(const std::string& path)
{
    constexpr int NumKeys = 96;
    constexpr double Seconds = 8;
    TTrack position{3, {}, {}};
    TTrack rotation{4, {}, {}};
    TTrack scale{3, {1, 1, 1}, {0}};
    for (int key = 0; key <= NumKeys; ++key) {
        const double turn = static_cast<double>(key) / NumKeys;
        const double reach = 0.75 + 0.3 * CosineOfTurns(3 * turn);
        const double place[] = {reach * CosineOfTurns(2 * turn), 0.9 + 0.35 * SineOfTurns(3 * turn),
                                reach * SineOfTurns(2 * turn)};
        position.Values.insert(position.Values.end(), place, place + 3);
        position.Times.push_back(turn * Seconds);
        if (key % 8 != 0)
            continue;
        // Half the angle: twice about y in all.
        const double spin[] = {0, SineOfTurns(-turn), 0, CosineOfTurns(-turn)};
        rotation.Values.insert(rotation.Values.end(), spin, spin + 4);
        rotation.Times.push_back(turn * Seconds);
    }
    return WriteAnimation(path.c_str(), {position, rotation, scale});
}

} // namespace

bool MakeSampleAnimations(const char* folder)
{
    return MakeKnot(std::string(folder) + "/knot.vori");
}
