#include "support/changedlibrary.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <set>
#include <sstream>

namespace {

// The kinds in the order of their codes: those before NumPortKinds may be ports, those before NumValueKinds
// are the types of a polytype.
constexpr const char* Kinds[] = {"Scalar",        "Scale",    "Vector3", "Quaternion", "Colour", "Transform",
                                 "TextureCoords", "Polytype", "Bool",    "Enum",       "Int",    "Texture",
                                 "Ramp",          "PolyRamp", "Group",   "Animation"};
constexpr size_t NumKinds = std::size(Kinds);
constexpr size_t NumPortKinds = 8;
constexpr size_t NumValueKinds = 7;
// As a polytype input spells them.
constexpr const char* ValueTags[NumValueKinds] = {"scalar", "scale",     "vector3", "quaternion",
                                                  "colour", "transform", "texcoord"};
constexpr int ValueFloats[NumValueKinds] = {1, 2, 3, 3, 4, 6, 4};
constexpr const char* RampTypes[] = {"scalar", "scale", "vector3", "quaternion", "colour"};

enum TSectionKind
{
    PARAMETERS,
    INPUTS,
    OUTPUTS,
    NUM_SECTIONS
};
constexpr const char* SectionTags[NUM_SECTIONS] = {"parameters", "inputs", "outputs"};

bool IsSame(const std::string& a, const std::string& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string Quoted(const std::string& text)
{
    constexpr size_t limit = 60;
    if (text.size() > limit)
        return "\"" + text.substr(0, limit) + "...\" (" + std::to_string(text.size()) + " characters)";
    return "\"" + text + "\"";
}

std::string Recased(const std::string& text)
{
    std::string result = text;
    for (char& c : result) {
        const unsigned char letter = static_cast<unsigned char>(c);
        c = static_cast<char>(std::isupper(letter) ? std::tolower(letter) : std::toupper(letter));
    }
    return result;
}

std::string Floats(TDice& dice, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i > 0 ? ", " : "") + std::to_string(static_cast<int>(dice.Below(41)) - 20) + ".25";
    return text;
}

// "" where there is no file.
std::string BytesOf(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

size_t KindOf(const std::string& tag)
{
    return static_cast<size_t>(std::find_if(std::begin(Kinds), std::end(Kinds),
                                            [&](const char* kind) { return IsSame(kind, tag); }) -
                               std::begin(Kinds));
}

// A child behind those that must stand before it.
void Insert(TXmlElement& parent, const TXmlElement& child, std::initializer_list<const char*> before)
{
    auto at = parent.Children.begin();
    for (auto it = parent.Children.begin(); it != parent.Children.end(); ++it)
        for (const char* tag : before)
            if (it->Tag == tag)
                at = it + 1;
    parent.Children.insert(at, child);
    parent.IsEmpty = false;
}

void SetText(TXmlElement& parent, const char* tag, const std::string& text,
             std::initializer_list<const char*> before)
{
    if (TXmlElement* child = parent.Find(tag)) {
        child->Text = text;
        child->IsEmpty = false;
    } else
        Insert(parent, MakeElement(tag, text), before);
}

} // namespace

// The type that an edit is about, and choices in it.
struct TChangedLibrary::TEdit
{
    // A parameter or port, by the element that holds it.
    struct TItem
    {
        TXmlElement* Holder;
        size_t Index;
        TSectionKind Section;
        TXmlElement& Get() const { return Holder->Children[Index]; }
    };

    TXmlElement& Root() { return Library.Files[File].Root; }
    std::string TypeName() { return Root().TextOf("name"); }

