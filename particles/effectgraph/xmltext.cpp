#include "particles/effectgraph/xmltext.h"

TString QuoteText(const TString& text, int limit)
{
    TString quoted;
    if (text.Length() <= limit)
        quoted = text;
    else
        quoted.Left(text, limit);
    return quoted;
}

bool AddXmlError(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* message)
{
    errors.Add(new TFileError(fileName, xml.GetLineNumber(), "%s", message));
    return false;
}

bool GetElementText(TXmlFile& xml, TErrorList& errors, const char* fileName, TString& text,
                    const char* readFault)
{
    return xml.GetText(text) || AddXmlError(xml, errors, fileName, readFault);
}

bool LeaveElement(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* leaveFault)
{
    return xml.IsEmptyTag() || xml.LeaveTag() || AddXmlError(xml, errors, fileName, leaveFault);
}

bool ReadElement(TXmlFile& xml, TErrorList& errors, const char* fileName, TString& text,
                 const char* readFault, const char* leaveFault)
{
    return GetElementText(xml, errors, fileName, text, readFault) &&
           CheckTextLength(xml, errors, fileName, text) && LeaveElement(xml, errors, fileName, leaveFault);
}

bool CheckTextLength(TXmlFile& xml, TErrorList& errors, const char* fileName, const TString& text)
{
    return text.Length() <= MaxTextLength ||
           AddXmlError(xml, errors, fileName, "Text longer than %d characters in node type file",
                       MaxTextLength);
}

bool IsTrueText(const TString& text)
{
    return text.Compare("true") == 0 || text.Compare("1") == 0;
}
