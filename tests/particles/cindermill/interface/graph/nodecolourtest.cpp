#include "particles/cindermill/interface/graph/nodecolour.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(NodeColour, ShiftsStayBetween0And1)
{
    EXPECT_EQ(ShiftColour(TVector4(0.95f, 0.5f, 0.02f, 0.25f), 0.11f), TVector4(1, 0.61f, 0.13f, 0.25f));
    EXPECT_EQ(ShiftColour(TVector4(0.95f, 0.5f, 0.02f, 0.25f), -0.11f)[2], 0.0f);
}

TEST(NodeColour, TextStandsOutFromEveryType)
{
    for (int colour = 0; colour < 4; ++colour) {
        const TVector4 own = GetNodeTypeColour(colour);
        const TVector4 text = GetContrastColour(own);
        const float distance = std::abs(text[1] - own[1]);
        EXPECT_GT(distance, 0.35f) << colour;
    }
}

TEST(NodeColour, EveryTypeHasAColourOfItsOwnAndOthersTheFirst)
{
    for (int a = 0; a < 4; ++a)
        for (int b = 0; b < a; ++b)
            EXPECT_GT((GetNodeTypeColour(a) - GetNodeTypeColour(b)).Length(), 0.15f);
    EXPECT_EQ(GetNodeTypeColour(-1), GetNodeTypeColour(0));
    EXPECT_EQ(GetNodeTypeColour(4), GetNodeTypeColour(0));
}
