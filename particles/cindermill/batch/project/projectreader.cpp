#include "library/system/file.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/findings/findingkinds.h"
#include "particles/cindermill/batch/project/project.h"
#include "particles/effectgraph/error.h"

#include <algorithm>
#include <climits>
#include <cstring>

#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

namespace {

const char* GetKindName(const toml::node& node)
{
    switch (node.type()) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "an array";
    case toml::node_type::string:
        return "a text";
    case toml::node_type::integer:
        return "a whole number";
    case toml::node_type::floating_point:
        return "a number with a point";
    case toml::node_type::boolean:
        return "true or false";
    default:
        return "a time";
    }
}

int GetLine(const toml::node& node)
{
    return static_cast<int>(node.source().begin.line);
}

TString ToText(std::string_view view)
{
    TString text;
    text.Assign(view.data(), view.data() + view.size());
    return text;
}

// Reads the whole file; false with the reason.
bool ReadText(const char* path, std::string& text, TString& fault)
{
    TFile file;
    if (!file.OpenRead(path)) {
        fault = file.GetFault();
        if (fault.IsEmpty())
            fault = "The file cannot be read";
        return false;
    }
    text.resize(static_cast<size_t>(file.GetSize()));
    const bool read = file.Read(text.data(), file.GetSize());
    if (!read)
        fault = "The file cannot be read";
    file.Close();
    return read;
}

} // namespace

// Takes a project's values out of its file, and tells of everything there that it does not know.
class TProjectReader
{
public:
    TProjectReader(TProject& project, const char* path) : Project(project)
    {
        TString kept;
        ToKeptPath(path, kept);
        if (kept.FindLast('\\') != -1)
            Folder.SetDirectory(path);
        HasFolder = kept.FindLast('\\') != -1;
    }
    void Read(const toml::table& file);
    // By rising lines. False if there is one.
    bool TellFaults(const char* path, TErrorList& errors);

private:
    struct TFault
    {
        int Line;
        TString Text;
    };

    template <class... TArgs>
    void Tell(const toml::node& node, const char* format, TArgs... args)
    {
        TFault fault{GetLine(node), TString()};
        fault.Text.Format(format, args...);
        Append(Faults, fault);
    }
    void TellKind(const char* key, const char* wanted, const toml::node& value)
    {
        Tell(value, "\"%.200s\" takes %s, not %s", key, wanted, GetKindName(value));
    }
    void TellUnknown(const char* key, const char* where, const toml::node& value)
    {
        Tell(value, "There is no key \"%.200s\" %s", key, where);
    }
    const toml::table* TakeTable(const char* key, const toml::node& value);
    bool TakeText(const char* key, const toml::node& value, TString& result);
    bool TakeWhole(const char* key, const toml::node& value, int64_t max, int64_t& result);
    void TakeFolder(const char* key, const toml::node& value, TString& result);
    void TakePlace(const toml::node& value, TProject::TAllowance& allowance);
    void ReadPolicies(const toml::table& policies);
    void ReadBudgets(const toml::table& budgets);
    void ReadSeverities(const toml::table& severities, const TString& prefix);
    void ReadSeverity(const TString& id, const toml::node& value);
    void ReadAllowances(const toml::node& value);
    void ReadAllowance(const toml::table& table);
    bool TakeFinding(const toml::node& value, TString& id);
    TString FromHere(const char* path) const;

    TProject& Project;
    vector<TFault> Faults;
    TString Folder;
    bool HasFolder = false;
};

// Paths are meant from where the project file lies.
TString TProjectReader::FromHere(const char* path) const
{
    TString given(path);
    if (!HasFolder || given.IsAbsolutePath() || *given.Print() == '/' || *given.Print() == '\\')
        return given;
    TString whole(Folder);
    whole += "/";
    whole += path;
    return whole;
}

const toml::table* TProjectReader::TakeTable(const char* key, const toml::node& value)
{
    if (!value.is_table())
        TellKind(key, "a table", value);
    return value.as_table();
}

