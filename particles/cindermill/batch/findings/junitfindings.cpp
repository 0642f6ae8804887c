#include "particles/cindermill/batch/findings/findingreport.h"
#include "particles/cindermill/batch/findings/utf8.h"

namespace {

// XML has no form for most control characters.
bool IsXmlCharacter(unsigned code)
{
    return code == '\t' || code == '\n' || (code >= 0x20 && code != 0xFFFE && code != 0xFFFF);
}

void WriteXmlText(std::FILE* out, const char* text)
{
    while (*text != 0) {
        const char* const begin = text;
        const unsigned code = TakeCharacter(text);
        if (code == '&')
            std::fputs("&amp;", out);
        else if (code == '<')
            std::fputs("&lt;", out);
        else if (code == '>')
            std::fputs("&gt;", out);
        else if (code == '"')
            std::fputs("&quot;", out);
        else if (code == 0xFFFD || !IsXmlCharacter(code))
            std::fputs("&#xFFFD;", out);
        else if (code == '\t' || code == '\n')
            std::fprintf(out, "&#%u;", code);
        else
            std::fwrite(begin, 1, static_cast<size_t>(text - begin), out);
    }
}

void WriteAttribute(std::FILE* out, const char* name, const char* value)
{
    std::fprintf(out, " %s=\"", name);
    WriteXmlText(out, value != nullptr ? value : "");
    std::fputc('"', out);
}

void WriteProperty(std::FILE* out, const char* name, const char* value)
{
    std::fputs("      <property", out);
    WriteAttribute(out, "name", name);
    WriteAttribute(out, "value", value);
    std::fputs("/>\n", out);
}

// The findings of one file that count, or those that do not.
class TJunitCase
{
public:
    TJunitCase(const TFindingReport& report, int file) : Report(report), File(file) {}

    // The worst that counts, the first of several; null if the file passes.
    const TFinding* GetFault() const
    {
        const TFinding* worst = nullptr;
        for (int i = GetBegin(); i < GetEnd(); ++i) {
            const TFinding& finding = Report.GetFindings()[i];
            if (Report.IsFault(finding) && (worst == nullptr || finding.Severity > worst->Severity))
                worst = &finding;
        }
        return worst;
    }
    bool HasOthers() const
    {
        for (int i = GetBegin(); i < GetEnd(); ++i)
            if (!Report.IsFault(Report.GetFindings()[i]))
                return true;
        return false;
    }
    void WriteLines(std::FILE* out, bool faults) const
    {
        TString text;
        for (int i = GetBegin(); i < GetEnd(); ++i) {
            if (Report.IsFault(Report.GetFindings()[i]) != faults)
                continue;
            GetFindingText(Report.GetFindings()[i], text);
            WriteXmlText(out, text.Print());
            std::fputc('\n', out);
        }
    }

private:
    int GetBegin() const { return Report.GetFirstFinding(File); }
    int GetEnd() const { return Report.GetFirstFinding(File + 1); }

    const TFindingReport& Report;
    const int File;
};

void WriteCase(std::FILE* out, const TFindingReport& report, int file)
{
    const TJunitCase test(report, file);
    std::fputs("    <testcase", out);
    WriteAttribute(out, "classname", report.GetCommand());
    WriteAttribute(out, "name", report.GetFile(file));
    const TFinding* fault = test.GetFault();
    if (fault == nullptr && !test.HasOthers()) {
        std::fputs("/>\n", out);
        return;
    }
    std::fputs(">\n", out);
    if (fault != nullptr) {
        std::fputs("      <failure", out);
        WriteAttribute(out, "type", fault->Id);
        WriteAttribute(out, "message", fault->Message);
        std::fputc('>', out);
        test.WriteLines(out, true);
        std::fputs("</failure>\n", out);
    }
    if (test.HasOthers()) {
        std::fputs("      <system-out>", out);
        test.WriteLines(out, false);
        std::fputs("</system-out>\n", out);
    }
    std::fputs("    </testcase>\n", out);
}

} // namespace

void WriteFindingsAsJunit(const TFindingReport& report, std::FILE* out)
{
    int failures = 0;
    for (int file = 0; file < report.GetNumFiles(); ++file)
        failures += TJunitCase(report, file).GetFault() != nullptr ? 1 : 0;
    TString counts;
    counts.Format(" tests=\"%d\" failures=\"%d\" errors=\"0\"", report.GetNumFiles(), failures);
    TString version;
    version.Format("%d", FindingFormatVersion);
    std::fprintf(out,
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"cindermill-batch\"%s>\n",
                 counts.Print());
    std::fputs("  <testsuite", out);
    WriteAttribute(out, "name", report.GetCommand());
    std::fprintf(out, "%s skipped=\"0\">\n    <properties>\n", counts.Print());
    WriteProperty(out, "format-version", version);
    WriteProperty(out, "tool-version", GetBatchVersion());
    WriteProperty(out, "fail-on", GetSeverityName(report.GetFailOn()));
    std::fputs("    </properties>\n", out);
    for (int file = 0; file < report.GetNumFiles(); ++file)
        WriteCase(out, report, file);
    std::fputs("  </testsuite>\n</testsuites>\n", out);
}