    static void Collect(TXmlElement& holder, TSectionKind section, std::vector<TItem>& items)
    {
        for (size_t i = 0; i < holder.Children.size(); ++i) {
            if (KindOf(holder.Children[i].Tag) == NumKinds)
                continue;
            items.push_back(TItem{&holder, i, section});
            if (TXmlElement* children = holder.Children[i].Find("parameters"))
                Collect(*children, section, items);
        }
    }
    std::vector<TItem> Items()
    {
        std::vector<TItem> items;
        for (int section = 0; section < NUM_SECTIONS; ++section)
            if (TXmlElement* holder = Root().Find(SectionTags[section]))
                Collect(*holder, static_cast<TSectionKind>(section), items);
        return items;
    }
    template <class TMatch>
    bool ChooseItem(TItem& chosen, TMatch&& match)
    {
        std::vector<TItem> items = Items();
        std::erase_if(items, [&](const TItem& item) { return !match(item); });
        if (items.empty())
            return false;
        chosen = items[Dice.Below(static_cast<uint32_t>(items.size()))];
        return true;
    }
    bool ChooseItem(TItem& chosen)
    {
        return ChooseItem(chosen, [](const TItem&) { return true; });
    }
    // The section, made where it is missing.
    TXmlElement& Section(TSectionKind section)
    {
        if (Root().Find(SectionTags[section]) == nullptr) {
            auto at = Root().Children.begin() + Root().IndexOf("code");
            for (int later = NUM_SECTIONS - 1; later > section; --later)
                if (Root().Find(SectionTags[later]) != nullptr)
                    at = Root().Children.begin() + Root().IndexOf(SectionTags[later]);
            Root().Children.insert(at, MakeElement(SectionTags[section], ""));
        }
        TXmlElement& holder = *Root().Find(SectionTags[section]);
        holder.IsEmpty = false;
        return holder;
    }
    // Seldom as long as a text may be, or longer than that.
    std::string FreshName()
    {
        const std::string name = "Fresh " + std::to_string(++Library.Fresh);
        if (!Dice.Chance(0.02))
            return name;
        constexpr size_t longest = 4095;
        return name + std::string(longest - 2 - name.size() + Dice.Below(4), 'x');
    }
    // A name that something in the type bears already, now and then.
    std::string SomeName()
    {
        TItem item;
        if (Dice.Chance(0.7) || !ChooseItem(item))
            return FreshName();
        return item.Get().TextOf("name");
    }
    // The body that a kind needs behind its name and description.
    void AddBody(TXmlElement& item, size_t kind, TSectionKind section)
    {
        if (kind < NumValueKinds)
            AddValueBody(item, kind, section);
        else if (kind == 7)
            AddPolytypeBody(item, section);
        else
            AddParameterBody(item, Kinds[kind]);
    }
    void AddValueBody(TXmlElement& item, size_t kind, TSectionKind section)
    {
        if (kind == 6)
            return;
        if (kind == 5 && section != OUTPUTS) {
            item.Children.push_back(MakeElement("defaultposition", Floats(Dice, 3)));
            item.Children.push_back(MakeElement("defaultrotation", Floats(Dice, 3)));
        } else
            item.Children.push_back(MakeElement("defaultvalue", Floats(Dice, ValueFloats[kind])));
    }
    void AddPolytypeBody(TXmlElement& item, TSectionKind section)
    {
        TXmlElement types = MakeElement("validtypes", "");
        for (size_t type = 0; type < NumValueKinds; ++type)
            if (Dice.Chance(0.5) || (type + 1 == NumValueKinds && types.Children.empty()))
                types.Children.push_back(ValidType(type, section));
        item.Children.push_back(types);
    }
    TXmlElement ValidType(size_t type, TSectionKind section)
    {
        TXmlElement element = MakeElement(section == OUTPUTS ? Kinds[type] : ValueTags[type], "");
        element.IsEmpty = section == OUTPUTS;
        if (section != OUTPUTS)
            element.Children.push_back(MakeElement("defaultvalue", Floats(Dice, ValueFloats[type])));
        return element;
    }
    void AddParameterBody(TXmlElement& item, const std::string& kind)
    {
        if (kind == "Bool")
            item.Children.push_back(MakeElement("defaultvalue", Dice.Chance(0.5) ? "true" : "false"));
        else if (kind == "Int")
            item.Children.push_back(MakeElement("defaultvalue", std::to_string(Dice.Below(20))));
        else if (kind == "Enum")
            for (uint32_t i = 0, count = Dice.Below(5); i < count; ++i)
                item.Children.push_back(MakeElement("value", "Entry " + std::to_string(i)));
        else if (kind == "Ramp")
            item.Children.push_back(MakeElement("type", RampTypes[Dice.Below(std::size(RampTypes))]));
        else if (kind == "PolyRamp")
            item.Children.push_back(MakeElement("output", SomeName()));
        else if (kind == "Group") {
            TXmlElement children = MakeElement("parameters", "");
            for (uint32_t left = Dice.Below(3); left > 0; --left)
                children.Children.push_back(NewItem(PARAMETERS));
            item.Children.push_back(children);
        }
    }
    TXmlElement NewItem(TSectionKind section)
    {
        const size_t kind = Dice.Below(section == PARAMETERS ? NumKinds : NumPortKinds);
        TXmlElement item = MakeElement(Kinds[kind], "");
        item.Children.push_back(MakeElement("name", SomeName()));
        if (Dice.Chance(0.5))
            item.Children.push_back(MakeElement("Description", "Something new."));
        AddBody(item, kind, section);
        return item;
    }
    // Renames in what follows a port of the name.
    void RenameLinks(TSectionKind section, const std::string& from, const std::string& to)
    {
        for (const TItem& item : Items())
            for (TXmlElement& child : item.Get().Children)
                if (child.Tag == (section == INPUTS ? "linkinput" : "linkoutput") ||
                    (section == OUTPUTS && child.Tag == "output"))
                    if (IsSame(child.Text, from))
                        child.Text = to;
    }

