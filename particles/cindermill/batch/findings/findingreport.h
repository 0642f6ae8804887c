#pragma once

#include "particles/cindermill/batch/findings/finding.h"

#include <cstdio>

class TJsonText;

enum TFindingFormat
{
    FF_TEXT,
    FF_JSON,
    FF_JUNIT,
    FF_SARIF,
    FF_NUMFORMATS
};

// "text", "json", "junit", "sarif"; false for another word.
bool ParseFindingFormat(const char* word, TFindingFormat& format);

// What every format but text carries, so that who reads it knows what to expect. It grows when a member goes
// or changes its meaning; members may be added without.
constexpr int FindingFormatVersion = 1;

// The program's own version, "0.9.0".
const char* GetBatchVersion();

// Who decides how bad a finding is.
class TFindingJudge
{
public:
    virtual ~TFindingJudge() = default;
    virtual void Judge(TFinding& finding) const = 0;
};

// What one run of a command looked at and what it found: all that a format writes. A command that tells more
// of its files than findings derives from it.
class TFindingReport
{
public:
    // The judge stays the caller's. `command` lives as long as the program.
    TFindingReport(const char* command, const TFindingJudge& judge) : Command(command), TheJudge(judge) {}
    virtual ~TFindingReport() = default;
    TFindingReport(const TFindingReport&) = delete;
    TFindingReport& operator=(const TFindingReport&) = delete;

    // As text, a command tells what it finds by itself: nothing is kept but what the exit status needs.
    void SetFormat(TFindingFormat format) { Format = format; }
    bool IsText() const { return Format == FF_TEXT; }
    // Findings from this severity on make the run fail.
    void SetFailOn(TFindingSeverity severity) { FailOn = severity; }
    TFindingSeverity GetFailOn() const { return FailOn; }
    // The project file, for who reads the report; empty for none.
    void SetProject(const char* path) { Project = path; }
    const TString& GetProject() const { return Project; }
    const char* GetCommand() const { return Command; }

    // What is added from then on is found in this file.
    void AddFile(const char* path);
    // Judges the finding first.
    void Add(TFinding finding);
    // Whether the finding counts for the exit status.
    bool IsFault(const TFinding& finding) const
    {
        return finding.Allowed.IsEmpty() && finding.Severity >= FailOn;
    }
    bool HasFailed() const { return Failed; }

    int GetNumFiles() const { return Files.size(); }
    const TString& GetFile(int file) const { return Files[file].Path; }
    // The findings of a file are those from the first up to the next file's first.
    int GetFirstFinding(int file) const
    {
        return file < Files.size() ? Files[file].FirstFinding : Findings.size();
    }
    const TFindingList& GetFindings() const { return Findings; }
    // Of those that are not allowed.
    int Count(TFindingSeverity severity) const;
    int CountAllowed() const;

    // Members of a file's object, and of the whole document's.
    virtual void WriteFileFacts(int file, TJsonText& json) const;
    virtual void WriteFacts(TJsonText& json) const;

    // In its format; nothing as text.
    void Write(std::FILE* out) const;

private:
    struct TLookedAt
    {
        TString Path;
        int FirstFinding = 0;
    };

    const char* const Command;
    const TFindingJudge& TheJudge;
    TFindingFormat Format = FF_TEXT;
    TFindingSeverity FailOn = FS_WARNING;
    TString Project;
    vector<TLookedAt> Files;
    TFindingList Findings;
    bool Failed = false;
};

// A finding of a kind, with its usual severity. What is behind a line's end in the message goes on in the
// same line.
TFinding MakeFinding(const char* id, const char* file, const char* message);

// "FILE:LINE: warning: MESSAGE [id] (node "Emitter", type TEmitter, group 1, number 12, at 40, -8)".
void GetFindingText(const TFinding& finding, TString& text);
// What stands in those round brackets; empty where it is of no node and no group.
void GetPlaceText(const TFindingPlace& place, TString& text);

// One document each.
void WriteFindingsAsJson(const TFindingReport& report, std::FILE* out);
void WriteFindingsAsJunit(const TFindingReport& report, std::FILE* out);
void WriteFindingsAsSarif(const TFindingReport& report, std::FILE* out);
