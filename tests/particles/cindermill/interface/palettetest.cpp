#include "support/testapp.h"

#include "particles/cindermill/interface/palette.h"
#include "particles/effectgraph/error.h"

#include <filesystem>
#include <vector>

namespace {

std::string NodeTypeXml(const std::string& name)
{
    return "<?xml version=\"1.0\"?><node><name>" + name +
           "</name><description>d</description><type>process</type><colour>red</colour>"
           "<parameters></parameters><inputs></inputs><outputs></outputs>"
           "<code><classname>TAge</classname></code></node>";
}

// Two categories, one in the other, and a type beside them.
class Palette : public testing::Test
{
protected:
    Palette()
    {
        std::filesystem::create_directories(Folder.Path("Outer/Inner"));
        std::filesystem::create_directories(Folder.Path("Void"));
        WriteBytes(Folder.Path("Outer/Inner/deep.xml"), NodeTypeXml("Deep"));
        WriteBytes(Folder.Path("Outer/one.xml"), NodeTypeXml("One"));
        WriteBytes(Folder.Path("Outer/two.xml"), NodeTypeXml("Two"));
        WriteBytes(Folder.Path("top.xml"), NodeTypeXml("Top"));
        TErrorList errors;
        Library.Load(Folder.GetFolder().c_str(), errors);
        EXPECT_TRUE(errors.empty());
        Rows.Open(Library);
    }
    // Each row as its indent and name.
    std::vector<std::string> List() const
    {
        std::vector<std::string> result;
        for (const TPaletteRow& row : Rows.GetRows())
            result.push_back(
                std::to_string(row.Indent) + " " +
                Text(row.Type != -1 ? Library.GetType(row.Type)->Name : Library.GetItem(row.Item).Name));
        return result;
    }
    int Find(const std::string& line) const
    {
        const std::vector<std::string> lines = List();
        for (size_t i = 0; i < lines.size(); ++i)
            if (lines[i] == line)
                return static_cast<int>(i);
        return -1;
    }

    TTempFolder Folder;
    TNodeTypeLibrary Library;
    TPalette Rows;
};

} // namespace

TEST_F(Palette, EverythingIsOpenAtFirst)
{
    std::vector<std::string> lines = List();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_NE(Find("10 Outer"), -1);
    EXPECT_NE(Find("20 Inner"), -1);
    EXPECT_NE(Find("30 Deep"), -1);
    EXPECT_NE(Find("20 One"), -1);
    EXPECT_NE(Find("20 Two"), -1);
    EXPECT_NE(Find("10 Top"), -1);
    EXPECT_NE(Find("10 Void"), -1);
}

TEST_F(Palette, RowsAreTwentyHighAndIndentedTenPerLevel)
{
    const vector<TPaletteRow>& rows = Rows.GetRows();
    for (int i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].Top, 20 * i);
        EXPECT_EQ(rows[i].Indent, rows[i].Parent == -1 ? 10 : rows[rows[i].Parent].Indent + 10);
    }
    EXPECT_EQ(Rows.GetHeight(), 20 * rows.size());
}

TEST_F(Palette, AClosedCategoryHidesWhatIsBelowIt)
{
    Rows.Toggle(Rows.GetRows()[Find("10 Outer")].Item);
    EXPECT_EQ(Rows.GetHeight(), 60);
    EXPECT_EQ(Find("20 Inner"), -1);
    EXPECT_EQ(Find("30 Deep"), -1);
    EXPECT_EQ(Find("20 One"), -1);
    EXPECT_NE(Find("10 Top"), -1);
}

TEST_F(Palette, WhatIsBelowAClosedCategoryStaysOpenForLater)
{
    const int outer = Rows.GetRows()[Find("10 Outer")].Item;
    const int inner = Rows.GetRows()[Find("20 Inner")].Item;
    Rows.Toggle(inner);
    EXPECT_EQ(Rows.GetHeight(), 120);
    Rows.Toggle(outer);
    Rows.Toggle(outer);
    EXPECT_EQ(Rows.GetHeight(), 120);
    EXPECT_FALSE(Rows.IsExpanded(inner));
    Rows.Toggle(inner);
    EXPECT_NE(Find("30 Deep"), -1);
}

TEST_F(Palette, ARowIsFoundByItsHeight)
{
    EXPECT_EQ(Rows.FindRow(-1), -1);
    EXPECT_EQ(Rows.FindRow(0), 0);
    EXPECT_EQ(Rows.FindRow(19), 0);
    EXPECT_EQ(Rows.FindRow(20), 1);
    EXPECT_EQ(Rows.FindRow(Rows.GetHeight() - 1), 6);
    EXPECT_EQ(Rows.FindRow(Rows.GetHeight()), -1);
}

TEST_F(Palette, TheLinesOfACategoryEndAtItsLastEntry)
{
    const int outer = Find("10 Outer");
    const int last = Rows.FindLastChild(outer);
    ASSERT_NE(last, -1);
    EXPECT_EQ(Rows.GetRows()[last].Parent, outer);
    for (int i = last + 1; i < Rows.GetRows().size(); ++i)
        EXPECT_NE(Rows.GetRows()[i].Parent, outer);
    EXPECT_EQ(Rows.FindLastChild(Find("10 Void")), -1);
    Rows.Toggle(Rows.GetRows()[outer].Item);
    EXPECT_EQ(Rows.FindLastChild(Find("10 Outer")), -1);
}

TEST_F(Palette, ALibraryWithoutTypesIsAnEmptyPalette)
{
    const TNodeTypeLibrary library;
    TPalette palette;
    palette.Open(library);
    EXPECT_EQ(palette.GetHeight(), 0);
    EXPECT_EQ(palette.FindRow(0), -1);
}

// As the search over the graph does.
TEST_F(Palette, AFilterFindsATypeByAnyOfTheFoldersAroundIt)
{
    Rows.SetFilter("outer");
    EXPECT_NE(Find("30 Deep"), -1);
    EXPECT_NE(Find("20 One"), -1);
    EXPECT_EQ(Find("10 Top"), -1);
    Rows.SetFilter("inner");
    EXPECT_NE(Find("30 Deep"), -1);
    EXPECT_EQ(Find("20 One"), -1);
}
