#pragma once

#include "library/containers/callbacklist.h"
#include "library/containers/string.h"
#include "library/system/files/chunkfile.h"
#include "particles/effectgraph/valuetype.h"

class TNodeTypeFile;
class TRefreshRecord;

// The kinds of parameter. The first eight are the value types; only they can be input ports.
enum TParameterKind
{
    PK_BOOL = TY_NUMTYPES,
    PK_ENUM,
    PK_INT,
    PK_TEXTURE,
    PK_RAMP,
    PK_POLYRAMP,
    PK_GROUP,
    PK_ANIMATION,
    PK_NUMKINDS
};

// The XML tag of a kind.
const char* GetParameterTag(int kind);

// A named value of a node that a person can edit. An input port is one too: its value is in force while
// nothing is wired to it. A parameter belongs to its node type; in a document it is a chunk of its own.
class TNodeParameter : public TRegistered<TNodeParameter, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TNodeParameter";

    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    int GetVersion() override { return 1; }

    // Reads the element that the reader has just opened; false with an error in the list.
    virtual bool ParseXml(TNodeTypeFile& file) = 0;
    // A copy without listeners and outside of any chunk file; the caller owns it.
    virtual TNodeParameter* Clone() const = 0;
    // Takes the value over where the kinds allow it, otherwise does nothing.
    virtual void CopyValue(const TNodeParameter& other) { (void)other; }
    // The value's floats for the value kinds (the current type's for a polytype); nothing for the others.
    virtual void GetValue(float* out) const { (void)out; }
    // Takes over all that a node type tells of a parameter of this kind, and keeps the value. What has no
    // place in it any more leaves the chunk file.
    virtual void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                                  TRefreshRecord& record);
    // Enters the parameter and what it holds.
    virtual void AddToChunkFile(TChunkFile& chunkFile);
    virtual void RemoveFromChunkFile(TChunkFile& chunkFile);
    // The parameters that this one owns: a group's children, a polytype's values (null entries left out).
    virtual void GetOwned(vector<TNodeParameter*>& result) const { (void)result; }

    // The type of GetValue's floats: Type for a value kind, the current type for a polytype.
    virtual int GetValueType() const { return Type; }

    using TCallback = TCallbackList<TNodeParameter*>::TFunction;
    void AddCallback(TCallback cb, void* data) { Callbacks.Add(cb, data); }
    void RemoveCallback(TCallback cb, void* data) { Callbacks.Remove(cb, data); }
    void NotifyChanged() { Callbacks.Call(this); }

    TString Name;
    TString Description;
    int Type = 0;
    bool Required = false;

protected:
    TNodeParameter() = default;
    explicit TNodeParameter(int type) : Type(type) {}
    // What Clone of every class copies.
    void CopyBase(const TNodeParameter& other);
    // Name and description, then back to the start of the element's content.
    bool ParseCommon(TNodeTypeFile& file);

private:
    TCallbackList<TNodeParameter*> Callbacks;
};

// A new parameter of a kind; the caller owns it.
TNodeParameter* CreateNodeParameter(int kind);

// Brings a list of parameters to the one that a node type tells: those of a name and kind are kept, with
// their values, others are new. What is left over leaves the chunk file.
void RefreshParameters(vector<TNodeParameter*>& parameters, const vector<TNodeParameter*>& wanted,
                       TChunkFile& chunkFile, TRefreshRecord& record);

// Reads the next parameter element from the reader's position on. True with a null result means that the list
// has ended; false, that an error stands in the list.
bool ParseParameter(TNodeTypeFile& file, TNodeParameter*& result, bool isInput);
