#pragma once

#include <string>
#include <vector>

// One element of a file of nested elements, as far as node type files use them: it holds either elements or a
// text. Comments are not kept.
struct TXmlElement
{
    std::string Tag;
    // As they stand in the file, with the space before them.
    std::string Attributes;
    std::string Text;
    std::vector<TXmlElement> Children;
    // Written as one tag that closes itself.
    bool IsEmpty = false;

    // The first child of the tag, or null.
    TXmlElement* Find(const char* tag);
    const TXmlElement* Find(const char* tag) const;
    // The text of the first child of the tag, or "".
    std::string TextOf(const char* tag) const;
    // Where the first child of the tag stands, or -1.
    int IndexOf(const char* tag) const;
    void Remove(const char* tag);
};

TXmlElement MakeElement(const std::string& tag, const std::string& text);
// The root element of a file's text.
TXmlElement ParseXmlTree(const std::string& text);
std::string PrintXmlTree(const TXmlElement& root);