    TChangedLibrary& Library;
    TDice& Dice;
    size_t File;
};

const std::vector<TChangedLibrary::TEditEntry> TChangedLibrary::Edits = {
    {"rename a port or parameter", &TChangedLibrary::RenameItem, 12},
    {"change the case of a port's or parameter's name", &TChangedLibrary::RecaseItem, 3},
    {"remove a port or parameter", &TChangedLibrary::RemoveItem, 6},
    {"add a port or parameter", &TChangedLibrary::AddItem, 6},
    {"swap two ports or parameters", &TChangedLibrary::SwapItems, 5},
    {"move a port or parameter to another section", &TChangedLibrary::MoveItem, 3},
    {"change a kind", &TChangedLibrary::ChangeKind, 6},
    {"change valid types", &TChangedLibrary::ChangeValidTypes, 6},
    {"change a default", &TChangedLibrary::ChangeDefault, 3},
    {"change required", &TChangedLibrary::ChangeRequired, 2},
    {"change a description", &TChangedLibrary::ChangeDescription, 4},
    {"change an enum", &TChangedLibrary::ChangeEnum, 5},
    {"change a link", &TChangedLibrary::ChangeLink, 8},
    {"change a ramp", &TChangedLibrary::ChangeRamp, 4},
    {"wrap a parameter in a group", &TChangedLibrary::WrapInGroup, 3},
    {"unwrap a group", &TChangedLibrary::UnwrapGroup, 3},
    {"remove a section", &TChangedLibrary::RemoveSection, 1},
    {"rename a type", &TChangedLibrary::RenameType, 2},
    {"swap two types' names", &TChangedLibrary::SwapTypeNames, 3},
    {"remove a type", &TChangedLibrary::RemoveType, 1},
    {"copy a type", &TChangedLibrary::CopyType, 1},
    {"change the category", &TChangedLibrary::ChangeCategory, 3},
    {"change flags or colour", &TChangedLibrary::ChangeLook, 2},
    {"change the code section", &TChangedLibrary::ChangeCode, 3},
};

std::vector<std::string> TChangedLibrary::GetEditNames()
{
    std::vector<std::string> names;
    for (const TEditEntry& edit : Edits)
        names.push_back(edit.Name);
    return names;
}

TChangedLibrary::TChangedLibrary(const std::string& folder)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".xml")
            continue;
        Files.push_back(TFile{entry.path().filename().string(), ParseXmlTree(BytesOf(entry.path()))});
    }
    // The same dice shall do the same on every machine.
    std::sort(Files.begin(), Files.end(), [](const TFile& a, const TFile& b) { return a.Path < b.Path; });
}

