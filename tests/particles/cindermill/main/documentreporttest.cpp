#include "documentfixture.h"

#include <filesystem>

TEST_F(Document, WarningsAreShownAndTheExportStands)
{
    App.Get().GetSettings().SetPolicyMustHaveBoundingBox(true);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    ASSERT_EQ(TForms::Get().Errors.size(), 1u);
    EXPECT_EQ(TForms::Get().Errors[0].find("Export errors|"), 0u);
    App.Get().GetSettings().SetPolicyFailurePreventsExport(true);
    EXPECT_FALSE(document.Export(Path("other.efx").c_str()));
    EXPECT_FALSE(std::filesystem::exists(Path("other.efx")));
}

namespace {

std::string BatchLog(TDocument& document, const std::string& path)
{
    TErrorList errors;
    TBatchResult result;
    LogOf([&] { result = document.BatchExport(path.c_str(), errors); });
    return LogOf([&] { TDocument::LogBatchResult(result, errors); });
}

} // namespace

TEST_F(Document, TheLogOfABatchExport)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_EQ(BatchLog(document, Path("out.efx")),
              "Schedule creation failed:\nError 0 : Graph contains no nodes\n");
    BuildEffect(document);
    EXPECT_EQ(BatchLog(document, Path("out.efx")), "");
    EXPECT_EQ(BatchLog(document, "/nowhere/at/all.efx").find("Export failed:\nError 0 : "), 0u);
    App.Get().GetSettings().SetPolicyMustHaveBoundingBox(true);
    const std::string log = BatchLog(document, Path("out.efx"));
    EXPECT_EQ(log.find("1 warnings:\n"), 0u);
    EXPECT_EQ(log.find("Error"), std::string::npos);
    EXPECT_EQ(log.back(), '\n');
    SetTexture(document, Quads, "");
    EXPECT_EQ(BatchLog(document, Path("out.efx")),
              "Schedule creation failed:\nError 0 : No texture specified in Quad Render Stage\n");
}

TEST_F(Document, LogNumbersEachError)
{
    TErrorList errors;
    errors.Add(new TError("one"));
    errors.Add(new TError("two"));
    EXPECT_EQ(LogOf([&] { TDocument::LogBatchResult(BR_EXPORTFAILED, errors); }),
              "Export failed:\nError 0 : one\nError 1 : two\n");
    EXPECT_EQ(LogOf([&] { TDocument::LogBatchResult(BR_DONE, errors); }), "2 warnings:\none\ntwo\n");
}

TEST_F(Document, TheReportOfAnEmptyDocument)
{
    TDocument document(App.Get());
    document.New();
    TString report;
    document.GetReport(report);
    EXPECT_EQ(Text(report),
              "Effect File:\r\n------------\r\n\r\n"
              "Save path: <none>\r\nModified: no\r\nSize on disc: 48 bytes\r\nChunks in file: 2\r\n"
              "Graph nodes: 0\r\nGraph edges: 0\r\n"
              "\r\nSchedule:\r\n------------\r\n\r\n"
              "Graph does not create valid schedule\r\n");
}

TEST_F(Document, TheReportOfAnEffect)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    Add(document, "Wind");
    document.BatchExport(Path("out.efx").c_str(), *std::make_unique<TErrorList>());
    const auto size = std::to_string(document.GetChunks().GetFileSize());
    const auto chunks = std::to_string(document.GetChunks().GetNumChunks());
    TString report;
    document.GetReport(report);
    EXPECT_EQ(Text(report),
              "Effect File:\r\n------------\r\n\r\nSave path: " + Path("a.effect") +
                  "\r\nModified: yes\r\nSize on disc: " + size + " bytes\r\nChunks in file: " + chunks +
                  "\r\nGraph nodes: 4\r\nGraph edges: 2\r\n"
                  "\r\nSchedule:\r\n------------\r\n\r\n"
                  "Graph creates valid schedule\r\nGroups in schedule: 2\r\nNodes in schedule: 4\r\n"
                  "Tied nodes in group 0: 2\r\nTied nodes in group 1: 2\r\n"
                  "\r\nEfx File:\r\n------------\r\n\r\n"
                  "Schedule creates valid efx file\r\nSize on disc: " +
                  std::to_string(std::filesystem::file_size(Path("out.efx"))) + " bytes\r\n");
}

TEST_F(Document, TheReportShowsThePathInTheSystemsOwnForm)
{
    TDocument document(App.Get());
    document.New();
    std::string kept = Path("a.effect");
    std::replace(kept.begin(), kept.end(), '/', '\\');
    ASSERT_TRUE(document.SaveAs(kept.c_str()));
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Save path: " + Path("a.effect") + "\r\n"), std::string::npos);
}

TEST_F(Document, TheReportLeavesARunningPreviewAloneWhereItCan)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    const float time = document.GetEngine().GetTime();
    TString report;
    document.GetReport(report);
    EXPECT_EQ(document.GetEngine().GetTime(), time);
    // A further node is no graph change, but the report's schedule has it: the engine starts anew.
    Add(document, "Wind");
    document.GetReport(report);
    EXPECT_TRUE(document.GetEngine().IsInited());
    EXPECT_EQ(document.GetEngine().GetTime(), 0);
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
}
