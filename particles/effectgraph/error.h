#pragma once

#include "library/containers/ownerlist.h"
#include "library/containers/string.h"

#include <cstdarg>

class TEffectNode;
class TNodeType;

// What a problem is about, beside its text, which two nodes of one name share: the node's own type, which no
// other node has, and the group. Null and -1 where it is about none.
struct TErrorSource
{
    const TNodeType* Type = nullptr;
    int Group = -1;
};

// One problem that loading, scheduling or exporting met. Messages hold at most 1,023 characters.
class TError
{
public:
    explicit TError(const char* format, ...) CINDERMILL_PRINTF(2, 3);
    virtual ~TError() = default;
    // The caller owns the copy.
    virtual TError* Clone() const;
    virtual void GetText(TString& result) const;
    const TString& GetMessage() const { return Message; }
    const TErrorSource& GetSource() const { return Source; }
    void SetSource(const TErrorSource& source) { Source = source; }

protected:
    struct TPlain
    {
    };
    TError(TPlain, const char* message) : Message(message) {}
    static TString FormatMessage(const char* format, va_list args);

    TString Message;
    TErrorSource Source;
};

// A problem of one node, so that the tool can show it.
class TNodeError : public TError
{
public:
    TNodeError(TEffectNode* node, const char* format, ...) CINDERMILL_PRINTF(3, 4);
    TError* Clone() const override;
    void GetText(TString& result) const override;
    TEffectNode* GetNode() const { return Node; }

private:
    TNodeError(const TNodeError&) = default;
    TEffectNode* Node;
};

// A problem at a line of a file.
class TFileError : public TError
{
public:
    TFileError(const char* fileName, int line, const char* format, ...) CINDERMILL_PRINTF(4, 5);
    TError* Clone() const override;
    void GetText(TString& result) const override;
    const TString& GetFileName() const { return FileName; }
    int GetLine() const { return Line; }

private:
    TFileError(const TFileError&) = default;
    TString FileName;
    int Line;
};

// The text for who shows it in a line: an error keeps the line's end that it comes with; one within it, of a
// node's name perhaps, would make two of it.
TString GetErrorLine(const TError& error);

// The collected problems of one piece of work, in the order in which they came. Owns them.
class TErrorList
{
public:
    // Takes ownership.
    void Add(TError* error);
    void Clear() { Errors.clear(); }
    // What the errors that follow are about. An assertion leaves it as it is, so that who catches it knows.
    void SetSource(const TNodeType* type, int group) { Source = TErrorSource{type, group}; }
    void ClearSource() { Source = TErrorSource(); }
    bool empty() const { return Errors.empty(); }
    int size() const { return Errors.size(); }
    TError* const* begin() const { return Errors.begin(); }
    TError* const* end() const { return Errors.end(); }

private:
    TOwnerList<TError> Errors;
    TErrorSource Source;
};

// Adds what the system says of a file that is there and cannot be opened for reading; nothing for others.
void AddReadRefusal(TErrorList& errors, const char* path);
