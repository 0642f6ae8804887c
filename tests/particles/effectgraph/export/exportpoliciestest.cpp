#include "particles/effectgraph/export/exporttestgraph.h"

TEST(CheckExportPolicies, ATableOfFlagsAndBoxes)
{
    const TFullGraph full;
    TExported mixed(full.G);
    full.Fill(mixed);
    const TSmallGraph small;
    TExported none(small.G);
    small.Fill(none);
    struct TCase
    {
        TExported& Export;
        int Flags;
        bool Result;
        std::vector<std::string> Errors;
    };
    const TCase cases[] = {
        {none, 0, true, {}},
        {none, PF_PREVENTEXPORT, true, {}},
        {none, PF_MUSTHAVEBOUNDS, false, {"Warning: Effect file does not contain a bounding box"}},
        {none,
         PF_MUSTHAVEBOUNDS | PF_NOMIXEDBOUNDS | PF_PREVENTEXPORT,
         false,
         {"Fatal Error: Effect file does not contain a bounding box"}},
        {mixed, PF_MUSTHAVEBOUNDS, true, {}},
        {mixed,
         PF_MUSTHAVEBOUNDS | PF_NOMIXEDBOUNDS,
         false,
         {"Warning: Effect file contains 1 render nodes with both dynamic and static bounding boxes"}},
        {mixed,
         PF_NOMIXEDBOUNDS | PF_PREVENTEXPORT,
         false,
         {"Fatal Error: Effect file contains 1 render nodes with both dynamic and static bounding boxes"}},
    };
    for (const TCase& c : cases) {
        TErrorList errors;
        EXPECT_EQ(c.Export->CheckPolicies(c.Flags, errors), c.Result) << c.Flags;
        EXPECT_EQ(TextsOf(errors), c.Errors);
    }
}