bool TProjectReader::TakeText(const char* key, const toml::node& value, TString& result)
{
    const auto* text = value.as_string();
    if (text == nullptr) {
        TellKind(key, "a text", value);
        return false;
    }
    if (text->get().empty() || text->get().find('\0') != std::string::npos) {
        Tell(value, "\"%.200s\" is empty, or holds a zero", key);
        return false;
    }
    result = ToText(text->get());
    return true;
}

bool TProjectReader::TakeWhole(const char* key, const toml::node& value, int64_t max, int64_t& result)
{
    const auto* number = value.as_integer();
    if (number == nullptr) {
        TellKind(key, "a whole number", value);
        return false;
    }
    if (number->get() < 0 || number->get() > max) {
        Tell(value, "\"%.200s\" takes a number from 0 to %lld", key, static_cast<long long>(max));
        return false;
    }
    result = number->get();
    return true;
}

void TProjectReader::TakeFolder(const char* key, const toml::node& value, TString& result)
{
    TString given;
    if (!TakeText(key, value, given))
        return;
    result = FromHere(given);
    if (!IsDirectory(result))
        Tell(value, "\"%.200s\" names no folder: %.400s", key, result.Print());
}

void TProjectReader::ReadPolicies(const toml::table& policies)
{
    struct TRow
    {
        const char* Key;
        bool TProjectPolicies::*Policy;
    };
    static const TRow Rows[] = {
        {"failure-prevents-export", &TProjectPolicies::FailurePreventsExport},
        {"must-have-bounding-box", &TProjectPolicies::MustHaveBoundingBox},
        {"no-mixed-bounding-boxes", &TProjectPolicies::NoMixedBoundingBoxes},
    };
    for (const auto& [key, value] : policies) {
        const TString name = ToText(key.str());
        const TRow* found = nullptr;
        for (const TRow& row : Rows)
            if (name.Compare(row.Key, true) == 0)
                found = &row;
        const auto* flag = value.as_boolean();
        if (found == nullptr)
            TellUnknown(name.Print(), "among the policies", value);
        else if (flag == nullptr)
            TellKind(found->Key, "true or false", value);
        else
            Project.Policies.*found->Policy = flag->get();
    }
}

void TProjectReader::ReadBudgets(const toml::table& budgets)
{
    for (const auto& [key, value] : budgets) {
        const TString name = ToText(key.str());
        int found = 0;
        while (found < BG_NUMBUDGETS && name.Compare(GetBudgetName(static_cast<TBudget>(found)), true) != 0)
            ++found;
        if (found == BG_NUMBUDGETS)
            TellUnknown(name.Print(), "among the budgets", value);
        else
            TakeWhole(name.Print(), value, INT_MAX, Project.Limits[found]);
    }
}

// A key with a point in it may be written with quotes or without: the latter is a table in a table.
void TProjectReader::ReadSeverities(const toml::table& severities, const TString& prefix)
{
    for (const auto& [key, value] : severities) {
        TString id(prefix);
        id += ToText(key.str()).Print();
        if (!value.is_table()) {
            ReadSeverity(id, value);
            continue;
        }
        id += ".";
        ReadSeverities(*value.as_table(), id);
    }
}

void TProjectReader::ReadSeverity(const TString& id, const toml::node& value)
{
    if (FindFindingKind(id.Print()) == nullptr) {
        TellUnknown(id.Print(), "among the findings", value);
        return;
    }
    TString name;
    if (!TakeText(id.Print(), value, name))
        return;
    TFindingSeverity severity;
    if (ParseSeverity(name, severity))
        Append(Project.Severities, TProject::TSeverity{id, severity});
    else
        Tell(value, "\"%.200s\" is \"note\", \"warning\" or \"error\", not \"%.200s\"", id.Print(),
             name.Print());
}

bool TProjectReader::TakeFinding(const toml::node& value, TString& id)
{
    if (!TakeText("finding", value, id))
        return false;
    if (FindFindingKind(id) != nullptr)
        return true;
    Tell(value, "There is no finding \"%.200s\"", id.Print());
    return false;
}

