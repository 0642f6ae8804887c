#include "particles/cindermill/batch/findings/findingreport.h"
#include "particles/cindermill/batch/findings/jsontext.h"

namespace {

void WriteTextOrNull(TJsonText& json, const char* key, const TString& text)
{
    if (text.IsEmpty())
        json.Null(key);
    else
        json.Text(key, text);
}

void WriteNumberOrNull(TJsonText& json, const char* key, int number, int none)
{
    if (number == none)
        json.Null(key);
    else
        json.Whole(key, number);
}

// A finding of no node still has a group at times.
void WritePlace(TJsonText& json, const TFindingPlace& place)
{
    WriteNumberOrNull(json, "group", place.Group, -1);
    if (place.Node.IsEmpty()) {
        json.Null("node");
        return;
    }
    json.BeginObject("node");
    json.Text("name", place.Node);
    json.Text("type", place.Type);
    WriteNumberOrNull(json, "number", place.Id, -1);
    json.Number("x", static_cast<double>(place.X));
    json.Number("y", static_cast<double>(place.Y));
    json.EndObject();
}

void WriteFinding(TJsonText& json, const TFinding& finding)
{
    json.BeginObject();
    json.Text("id", finding.Id);
    json.Text("severity", GetSeverityName(finding.Severity));
    json.Text("file", finding.File);
    WriteNumberOrNull(json, "line", finding.Line, 0);
    WritePlace(json, finding.Place);
    json.Text("message", finding.Message);
    json.BeginObject("numbers");
    for (const TFindingNumber& number : finding.Numbers)
        json.Number(number.Name, number.Value);
    json.EndObject();
    WriteTextOrNull(json, "allowed", finding.Allowed);
    json.EndObject();
}

bool HasFault(const TFindingReport& report, int file)
{
    for (int i = report.GetFirstFinding(file); i < report.GetFirstFinding(file + 1); ++i)
        if (report.IsFault(report.GetFindings()[i]))
            return true;
    return false;
}

void WriteCounts(TJsonText& json, const TFindingReport& report)
{
    json.BeginObject("counts");
    json.Whole("files", report.GetNumFiles());
    json.Whole("errors", report.Count(FS_ERROR));
    json.Whole("warnings", report.Count(FS_WARNING));
    json.Whole("notes", report.Count(FS_NOTE));
    json.Whole("allowed", report.CountAllowed());
    json.EndObject();
}

void WriteFiles(TJsonText& json, const TFindingReport& report)
{
    json.BeginArray("files");
    for (int file = 0; file < report.GetNumFiles(); ++file) {
        json.BeginObject();
        json.Text("file", report.GetFile(file));
        json.Flag("passed", !HasFault(report, file));
        report.WriteFileFacts(file, json);
        json.EndObject();
    }
    json.EndArray();
}

} // namespace

void WriteFindingsAsJson(const TFindingReport& report, std::FILE* out)
{
    TJsonText json(out);
    json.BeginObject();
    json.Whole("version", FindingFormatVersion);
    json.BeginObject("tool");
    json.Text("name", "cindermill-batch");
    json.Text("version", GetBatchVersion());
    json.EndObject();
    json.Text("command", report.GetCommand());
    WriteTextOrNull(json, "project", report.GetProject());
    json.Text("failOn", GetSeverityName(report.GetFailOn()));
    json.Flag("passed", !report.HasFailed());
    WriteCounts(json, report);
    report.WriteFacts(json);
    WriteFiles(json, report);
    json.BeginArray("findings");
    for (int i = 0; i < report.GetFindings().size(); ++i)
        WriteFinding(json, report.GetFindings()[i]);
    json.EndArray();
    json.EndObject();
    json.Finish();
}
