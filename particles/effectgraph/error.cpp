#include "particles/effectgraph/error.h"

#include "library/containers/shortentext.h"
#include "library/system/file.h"
#include "particles/effectgraph/effectnode.h"

#include <stdio.h>

TString TError::FormatMessage(const char* format, va_list args)
{
    char string[1024];
    const int s = vsnprintf(string, sizeof(string), format, args);
    ASSERT_TEXT(s >= 0 && s < static_cast<int>(sizeof(string)), "s < sizeof(string)");
    return TString(string);
}

TError::TError(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    Message = FormatMessage(format, args);
    va_end(args);
}

TError* TError::Clone() const
{
    return new TError(*this);
}

void TError::GetText(TString& result) const
{
    result = Message;
}

TNodeError::TNodeError(TEffectNode* node, const char* format, ...) : TError(TPlain(), nullptr), Node(node)
{
    va_list args;
    va_start(args, format);
    Message = FormatMessage(format, args);
    va_end(args);
    if (node != nullptr)
        SetSource(TErrorSource{node->GetNodeType(), -1});
}

TError* TNodeError::Clone() const
{
    return new TNodeError(*this);
}

void TNodeError::GetText(TString& result) const
{
    const TNodeType* type = Node != nullptr ? Node->GetNodeType() : nullptr;
    result.Format("Node \"%s\" : %s", type != nullptr ? type->Name.Print() : "", Message.Print());
}

TFileError::TFileError(const char* fileName, int line, const char* format, ...)
    : TError(TPlain(), nullptr), FileName(fileName), Line(line)
{
    va_list args;
    va_start(args, format);
    Message = FormatMessage(format, args);
    va_end(args);
}

TError* TFileError::Clone() const
{
    return new TFileError(*this);
}

void TFileError::GetText(TString& result) const
{
    result.Format("%s [%d] : %s\n", FileName.Print(), Line, Message.Print());
}

TString GetErrorLine(const TError& error)
{
    TString text;
    error.GetText(text);
    const int length = text.Length();
    const bool hasEnd = length > 0 && text.Print()[length - 1] == '\n';
    TString line;
    line.Left(text, hasEnd ? length - 1 : length);
    line = OneLineText(line);
    if (hasEnd)
        line += "\n";
    return line;
}

void TErrorList::Add(TError* error)
{
    if (error->GetSource().Type == nullptr && error->GetSource().Group == -1)
        error->SetSource(Source);
    Errors.push_back(error);
}

void AddReadRefusal(TErrorList& errors, const char* path)
{
    TString text;
    if (GetReadRefusal(path, text))
        errors.Add(new TError("%s", text.Print()));
}
