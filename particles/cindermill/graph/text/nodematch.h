#pragma once

#include "particles/cindermill/graph/text/effecttext.h"

// Which node of one effect is which of another. Files know no identities that last, so nodes are known again
// by what they have in common: first those that are quite the same, then those of one name at one place, and
// so on, until only what has too little in common is left, which was removed or added.
class TNodeMatch
{
public:
    TNodeMatch(const TEffectText& before, const TEffectText& after);

    // The node's counterpart, -1 for none.
    int FindAfter(int before) const { return AfterOf[before]; }
    int FindBefore(int after) const { return BeforeOf[after]; }

private:
    // How much two nodes have in common by one rule; 0 where that is too little.
    using TScore = int (*)(const TEffectText& before, int a, const TEffectText& after, int b);

    void Pair(TScore score);
    static int ScoreSame(const TEffectText& before, int a, const TEffectText& after, int b);
    static int ScorePlaceAndName(const TEffectText& before, int a, const TEffectText& after, int b);
    static int ScoreName(const TEffectText& before, int a, const TEffectText& after, int b);
    static int ScorePlace(const TEffectText& before, int a, const TEffectText& after, int b);

    const TEffectText& Before;
    const TEffectText& After;
    vector<int> AfterOf;
    vector<int> BeforeOf;
};