// Most files are as the last library left them.
void TChangedLibrary::Write(const std::string& folder) const
{
    std::filesystem::create_directories(folder);
    std::set<std::string> written;
    for (const TFile& file : Files) {
        const std::string path = folder + "/" + file.Path;
        const std::string text = PrintXmlTree(file.Root);
        if (BytesOf(path) != text)
            std::ofstream(path, std::ios::binary) << text;
        written.insert(file.Path);
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (!written.contains(entry.path().filename().string()))
            std::filesystem::remove(entry.path());
}

std::string TChangedLibrary::TakeStory()
{
    std::string story;
    story.swap(Story);
    return story;
}

size_t TChangedLibrary::ChooseFile(TDice& dice, const std::vector<std::string>& liked) const
{
    if (!liked.empty() && dice.Chance(0.8)) {
        const std::string& name = liked[dice.Below(static_cast<uint32_t>(liked.size()))];
        for (size_t i = 0; i < Files.size(); ++i)
            if (IsSame(Files[i].Root.TextOf("name"), name))
                return i;
    }
    return dice.Below(static_cast<uint32_t>(Files.size()));
}

void TChangedLibrary::Change(TDice& dice, const std::vector<std::string>& liked)
{
    uint32_t total = 0;
    for (const TEditEntry& edit : Edits)
        total += edit.Weight;
    LastEdit.clear();
    // Not every edit has something to work on in the type that was chosen.
    for (int tries = 0; tries < 10 && !Files.empty() && LastEdit.empty(); ++tries) {
        TEdit edit{*this, dice, ChooseFile(dice, liked)};
        const std::string type = edit.TypeName();
        uint32_t chosen = dice.Below(total);
        const TEditEntry* entry = Edits.data();
        while (chosen >= entry->Weight)
            chosen -= entry++->Weight;
        const std::string done = (this->*entry->Function)(edit);
        if (done.empty())
            continue;
        Story += "  " + Quoted(type) + ": " + done + "\n";
        LastEdit = entry->Name;
    }
}

std::string TChangedLibrary::RenameItem(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item))
        return "";
    const std::string from = item.Get().TextOf("name");
    const std::string to = edit.SomeName();
    if (IsSame(from, to))
        return "";
    SetText(item.Get(), "name", to, {});
    const bool withLinks = item.Section != PARAMETERS && edit.Dice.Chance(0.7);
    if (withLinks)
        edit.RenameLinks(item.Section, from, to);
    return item.Get().Tag + " " + Quoted(from) + " of " + SectionTags[item.Section] + " renamed " +
           Quoted(to) + (withLinks ? " with its links" : "");
}

std::string TChangedLibrary::RecaseItem(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item))
        return "";
    const std::string to = Recased(item.Get().TextOf("name"));
    SetText(item.Get(), "name", to, {});
    return "case of " + Quoted(to) + " of " + SectionTags[item.Section];
}

std::string TChangedLibrary::RemoveItem(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item))
        return "";
    const std::string name = item.Get().TextOf("name");
    item.Holder->Children.erase(item.Holder->Children.begin() + static_cast<int>(item.Index));
    return "removed " + Quoted(name) + " of " + SectionTags[item.Section];
}

std::string TChangedLibrary::AddItem(TEdit& edit)
{
    const TSectionKind section = static_cast<TSectionKind>(edit.Dice.Below(NUM_SECTIONS));
    const TXmlElement added = edit.NewItem(section);
    TXmlElement* holder = &edit.Section(section);
    // Into a group of the section, now and then.
    TEdit::TItem group;
    if (section == PARAMETERS && edit.Dice.Chance(0.3) &&
        edit.ChooseItem(group, [](const TEdit::TItem& item) { return item.Get().Tag == "Group"; }) &&
        group.Get().Find("parameters") != nullptr)
        holder = group.Get().Find("parameters");
    const uint32_t at = edit.Dice.Below(static_cast<uint32_t>(holder->Children.size()) + 1);
    holder->Children.insert(holder->Children.begin() + static_cast<int>(at), added);
    holder->IsEmpty = false;
    return "added " + added.Tag + " " + Quoted(added.TextOf("name")) + " to " + SectionTags[section] +
           " at " + std::to_string(at);
}

std::string TChangedLibrary::SwapItems(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item))
        return "";
    const size_t other = edit.Dice.Below(static_cast<uint32_t>(item.Holder->Children.size()));
    TXmlElement& second = item.Holder->Children[other];
    if (other == item.Index)
        return "";
    std::swap(item.Get(), second);
    return "swapped " + Quoted(item.Get().TextOf("name")) + " and " + Quoted(second.TextOf("name")) + " of " +
           SectionTags[item.Section];
}

std::string TChangedLibrary::MoveItem(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) {
            return each.Section != OUTPUTS && KindOf(each.Get().Tag) < NumPortKinds;
        }))
        return "";
    const TSectionKind to = item.Section == PARAMETERS ? INPUTS : PARAMETERS;
    const TXmlElement moved = item.Get();
    item.Holder->Children.erase(item.Holder->Children.begin() + static_cast<int>(item.Index));
    edit.Section(to).Children.push_back(moved);
    return "moved " + Quoted(moved.TextOf("name")) + " to " + SectionTags[to];
}

