#include "particles/cindermill/batch/diffcommand.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/findings/findingreport.h"
#include "particles/cindermill/batch/findings/jsontext.h"
#include "particles/cindermill/graph/text/effectdifference.h"

#include <cstdio>
#include <cstring>

namespace {

void AddWord(TTextBuffer& text, const TString& word)
{
    text << (word.IsEmpty() ? "nothing" : word.Print());
}

// One line for each: what happened, to what, and from what to what.
void WriteText(const TEffectDifferences& differences)
{
    TTextBuffer text;
    for (int i = 0; i < differences.size(); ++i) {
        const TDifference& difference = differences[i];
        text << GetDifferenceName(difference.Kind);
        if (!difference.Key.IsEmpty())
            text << (difference.Kind == DK_RETYPED ? " type " : " node ") << difference.Key;
        if (difference.Kind == DK_ADDED || difference.Kind == DK_REMOVED)
            text << " " << OneLineText(difference.ClassName);
        if (!difference.What.IsEmpty())
            text << (difference.Key.IsEmpty() ? " " : ": ") << difference.What;
        if (!difference.Before.IsEmpty() || !difference.After.IsEmpty()) {
            text << ": ";
            AddWord(text, difference.Before);
            text << " -> ";
            AddWord(text, difference.After);
        }
        text << "\n";
    }
    std::fputs(text.Print(), stdout);
}

// Null for what is not there.
void AddMember(TJsonText& json, const char* key, const TString& value)
{
    if (value.IsEmpty())
        json.Null(key);
    else
        json.Text(key, value.Print());
}

void WriteJson(const TEffectDifferences& differences, const char* before, const char* after)
{
    TJsonText json(stdout);
    json.BeginObject();
    json.Whole("version", 1);
    json.BeginObject("tool");
    json.Text("name", "cindermill-batch");
    json.Text("version", GetBatchVersion());
    json.EndObject();
    json.Text("command", "diff");
    json.Text("before", before);
    json.Text("after", after);
    json.BeginArray("differences");
    for (int i = 0; i < differences.size(); ++i) {
        const TDifference& difference = differences[i];
        json.BeginObject();
        json.Text("kind", GetDifferenceName(difference.Kind));
        const bool isOfType = difference.Kind == DK_RETYPED;
        AddMember(json, "node", isOfType ? TString() : difference.Key);
        AddMember(json, "type", isOfType ? difference.Key : TString());
        AddMember(json, "class", difference.ClassName);
        AddMember(json, "what", difference.What);
        AddMember(json, "from", difference.Before);
        AddMember(json, "to", difference.After);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    json.Finish();
}

// False for a format that there is not.
bool TakeFormat(TArguments& arguments, bool& isJson)
{
    if (!arguments.TakeIf("--format"))
        return true;
    isJson = arguments.TakeIf("json");
    return isJson || arguments.TakeIf("text");
}

} // namespace

TDiffCommand::TDiffCommand() : TBatchCommand("diff", "BEFORE AFTER [--format text|json]") {}

const char* TDiffCommand::GetHelp() const
{
    return "Nodes added, removed, rewired, values changed. The status is 1 where there is something.\n"
           "\n"
           "  --format F            text (unless told) or json\n";
}

// The status is that of other programs which compare: 1 where there is a difference.
int TDiffCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    bool isJson = false;
    const bool isFormat = TakeFormat(arguments, isJson);
    const char* before = arguments.TakeName();
    const char* after = before != nullptr ? arguments.TakeName() : nullptr;
    if (!isFormat || after == nullptr || !TakeFormat(arguments, isJson) || !arguments.IsEmpty())
        return ReportUsage("diff takes two files");
    TDocument first(session.GetApp());
    TDocument second(session.GetApp());
    if (!session.LoadFile(first, before) || !session.LoadFile(second, after))
        return StatusErrors;
    const TEffectText firstText(*first.GetGraph());
    const TEffectText secondText(*second.GetGraph());
    const TEffectDifferences differences(firstText, secondText);
    if (isJson)
        WriteJson(differences, before, after);
    else
        WriteText(differences);
    return differences.empty() ? StatusDone : StatusErrors;
}
