#include "library/system/path.h"
#include "particles/cindermill/batch/findings/findingkinds.h"
#include "particles/cindermill/batch/findings/findingreport.h"
#include "particles/cindermill/batch/findings/jsontext.h"

namespace {

bool IsPlainInUri(char ch)
{
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') || ch == '-' ||
           ch == '.' || ch == '_' || ch == '~' || ch == '/';
}

// A relative path is meant from where the run began.
void GetUri(const TString& path, TString& uri)
{
    const TString shown = GetShownPath(path);
    uri = *shown.Print() == '/' ? "file://" : nullptr;
    for (const char* ch = shown.Print(); *ch != 0; ++ch) {
        char code[4] = {*ch, 0, 0, 0};
        if (!IsPlainInUri(*ch))
            std::snprintf(code, sizeof(code), "%%%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(*ch)));
        uri += code;
    }
}

void WriteMessage(TJsonText& json, const char* key, const char* text)
{
    json.BeginObject(key);
    json.Text("text", text);
    json.EndObject();
}

// The kinds that occur, in the order in which they first do.
class TSarifRules
{
public:
    explicit TSarifRules(const TFindingList& findings)
    {
        for (int i = 0; i < findings.size(); ++i)
            if (Find(findings[i].Id) == -1)
                Append(Ids, findings[i].Id);
    }
    int Find(const char* id) const { return Ids.index_of(id); }
    void Write(TJsonText& json) const
    {
        json.BeginArray("rules");
        for (const TString& id : Ids) {
            const TFindingKind* kind = FindFindingKind(id);
            json.BeginObject();
            json.Text("id", id);
            if (kind != nullptr) {
                WriteMessage(json, "shortDescription", kind->Description);
                json.BeginObject("defaultConfiguration");
                json.Text("level", GetSeverityName(kind->Severity));
                json.EndObject();
            }
            json.EndObject();
        }
        json.EndArray();
    }

private:
    vector<TString> Ids;
};

void WriteLogicalLocation(TJsonText& json, const TFindingPlace& place)
{
    TString group;
    TString whole;
    if (place.Group != -1)
        group.Format("group %d", place.Group);
    whole = group;
    if (!place.Node.IsEmpty()) {
        TString number;
        if (!whole.IsEmpty())
            whole += "/";
        whole += place.Node.Print();
        if (place.Id != -1)
            whole += number.Format("#%d", place.Id).Print();
    }
    json.BeginArray("logicalLocations");
    json.BeginObject();
    json.Text("name", place.Node.IsEmpty() ? group : place.Node);
    json.Text("fullyQualifiedName", whole);
    json.Text("kind", "object");
    json.EndObject();
    json.EndArray();
}

void WriteLocation(TJsonText& json, const TFinding& finding)
{
    TString uri;
    GetUri(finding.File, uri);
    json.BeginArray("locations");
    json.BeginObject();
    json.BeginObject("physicalLocation");
    json.BeginObject("artifactLocation");
    json.Text("uri", uri);
    json.EndObject();
    if (finding.Line > 0) {
        json.BeginObject("region");
        json.Whole("startLine", finding.Line);
        json.EndObject();
    }
    json.EndObject();
    if (!finding.Place.Node.IsEmpty() || finding.Place.Group != -1)
        WriteLogicalLocation(json, finding.Place);
    json.EndObject();
    json.EndArray();
}

void WriteProperties(TJsonText& json, const TFinding& finding)
{
    const TFindingPlace& place = finding.Place;
    json.BeginObject("properties");
    if (place.Group != -1)
        json.Whole("group", place.Group);
    if (!place.Node.IsEmpty()) {
        json.Text("node", place.Node);
        json.Text("type", place.Type);
        if (place.Id != -1)
            json.Whole("number", place.Id);
        json.Number("x", static_cast<double>(place.X));
        json.Number("y", static_cast<double>(place.Y));
    }
    json.BeginObject("numbers");
    for (const TFindingNumber& number : finding.Numbers)
        json.Number(number.Name, number.Value);
    json.EndObject();
    json.EndObject();
}

void WriteResult(TJsonText& json, const TFinding& finding, const TSarifRules& rules)
{
    json.BeginObject();
    json.Text("ruleId", finding.Id);
    json.Whole("ruleIndex", rules.Find(finding.Id));
    json.Text("level", GetSeverityName(finding.Severity));
    WriteMessage(json, "message", finding.Message);
    WriteLocation(json, finding);
    // Whoever reads several runs wants to know that nothing is allowed here, too.
    json.BeginArray("suppressions");
    if (!finding.Allowed.IsEmpty()) {
        json.BeginObject();
        json.Text("kind", "external");
        json.Text("justification", finding.Allowed);
        json.EndObject();
    }
    json.EndArray();
    WriteProperties(json, finding);
    json.EndObject();
}

void WriteTool(TJsonText& json, const TSarifRules& rules)
{
    json.BeginObject("tool");
    json.BeginObject("driver");
    json.Text("name", "cindermill-batch");
    json.Text("version", GetBatchVersion());
    rules.Write(json);
    json.EndObject();
    json.EndObject();
}

void WriteArtifacts(TJsonText& json, const TFindingReport& report)
{
    json.BeginArray("artifacts");
    for (int file = 0; file < report.GetNumFiles(); ++file) {
        TString uri;
        GetUri(report.GetFile(file), uri);
        json.BeginObject();
        json.BeginObject("location");
        json.Text("uri", uri);
        json.EndObject();
        json.EndObject();
    }
    json.EndArray();
}

} // namespace

void WriteFindingsAsSarif(const TFindingReport& report, std::FILE* out)
{
    const TSarifRules rules(report.GetFindings());
    TJsonText json(out);
    json.BeginObject();
    json.Text("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
    json.Text("version", "2.1.0");
    json.BeginArray("runs");
    json.BeginObject();
    WriteTool(json, rules);
    json.BeginArray("invocations");
    json.BeginObject();
    json.Flag("executionSuccessful", true);
    json.EndObject();
    json.EndArray();
    WriteArtifacts(json, report);
    json.BeginArray("results");
    for (int i = 0; i < report.GetFindings().size(); ++i)
        WriteResult(json, report.GetFindings()[i], rules);
    json.EndArray();
    json.BeginObject("properties");
    json.Whole("formatVersion", FindingFormatVersion);
    json.Text("command", report.GetCommand());
    json.Text("failOn", GetSeverityName(report.GetFailOn()));
    json.Flag("passed", !report.HasFailed());
    json.EndObject();
    json.EndObject();
    json.EndArray();
    json.EndObject();
    json.Finish();
}