std::string TChangedLibrary::ChangeKind(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item))
        return "";
    const size_t kind = edit.Dice.Below(item.Section == PARAMETERS ? NumKinds : NumPortKinds);
    TXmlElement& element = item.Get();
    if (IsSame(element.Tag, Kinds[kind]))
        return "";
    TXmlElement changed = MakeElement(Kinds[kind], "");
    changed.Attributes = element.Attributes;
    for (const TXmlElement& child : element.Children)
        if (child.Tag == "name" || child.Tag == "Description")
            changed.Children.push_back(child);
    edit.AddBody(changed, kind, item.Section);
    const std::string from = element.Tag;
    element = changed;
    return Quoted(element.TextOf("name")) + " of " + SectionTags[item.Section] + " from " + from + " to " +
           element.Tag;
}

std::string TChangedLibrary::ChangeValidTypes(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item,
                         [](const TEdit::TItem& each) { return each.Get().Find("validtypes") != nullptr; }))
        return "";
    TXmlElement& types = *item.Get().Find("validtypes");
    const size_t type = edit.Dice.Below(NumValueKinds);
    const char* const* tags = item.Section == OUTPUTS ? Kinds : ValueTags;
    const std::string name = Quoted(item.Get().TextOf("name")) + " of " + SectionTags[item.Section];
    if (types.Find(tags[type]) != nullptr) {
        if (types.Children.size() == 1)
            return "";
        types.Remove(tags[type]);
        return std::string(tags[type]) + " is no type of " + name + " now";
    }
    // The reader wants them in ascending order.
    size_t at = 0;
    while (at < types.Children.size() && std::find(tags, tags + type, types.Children[at].Tag) != tags + type)
        ++at;
    types.Children.insert(types.Children.begin() + static_cast<int>(at), edit.ValidType(type, item.Section));
    types.IsEmpty = false;
    return std::string(tags[type]) + " is a type of " + name + " now";
}

std::string TChangedLibrary::ChangeDefault(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item,
                         [](const TEdit::TItem& each) { return each.Get().Find("defaultvalue") != nullptr; }))
        return "";
    TXmlElement& value = *item.Get().Find("defaultvalue");
    const size_t kind = KindOf(item.Get().Tag);
    if (kind < NumValueKinds && edit.Dice.Chance(0.7))
        value.Text = Floats(edit.Dice, ValueFloats[kind]);
    else if (value.Text == "true" || value.Text == "false")
        value.Text = value.Text == "true" ? "false" : "true";
    else
        item.Get().Remove("defaultvalue");
    return "default of " + Quoted(item.Get().TextOf("name"));
}

std::string TChangedLibrary::ChangeRequired(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) { return each.Section == INPUTS; }))
        return "";
    std::string& attributes = item.Get().Attributes;
    attributes = attributes.empty() ? " required=true" : "";
    return Quoted(item.Get().TextOf("name")) + (attributes.empty() ? " not required" : " required");
}

std::string TChangedLibrary::ChangeDescription(TEdit& edit)
{
    const std::string text = "Told in other words, " + edit.FreshName() + ".";
    TEdit::TItem item;
    const bool ofItem = edit.Dice.Chance(0.7) && edit.ChooseItem(item);
    TXmlElement& owner = ofItem ? item.Get() : edit.Root();
    const char* tag = ofItem ? "Description" : "description";
    if (edit.Dice.Chance(0.2))
        owner.Remove(tag);
    else
        SetText(owner, tag, text, {"name"});
    return "description of " + (ofItem ? Quoted(owner.TextOf("name")) : "the type");
}

