#pragma once

#include "support/dice.h"
#include "support/xmltree.h"

#include <string>
#include <vector>

// The node type files of a folder, and edits of them as the people who keep a library make them between two
// runs of the program: names, kinds, links, entries, defaults, groups, whole types. Nearly all of what an
// edit leaves can be read as a node type; the same dice give the same edits.
class TChangedLibrary
{
public:
    // Reads the folder's files.
    explicit TChangedLibrary(const std::string& folder);

    // One edit, most often of one of the types that the caller likes to see changed.
    void Change(TDice& dice, const std::vector<std::string>& liked);
    // Makes the folder hold just these files.
    void Write(const std::string& folder) const;
    // What the edits since the last call did, a line each.
    std::string TakeStory();
    int GetNumTypes() const { return static_cast<int>(Files.size()); }
    // The names of the edits, and which of them was the last that changed something.
    static std::vector<std::string> GetEditNames();
    const std::string& GetLastEdit() const { return LastEdit; }

private:
    struct TFile
    {
        std::string Path;
        TXmlElement Root;
    };
    // What an edit of one type works with. Each edit tells what it did, "" for nothing.
    struct TEdit;
    using TEditFunction = std::string (TChangedLibrary::*)(TEdit& edit);
    struct TEditEntry
    {
        const char* Name;
        TEditFunction Function;
        uint32_t Weight;
    };
    static const std::vector<TEditEntry> Edits;

    size_t ChooseFile(TDice& dice, const std::vector<std::string>& liked) const;

    std::string RenameItem(TEdit& edit);
    std::string RecaseItem(TEdit& edit);
    std::string RemoveItem(TEdit& edit);
    std::string AddItem(TEdit& edit);
    std::string SwapItems(TEdit& edit);
    std::string MoveItem(TEdit& edit);
    std::string ChangeKind(TEdit& edit);
    std::string ChangeValidTypes(TEdit& edit);
    std::string ChangeDefault(TEdit& edit);
    std::string ChangeRequired(TEdit& edit);
    std::string ChangeDescription(TEdit& edit);
    std::string ChangeEnum(TEdit& edit);
    std::string ChangeLink(TEdit& edit);
    std::string ChangeRamp(TEdit& edit);
    std::string WrapInGroup(TEdit& edit);
    std::string UnwrapGroup(TEdit& edit);
    std::string RemoveSection(TEdit& edit);
    std::string RenameType(TEdit& edit);
    std::string SwapTypeNames(TEdit& edit);
    std::string RemoveType(TEdit& edit);
    std::string CopyType(TEdit& edit);
    std::string ChangeCategory(TEdit& edit);
    std::string ChangeLook(TEdit& edit);
    std::string ChangeCode(TEdit& edit);

    std::vector<TFile> Files;
    std::string Story;
    std::string LastEdit;
    int Fresh = 0;
};
