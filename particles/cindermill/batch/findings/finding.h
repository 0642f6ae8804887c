#pragma once

#include "library/containers/append.h"
#include "library/containers/string.h"

enum TFindingSeverity
{
    FS_NOTE,
    FS_WARNING,
    FS_ERROR,
};

// Where in an effect a finding is. Empty texts and -1 where it is of the whole file.
struct TFindingPlace
{
    // The node's name, its type's, and the group that it is scheduled in.
    TString Node;
    TString Type;
    int Group = -1;
    // The node's place in the graph: the number of its object in the file, and where it lies.
    int Id = -1;
    float X = 0.0f;
    float Y = 0.0f;
};

// What a finding counts, by name: "peak" 64, "capacity" 32.
struct TFindingNumber
{
    const char* Name;
    double Value;
};

// One thing that a command found, the same for all formats.
struct TFinding
{
    // Stable between versions, of lower case words with points: "capacity.full". Lives as long as the
    // program.
    const char* Id = "";
    TFindingSeverity Severity = FS_ERROR;
    // As it was named on the command line, or found below a folder.
    TString File;
    // In a file of text lines; 0 where there is none.
    int Line = 0;
    TFindingPlace Place;
    // One sentence without line ends.
    TString Message;
    vector<TFindingNumber> Numbers;
    // Why the project allows it; empty where it does not.
    TString Allowed;
};

// The name lives as long as the program.
void AddNumber(TFinding& finding, const char* name, double value);

// The findings of a run, in the order in which they came.
class TFindingList
{
public:
    void Add(const TFinding& finding) { Append(Findings, finding); }
    int size() const { return Findings.size(); }
    bool empty() const { return Findings.empty(); }
    const TFinding& operator[](int index) const { return Findings[index]; }
    TFinding& operator[](int index) { return Findings[index]; }

private:
    vector<TFinding> Findings;
};

// "note", "warning", "error".
const char* GetSeverityName(TFindingSeverity severity);
// False for another word.
bool ParseSeverity(const char* word, TFindingSeverity& severity);