std::string TChangedLibrary::ChangeEnum(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) { return each.Get().Tag == "Enum"; }))
        return "";
    TXmlElement& element = item.Get();
    const std::string of = " of enum " + Quoted(element.TextOf("name"));
    std::vector<size_t> values;
    for (size_t i = 0; i < element.Children.size(); ++i)
        if (element.Children[i].Tag == "value")
            values.push_back(i);
    if (values.empty() || edit.Dice.Chance(0.2)) {
        const std::string text = "Fresh " + std::to_string(++Fresh) + "=77";
        Insert(element, MakeElement("value", text), {"name", "Description"});
        return "new first entry" + of;
    }
    const uint32_t count = static_cast<uint32_t>(values.size());
    const size_t at = values[edit.Dice.Below(count)];
    TXmlElement& value = element.Children[at];
    const std::string old = value.Text;
    const std::string name = old.substr(0, old.find('='));
    const uint32_t what = edit.Dice.Below(5);
    // A default that no entry bears could not be read.
    if (what < 2 && element.TextOf("defaultvalue") == name)
        SetText(element, "defaultvalue", "", {});
    switch (what) {
    case 0:
        element.Children.erase(element.Children.begin() + static_cast<int>(at));
        break;
    case 1:
        value.Text = "Fresh " + std::to_string(++Fresh) + old.substr(name.size());
        break;
    case 2:
        value.Text = name + "=" + std::to_string(edit.Dice.Below(30));
        break;
    case 3:
        std::swap(value, element.Children[values[edit.Dice.Below(count)]]);
        break;
    default:
        SetText(element, "defaultvalue", name, {"name", "Description", "value"});
        break;
    }
    if (element.Find("defaultvalue") != nullptr && element.TextOf("defaultvalue").empty())
        element.Remove("defaultvalue");
    static constexpr const char* Done[] = {"removed", "renamed", "renumbered", "moved", "made the default"};
    return std::string(Done[what]) + " " + Quoted(old) + of;
}

std::string TChangedLibrary::ChangeLink(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item,
                         [](const TEdit::TItem& each) { return each.Get().Find("validtypes") != nullptr; }))
        return "";
    TXmlElement& element = item.Get();
    const bool toInput = edit.Dice.Chance(0.6);
    const char* tag = toInput ? "linkinput" : "linkoutput";
    const std::string of = std::string(tag) + " of " + Quoted(element.TextOf("name"));
    if (element.Find(tag) != nullptr && edit.Dice.Chance(0.3)) {
        element.Remove(tag);
        return "removed " + of;
    }
    // A port that is there, mostly; a type with another link cannot be read.
    TEdit::TItem target;
    std::string to = "Nowhere";
    if (edit.Dice.Chance(0.85) && edit.ChooseItem(target, [&](const TEdit::TItem& each) {
            return each.Section == (toInput ? INPUTS : OUTPUTS);
        }))
        to = target.Get().TextOf("name");
    if (toInput)
        SetText(element, tag, to, {"name", "Description"});
    else
        SetText(element, tag, to, {"name", "Description", "linkinput"});
    return of + " is " + Quoted(to);
}

std::string TChangedLibrary::ChangeRamp(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) {
            return each.Get().Tag == "Ramp" || each.Get().Tag == "PolyRamp";
        }))
        return "";
    TXmlElement& ramp = item.Get();
    const std::string of = " of ramp " + Quoted(ramp.TextOf("name"));
    if (edit.Dice.Chance(0.3)) {
        ramp.Remove("defaultvalues");
        return "no defaults" + of;
    }
    if (ramp.Tag == "PolyRamp") {
        TEdit::TItem target;
        std::string to = "Nowhere";
        if (edit.Dice.Chance(0.7) &&
            edit.ChooseItem(target, [](const TEdit::TItem& each) { return each.Section == OUTPUTS; }))
            to = target.Get().TextOf("name");
        SetText(ramp, "output", to, {"name", "Description", "defaultvalues"});
        return "output " + Quoted(to) + of;
    }
    std::string type = RampTypes[edit.Dice.Below(std::size(RampTypes))];
    if (edit.Dice.Chance(0.3))
        type += "=one,two";
    SetText(ramp, "type", type, {"name", "Description"});
    return "type " + Quoted(type) + of;
}

std::string TChangedLibrary::WrapInGroup(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) { return each.Section == PARAMETERS; }))
        return "";
    TXmlElement group = MakeElement("Group", "");
    group.Children.push_back(MakeElement("name", edit.SomeName()));
    group.Children.push_back(MakeElement("parameters", ""));
    const std::string name = item.Get().TextOf("name");
    group.Children.back().Children.push_back(item.Get());
    item.Get() = group;
    return Quoted(name) + " wrapped in group " + Quoted(group.TextOf("name"));
}

std::string TChangedLibrary::UnwrapGroup(TEdit& edit)
{
    TEdit::TItem item;
    if (!edit.ChooseItem(item, [](const TEdit::TItem& each) { return each.Get().Tag == "Group"; }))
        return "";
    const TXmlElement group = item.Get();
    std::vector<TXmlElement>& list = item.Holder->Children;
    list.erase(list.begin() + static_cast<int>(item.Index));
    if (const TXmlElement* children = group.Find("parameters"))
        list.insert(list.begin() + static_cast<int>(item.Index), children->Children.begin(),
                    children->Children.end());
    return "group " + Quoted(group.TextOf("name")) + " unwrapped";
}

