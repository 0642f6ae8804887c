#pragma once

#include "library/containers/string.h"

// What is wrong with a file of XML, and where: newlines before the place, from 0.
struct TXmlFault
{
    enum TKind
    {
        None,
        // The tags do not fit each other, or are not taken as they seem to be meant.
        Tags,
        // A zero byte in a tag, at which a name or a value would end; or in the text between tags.
        ZeroInTag,
        ZeroInText
    };
    TKind Kind = None;
    int Line = 0;
    TString Text;
};

// The first fault of each file that TXmlFile, which goes on past such things, would read without a word. A
// file that cannot be read has none.
void CheckXml(const char* path, TXmlFault& tags, TXmlFault& zero);
