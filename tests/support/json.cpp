#include "support/json.h"

#include <cmath>
#include <cstdlib>
#include <regex>
#include <set>

namespace {

const TJson NoJson;

// Takes a document apart from the front.
class TJsonReader
{
public:
    explicit TJsonReader(const std::string& text) : Text(text) {}

    bool Read(TJson& result, std::string& fault)
    {
        if (!ReadValue(result, 0) || (SkipBlanks(), At != Text.size())) {
            fault = "No JSON at byte " + std::to_string(At);
            return false;
        }
        return true;
    }

private:
    void SkipBlanks()
    {
        while (At < Text.size() && std::string(" \t\r\n").find(Text[At]) != std::string::npos)
            ++At;
    }
    bool Take(const char* word)
    {
        const size_t length = std::char_traits<char>::length(word);
        if (Text.compare(At, length, word) != 0)
            return false;
        At += length;
        return true;
    }
    bool ReadValue(TJson& result, int depth)
    {
        SkipBlanks();
        if (depth > 64 || At >= Text.size())
            return false;
        if (Text[At] == '{')
            return ReadObject(result, depth);
        if (Text[At] == '[')
            return ReadArray(result, depth);
        if (Text[At] == '"') {
            result.Kind = TJson::JK_TEXT;
            return ReadText(result.Text);
        }
        if (Take("null"))
            return true;
        if (Take("true") || Take("false")) {
            result.Kind = TJson::JK_FLAG;
            result.Flag = Text[At - 2] == 'u';
            return true;
        }
        return ReadNumber(result);
    }
    bool ReadNumber(TJson& result)
    {
        static const std::regex form("^-?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][-+]?[0-9]+)?");
        std::smatch match;
        const std::string rest = Text.substr(At, 64);
        if (!std::regex_search(rest, match, form))
            return false;
        result.Kind = TJson::JK_NUMBER;
        result.Number = std::strtod(match.str().c_str(), nullptr);
        At += match.str().size();
        return true;
    }
    bool ReadText(std::string& text)
    {
        for (++At; At < Text.size() && Text[At] != '"'; ++At) {
            if (static_cast<unsigned char>(Text[At]) < 0x20)
                return false;
            if (Text[At] != '\\') {
                text += Text[At];
                continue;
            }
            ++At;
            if (At < Text.size() && Text[At] == 'u') {
                if (!ReadCode(text))
                    return false;
                continue;
            }
            const size_t which =
                At < Text.size() ? std::string("\"\\/bfnrt").find(Text[At]) : std::string::npos;
            if (which == std::string::npos)
                return false;
            text += "\"\\/\b\f\n\r\t"[which];
        }
        return At < Text.size() && Text[At++] == '"';
    }
    // Of the characters that the system writes so, none is part of a pair.
    bool ReadCode(std::string& text)
    {
        const std::string digits = Text.substr(At + 1, 4);
        if (!std::regex_match(digits, std::regex("[0-9a-fA-F]{4}")))
            return false;
        const unsigned code = static_cast<unsigned>(std::stoul(digits, nullptr, 16));
        if (code < 0x80) {
            text += static_cast<char>(code);
        } else {
            text += static_cast<char>(0xE0 | (code >> 12));
            text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            text += static_cast<char>(0x80 | (code & 0x3F));
        }
        At += 4;
        return true;
    }
    bool ReadArray(TJson& result, int depth)
    {
        result.Kind = TJson::JK_ARRAY;
        ++At;
        SkipBlanks();
        if (Take("]"))
            return true;
        do {
            result.Items.emplace_back();
            if (!ReadValue(result.Items.back(), depth + 1))
                return false;
            SkipBlanks();
        } while (Take(","));
        return Take("]");
    }
    bool ReadObject(TJson& result, int depth)
    {
        result.Kind = TJson::JK_OBJECT;
        ++At;
        SkipBlanks();
        if (Take("}"))
            return true;
        do {
            SkipBlanks();
            std::string key;
            if (At >= Text.size() || Text[At] != '"' || !ReadText(key) || result.Has(key))
                return false;
            SkipBlanks();
            if (!Take(":") || !ReadValue(result.Members[key], depth + 1))
                return false;
            SkipBlanks();
        } while (Take(","));
        return Take("}");
    }

    const std::string& Text;
    size_t At = 0;
};

// Holds values against the parts of one schema.
class TSchemaCheck
{
public:
    explicit TSchemaCheck(const TJson& root) : Root(root) {}

