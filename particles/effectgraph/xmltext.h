#pragma once

#include "library/system/files/xmlfile.h"
#include "particles/effectgraph/error.h"

// What the parsers of node type files share.

// A string of a chunk file can be no longer.
constexpr int MaxTextLength = 4095;

// A text as it may stand in a message, whose length is limited.
TString QuoteText(const TString& text, int limit = 800);

// Adds an error at the reader's line. Always false, for a parse to end with.
bool AddXmlError(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* message);
template <class TFirst, class... TArgs>
bool AddXmlError(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* format, TFirst first,
                 TArgs... args)
{
    errors.Add(new TFileError(fileName, xml.GetLineNumber(), format, first, args...));
    return false;
}

// The text of the element that the reader has just found, which stays open. False with an error.
bool GetElementText(TXmlFile& xml, TErrorList& errors, const char* fileName, TString& text,
                    const char* readFault);
// Closes the element just found, which no search may have followed. False with an error.
bool LeaveElement(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* leaveFault);
// Both, for a text that will be saved: too long a one is an error.
bool ReadElement(TXmlFile& xml, TErrorList& errors, const char* fileName, TString& text,
                 const char* readFault, const char* leaveFault);
bool CheckTextLength(TXmlFile& xml, TErrorList& errors, const char* fileName, const TString& text);

// "true" or "1".
bool IsTrueText(const TString& text);
