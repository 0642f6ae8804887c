#include "particles/cindermill/batch/findings/findingreport.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/findings/findingkinds.h"

static const char* const FormatNames[FF_NUMFORMATS] = {"text", "json", "junit", "sarif"};

bool ParseFindingFormat(const char* word, TFindingFormat& format)
{
    for (int i = 0; i < FF_NUMFORMATS; ++i) {
        if (CompareText(word, FormatNames[i], true) != 0)
            continue;
        format = static_cast<TFindingFormat>(i);
        return true;
    }
    return false;
}

const char* GetBatchVersion()
{
    return CINDERMILL_VERSION;
}

void TFindingReport::AddFile(const char* path)
{
    if (!IsText())
        Append(Files, TLookedAt{path, Findings.size()});
}

void TFindingReport::Add(TFinding finding)
{
    TheJudge.Judge(finding);
    Failed = Failed || IsFault(finding);
    if (!IsText())
        Findings.Add(finding);
}

int TFindingReport::Count(TFindingSeverity severity) const
{
    int count = 0;
    for (int i = 0; i < Findings.size(); ++i)
        if (Findings[i].Severity == severity && Findings[i].Allowed.IsEmpty())
            ++count;
    return count;
}

int TFindingReport::CountAllowed() const
{
    int count = 0;
    for (int i = 0; i < Findings.size(); ++i)
        if (!Findings[i].Allowed.IsEmpty())
            ++count;
    return count;
}

void TFindingReport::WriteFileFacts(int file, TJsonText& json) const
{
    (void)file;
    (void)json;
}

void TFindingReport::WriteFacts(TJsonText& json) const
{
    (void)json;
}

void TFindingReport::Write(std::FILE* out) const
{
    if (Format == FF_JSON)
        WriteFindingsAsJson(*this, out);
    else if (Format == FF_JUNIT)
        WriteFindingsAsJunit(*this, out);
    else if (Format == FF_SARIF)
        WriteFindingsAsSarif(*this, out);
}

TFinding MakeFinding(const char* id, const char* file, const char* message)
{
    TFinding finding;
    finding.Id = id;
    const TFindingKind* kind = FindFindingKind(id);
    ASSERT(kind != nullptr);
    finding.Severity = kind->Severity;
    finding.File = file;
    finding.Message = message;
    finding.Message.Trim();
    finding.Message = OneLineText(finding.Message);
    return finding;
}