    void Check(const TJson& schema, const TJson& value, const std::string& place)
    {
        for (const auto& [word, part] : schema.Members)
            CheckWord(schema, word, part, value, place);
    }
    std::vector<std::string> Faults;

private:
    void Fail(const std::string& place, const std::string& what) { Faults.push_back(place + ": " + what); }
    void CheckWord(const TJson& schema, const std::string& word, const TJson& part, const TJson& value,
                   const std::string& place)
    {
        static const std::set<std::string> silent = {"$schema", "$defs", "title", "description"};
        if (silent.count(word) != 0)
            return;
        if (word == "$ref")
            Check(Resolve(part.Text, place), value, place);
        else if (word == "type")
            CheckType(part, value, place);
        else if (word == "const" || word == "enum")
            CheckChoice(word == "const" ? std::vector<TJson>{part} : part.Items, value, place);
        else if (word == "anyOf")
            CheckAnyOf(part, value, place);
        else if (word == "pattern" || word == "minLength")
            CheckText(word, part, value, place);
        else if (word == "minimum")
            CheckMinimum(part, value, place);
        else if (word == "items" || word == "minItems" || word == "maxItems")
            CheckItems(word, part, value, place);
        else if (word == "required" || word == "properties" || word == "additionalProperties")
            CheckMembers(schema, word, value, place);
        else
            Fail(place, "the schema's word \"" + word + "\" is not known");
    }
    const TJson& Resolve(const std::string& reference, const std::string& place)
    {
        const std::string prefix = "#/$defs/";
        if (reference.compare(0, prefix.size(), prefix) != 0 ||
            !Root["$defs"].Has(reference.substr(prefix.size())))
            Fail(place, "the schema refers to " + reference);
        return Root["$defs"][reference.substr(prefix.size())];
    }
    static bool IsOfType(const std::string& type, const TJson& value)
    {
        static const std::map<std::string, TJson::TKind> kinds = {
            {"null", TJson::JK_NULL},      {"boolean", TJson::JK_FLAG}, {"number", TJson::JK_NUMBER},
            {"integer", TJson::JK_NUMBER}, {"string", TJson::JK_TEXT},  {"array", TJson::JK_ARRAY},
            {"object", TJson::JK_OBJECT}};
        return kinds.at(type) == value.Kind &&
               (type != "integer" || value.Number == std::floor(value.Number));
    }
    void CheckType(const TJson& part, const TJson& value, const std::string& place)
    {
        std::vector<TJson> types = part.Items;
        if (part.Kind == TJson::JK_TEXT)
            types.push_back(part);
        for (const TJson& type : types)
            if (IsOfType(type.Text, value))
                return;
        Fail(place, "is of another type");
    }
    void CheckChoice(const std::vector<TJson>& choices, const TJson& value, const std::string& place)
    {
        for (const TJson& choice : choices)
            if (choice == value)
                return;
        Fail(place, "is none of the choices: " + value.Text);
    }
    void CheckAnyOf(const TJson& part, const TJson& value, const std::string& place)
    {
        for (const TJson& schema : part.Items) {
            TSchemaCheck check(Root);
            check.Check(schema, value, place);
            if (check.Faults.empty())
                return;
        }
        Fail(place, "fits none of the schemas");
    }
    void CheckText(const std::string& word, const TJson& part, const TJson& value, const std::string& place)
    {
        if (value.Kind != TJson::JK_TEXT)
            return;
        if (word == "minLength" ? static_cast<double>(value.Text.size()) < part.Number
                                : !std::regex_search(value.Text, std::regex(part.Text)))
            Fail(place, "does not fit its " + word + ": " + value.Text);
    }
    void CheckMinimum(const TJson& part, const TJson& value, const std::string& place)
    {
        if (value.Kind == TJson::JK_NUMBER && value.Number < part.Number)
            Fail(place, "is too small");
    }
    void CheckItems(const std::string& word, const TJson& part, const TJson& value, const std::string& place)
    {
        if (value.Kind != TJson::JK_ARRAY)
            return;
        if (word == "minItems" && value.size() < part.Number)
            Fail(place, "has too few items");
        if (word == "maxItems" && value.size() > part.Number)
            Fail(place, "has too many items");
        for (int i = 0; word == "items" && i < value.size(); ++i)
            Check(part, value[i], place + "[" + std::to_string(i) + "]");
    }
    void CheckMembers(const TJson& schema, const std::string& word, const TJson& value,
                      const std::string& place)
    {
        if (value.Kind != TJson::JK_OBJECT)
            return;
        if (word == "required")
            for (const TJson& key : schema[word].Items)
                if (!value.Has(key.Text))
                    Fail(place, "lacks " + key.Text);
        if (word == "properties")
            for (const auto& [key, member] : schema[word].Members)
                if (value.Has(key))
                    Check(member, value[key], place + "." + key);
        if (word == "additionalProperties")
            CheckFurther(schema, value, place);
    }
    void CheckFurther(const TJson& schema, const TJson& value, const std::string& place)
    {
        const TJson& further = schema["additionalProperties"];
        for (const auto& [key, member] : value.Members) {
            if (schema["properties"].Has(key))
                continue;
            if (further.Kind == TJson::JK_FLAG && !further.Flag)
                Fail(place, "has the unknown member " + key);
            else
                Check(further, member, place + "." + key);
        }
    }

    const TJson& Root;
};

} // namespace

const TJson& TJson::operator[](const std::string& key) const
{
    const auto found = Members.find(key);
    return found != Members.end() ? found->second : NoJson;
}

const TJson& TJson::operator[](int index) const
{
    return index >= 0 && index < size() ? Items[static_cast<size_t>(index)] : NoJson;
}

bool TJson::operator==(const TJson& other) const
{
    return Kind == other.Kind && Flag == other.Flag && Number == other.Number && Text == other.Text &&
           Items == other.Items && Members == other.Members;
}

bool ParseJson(const std::string& text, TJson& result, std::string& fault)
{
    result = TJson();
    return TJsonReader(text).Read(result, fault);
}

std::vector<std::string> FindSchemaFaults(const TJson& schema, const TJson& value)
{
    TSchemaCheck check(schema);
    check.Check(schema, value, "$");
    return check.Faults;
}