void TProjectReader::TakePlace(const toml::node& value, TProject::TAllowance& allowance)
{
    const toml::array* pair = value.as_array();
    const bool isPair =
        pair != nullptr && pair->size() == 2 && pair->get(0)->is_number() && pair->get(1)->is_number();
    if (!isPair) {
        Tell(value, "\"%s\" takes two numbers in brackets", "at");
        return;
    }
    allowance.X = static_cast<float>(*pair->get(0)->value<double>());
    allowance.Y = static_cast<float>(*pair->get(1)->value<double>());
    allowance.HasPlace = true;
}

void TProjectReader::ReadAllowance(const toml::table& table)
{
    TProject::TAllowance allowance;
    const int before = Faults.size();
    for (const auto& [key, value] : table) {
        const TString name = ToText(key.str());
        int64_t group = -1;
        if (name.Compare("finding", true) == 0)
            TakeFinding(value, allowance.Id);
        else if (name.Compare("file", true) == 0)
            TakeText("file", value, allowance.File);
        else if (name.Compare("node", true) == 0)
            TakeText("node", value, allowance.Node);
        else if (name.Compare("reason", true) == 0)
            TakeText("reason", value, allowance.Reason);
        else if (name.Compare("at", true) == 0)
            TakePlace(value, allowance);
        else if (name.Compare("group", true) != 0)
            TellUnknown(name.Print(), "of an allowed finding", value);
        else if (TakeWhole("group", value, INT_MAX, group))
            allowance.Group = static_cast<int>(group);
    }
    if (Faults.size() != before)
        return;
    if (allowance.Id.IsEmpty() || allowance.File.IsEmpty() || allowance.Reason.IsEmpty()) {
        Tell(table, "An allowed finding needs \"%s\", \"%s\" and \"%s\"", "finding", "file", "reason");
        return;
    }
    allowance.File = FromHere(allowance.File);
    Append(Project.Allowances, allowance);
}

void TProjectReader::ReadAllowances(const toml::node& value)
{
    const toml::array* list = value.as_array();
    if (list == nullptr) {
        TellKind("allow", "tables in double brackets", value);
        return;
    }
    for (const toml::node& entry : *list) {
        if (entry.is_table())
            ReadAllowance(*entry.as_table());
        else
            TellKind("allow", "tables in double brackets", entry);
    }
}

void TProjectReader::Read(const toml::table& file)
{
    for (const auto& [key, value] : file) {
        const TString name = ToText(key.str());
        const toml::table* table = nullptr;
        if (name.Compare("node-types", true) == 0)
            TakeFolder("node-types", value, Project.NodeTypes);
        else if (name.Compare("resources", true) == 0)
            TakeFolder("resources", value, Project.Resources);
        else if (name.Compare("allow", true) == 0)
            ReadAllowances(value);
        else if (name.Compare("policies", true) == 0) {
            if ((table = TakeTable("policies", value)) != nullptr)
                ReadPolicies(*table);
        } else if (name.Compare("budgets", true) == 0) {
            if ((table = TakeTable("budgets", value)) != nullptr)
                ReadBudgets(*table);
        } else if (name.Compare("severities", true) == 0) {
            if ((table = TakeTable("severities", value)) != nullptr)
                ReadSeverities(*table, nullptr);
        } else
            TellUnknown(name.Print(), "in a project file", value);
    }
}

// A table gives its keys by their names.
bool TProjectReader::TellFaults(const char* path, TErrorList& errors)
{
    std::stable_sort(Faults.begin(), Faults.end(),
                     [](const TFault& a, const TFault& b) { return a.Line < b.Line; });
    for (const TFault& fault : Faults)
        errors.Add(new TFileError(path, fault.Line, "%.1000s", fault.Text.Print()));
    return Faults.empty();
}

bool TProject::Load(const char* path, TErrorList& errors)
{
    std::string text;
    TString fault;
    if (!ReadText(path, text, fault)) {
        errors.Add(new TError("%.500s: %.400s", path, fault.Print()));
        return false;
    }
    const toml::parse_result parsed = toml::parse(std::string_view(text));
    if (!parsed) {
        const toml::parse_error& error = parsed.error();
        errors.Add(new TFileError(path, static_cast<int>(error.source().begin.line), "%.500s",
                                  ToText(error.description()).Print()));
        return false;
    }
    TProjectReader reader(*this, path);
    reader.Read(parsed.table());
    Path = path;
    return reader.TellFaults(path, errors);
}
