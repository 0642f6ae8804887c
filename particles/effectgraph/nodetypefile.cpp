#include "particles/effectgraph/nodetypefile.h"

#include "particles/effectgraph/xmltext.h"

bool TNodeTypeFile::Fail(const char* message)
{
    return Fail("%s", message);
}

bool TNodeTypeFile::GetText(TString& text, const char* readFault)
{
    return Xml.GetText(text) || Fail(readFault);
}

bool TNodeTypeFile::Leave(const char* leaveFault)
{
    return Xml.IsEmptyTag() || Xml.LeaveTag() || Fail(leaveFault);
}

bool TNodeTypeFile::ReadElement(TString& text, const char* readFault, const char* leaveFault)
{
    return GetText(text, readFault) && CheckTextLength(text) && Leave(leaveFault);
}

bool TNodeTypeFile::CheckTextLength(const TString& text)
{
    return text.Length() <= MaxTextLength ||
           Fail("Text longer than %d characters in node type file", MaxTextLength);
}
