#include "particles/cindermill/batch/dependencyfile.h"

#include "library/system/file.h"

namespace {

class TRuleText
{
public:
    bool AddName(const char* name, TString& fault)
    {
        TString escaped;
        if (!EscapeRuleName(name, escaped)) {
            fault = "No rule can have a file's name with a line's end, a tab or a semicolon in it: ";
            fault += name;
            return false;
        }
        Text += escaped.Print();
        return true;
    }
    void Add(const char* text) { Text += text; }
    bool Write(const char* path, TString& fault) const
    {
        TFile file;
        const bool opened = file.OpenWrite(path);
        if (opened && file.Write(Text.Print(), Text.Length()) && file.Close())
            return true;
        fault = file.GetFault();
        if (file.IsOpen())
            file.Abandon();
        return false;
    }

private:
    TString Text;
};

} // namespace

// The marks before a blank double, as the last of them is the one that escapes it; the colon of a name is
// escaped like the blank.
bool EscapeRuleName(const char* name, TString& escaped)
{
    escaped = nullptr;
    int marks = 0;
    for (const char* ch = name; *ch != 0; ++ch) {
        if (*ch == '\n' || *ch == '\r' || *ch == '\t' || *ch == ';')
            return false;
        if (*ch == ' ')
            for (int i = 0; i < marks; ++i)
                escaped += "\\";
        if (*ch == ' ' || *ch == '#' || *ch == ':')
            escaped += "\\";
        if (*ch == '$')
            escaped += "$";
        const char text[2] = {*ch, 0};
        escaped += text;
        marks = *ch == '\\' ? marks + 1 : 0;
    }
    return true;
}

// A file that goes must not stop the build that would find out, so each has an empty rule of its own.
bool WriteDependencyFile(const char* path, const char* target, const vector<TString>& files, TString& fault)
{
    TRuleText text;
    if (!text.AddName(target, fault))
        return false;
    text.Add(":");
    for (const TString& file : files) {
        text.Add(" \\\n  ");
        if (!text.AddName(file, fault))
            return false;
    }
    text.Add("\n");
    for (const TString& file : files) {
        text.Add("\n");
        if (!text.AddName(file, fault))
            return false;
        text.Add(":\n");
    }
    return text.Write(path, fault);
}
