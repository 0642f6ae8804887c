#pragma once

#include "library/system/files/xmlfile.h"
#include "particles/effectgraph/error.h"

// A node type file that is being read: its reader, its name, and the list that its faults go to.
class TNodeTypeFile
{
public:
    TNodeTypeFile(TXmlFile& xml, TErrorList& errors, const char* name) : Xml(xml), Errors(errors), Name(name)
    {
    }

    // Adds an error at the reader's line. Always false, for a parse to end with.
    bool Fail(const char* message);
    template <class TFirst, class... TArgs>
    bool Fail(const char* format, TFirst first, TArgs... args)
    {
        Errors.Add(new TFileError(Name, Xml.GetLineNumber(), format, first, args...));
        return false;
    }

    // The text of the element that the reader has just found, which stays open. False with an error.
    bool GetText(TString& text, const char* readFault);
    // Closes the element just found, which no search may have followed. False with an error.
    bool Leave(const char* leaveFault);
    // Both, for a text that will be saved: too long a one is an error.
    bool ReadElement(TString& text, const char* readFault, const char* leaveFault);
    bool CheckTextLength(const TString& text);
    // An optional element of the one just found: what `take` makes of its text, which is false with an error
    // if it refuses it.
    template <class TTake>
    bool ReadOptional(const char* tag, TTake take)
    {
        if (!Xml.FindTagFromHere(tag))
            return true;
        TString fault;
        TString text;
        return GetText(text, fault.Format("Failed to get %s text", tag)) && take(text) &&
               Leave(fault.Format("Parameter missing %s end tag", tag));
    }

    TXmlFile& Xml;

private:
    TErrorList& Errors;
    const char* Name;
};
