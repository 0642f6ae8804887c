#pragma once

#include <map>
#include <string>
#include <vector>

// A JSON document as a test reads it: strictly, so that what is no JSON is noticed.
struct TJson
{
    enum TKind
    {
        JK_NULL,
        JK_FLAG,
        JK_NUMBER,
        JK_TEXT,
        JK_ARRAY,
        JK_OBJECT
    };

    TKind Kind = JK_NULL;
    bool Flag = false;
    double Number = 0.0;
    std::string Text;
    std::vector<TJson> Items;
    std::map<std::string, TJson> Members;

    bool Has(const std::string& key) const { return Members.count(key) != 0; }
    // A null value for a member that is not there.
    const TJson& operator[](const std::string& key) const;
    const TJson& operator[](int index) const;
    int size() const { return static_cast<int>(Items.size()); }
    bool operator==(const TJson& other) const;
};

// False with the place and the reason.
bool ParseJson(const std::string& text, TJson& result, std::string& fault);

// What of a value its schema does not allow, each with its place. A word of the schema that is not known here
// is a fault too, so that none is passed over.
std::vector<std::string> FindSchemaFaults(const TJson& schema, const TJson& value);