std::string TChangedLibrary::RemoveSection(TEdit& edit)
{
    const char* tag = SectionTags[edit.Dice.Below(NUM_SECTIONS)];
    if (edit.Root().Find(tag) == nullptr)
        return "";
    edit.Root().Remove(tag);
    return std::string(tag) + " removed";
}

std::string TChangedLibrary::RenameType(TEdit& edit)
{
    const std::string to = edit.Dice.Chance(0.4) ? Recased(edit.TypeName()) : edit.FreshName();
    SetText(edit.Root(), "name", to, {});
    return "type renamed " + Quoted(to);
}

std::string TChangedLibrary::SwapTypeNames(TEdit& edit)
{
    TXmlElement& other = Files[edit.Dice.Below(static_cast<uint32_t>(Files.size()))].Root;
    const std::string to = other.TextOf("name");
    if (to == edit.TypeName())
        return "";
    SetText(other, "name", edit.TypeName(), {});
    SetText(edit.Root(), "name", to, {});
    return "type swapped its name with " + Quoted(to);
}

std::string TChangedLibrary::RemoveType(TEdit& edit)
{
    Files.erase(Files.begin() + static_cast<int>(edit.File));
    return "type removed";
}

// Under a new name, or beside the old one under the same.
std::string TChangedLibrary::CopyType(TEdit& edit)
{
    TFile copy = Files[edit.File];
    copy.Path = "copy " + std::to_string(++Fresh) + ".xml";
    if (edit.Dice.Chance(0.5))
        SetText(copy.Root, "name", edit.FreshName(), {});
    Files.push_back(copy);
    return "type copied as " + Quoted(copy.Root.TextOf("name"));
}

std::string TChangedLibrary::ChangeCategory(TEdit& edit)
{
    static constexpr const char* Categories[] = {"trigger", "emitter", "process", "render", "effect"};
    const char* to = Categories[edit.Dice.Below(std::size(Categories))];
    if (edit.Root().TextOf("type") == to)
        return "";
    SetText(edit.Root(), "type", to, {"name", "description"});
    return std::string("category ") + to;
}

std::string TChangedLibrary::ChangeLook(TEdit& edit)
{
    static constexpr const char* Colours[] = {"red", "green", "blue", "cyan"};
    static constexpr const char* Flags[] = {"bypassable", "processhint", "lasthint"};
    if (edit.Dice.Chance(0.3)) {
        SetText(edit.Root(), "colour", Colours[edit.Dice.Below(std::size(Colours))], {});
        return "colour " + edit.Root().TextOf("colour");
    }
    const uint32_t flag = edit.Dice.Below(std::size(Flags));
    if (edit.Root().Find(Flags[flag]) != nullptr) {
        edit.Root().Remove(Flags[flag]);
        return std::string("not ") + Flags[flag];
    }
    TXmlElement element = MakeElement(Flags[flag], "");
    element.IsEmpty = true;
    // The reader wants them in this order.
    if (flag == 0)
        Insert(edit.Root(), element, {"type"});
    else if (flag == 1)
        Insert(edit.Root(), element, {"type", "bypassable"});
    else
        Insert(edit.Root(), element, {"type", "bypassable", "processhint"});
    return Flags[flag];
}

std::string TChangedLibrary::ChangeCode(TEdit& edit)
{
    TXmlElement* code = edit.Root().Find("code");
    if (code == nullptr)
        return "";
    const uint32_t what = edit.Dice.Below(4);
    if (what == 0)
        SetText(*code, "classname", "TNothingOfTheKind", {});
    else if (what == 1) {
        TXmlElement* other = Files[edit.Dice.Below(static_cast<uint32_t>(Files.size()))].Root.Find("code");
        if (other != nullptr)
            SetText(*code, "classname", other->TextOf("classname"), {});
    } else if (what == 2 && code->Find("displayclass") != nullptr)
        code->Remove("displayclass");
    else if (what == 2)
        SetText(*code, "displayclass", "TGridDisplay", {"classname"});
    else
        SetText(*code, "interface", "first,second " + std::to_string(++Fresh), {"classname", "displayclass"});
    return "class " + code->TextOf("classname") + ", display " + code->TextOf("displayclass") +
           ", interface " + code->TextOf("interface");
}
