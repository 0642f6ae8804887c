#pragma once

#include "library/maths/vector3.h"
#include "particles/effectgraph/nodeparameter.h"
#include "particles/effectgraph/usage.h"

class TEffectGraph;
class TEffectNode;
class TErrorList;
class TNodeTypeLibrary;
class TRefreshRecord;

enum TNodeFlags : uint32_t
{
    FL_BYPASSABLE = 1,
    FL_BYPASSED = 2,
    FL_PROCESSHINT = 4,
    FL_LASTHINT = 8,
    FL_DYNAMICBOUNDS = 16,
    FL_STATICBOUNDS = 32,
    // What a node type file decides, and so what a refresh compares.
    FL_TYPEMASK = FL_BYPASSABLE | FL_PROCESSHINT | FL_LASTHINT
};

// The priority of a render node stands in the flag word's top byte.
constexpr int RenderPriorityShift = 24;

// By TNodeType::Colour, as files and texts spell them.
constexpr int NumNodeColours = 4;
constexpr const char* NodeColourNames[NumNodeColours] = {"red", "green", "blue", "cyan"};

struct TOutputPort
{
    int Type = TY_SCALAR;
    TString Name;
    TString Description;
    int DefaultType = TY_SCALAR;
    int ResolvedType = -1;
    uint32_t ValidTypes = 0;
    int LinkInput = -1;
    int LinkOutput = -1;
};

// One port of one node: below the number of inputs an input, otherwise an output.
class TPortRef
{
public:
    TPortRef() = default;
    TPortRef(TEffectNode* node, int index) : Node(node), Index(index) {}
    bool IsInput() const;
    int GetInputIndex() const;
    int GetOutputIndex() const;
    bool operator==(const TPortRef& other) const { return Node == other.Node && Index == other.Index; }

    TEffectNode* Node = nullptr;
    int Index = 0;
};

// The description of one kind of node. The library holds the ones read from files; every node of a graph owns
// a private copy whose parameters hold its values.
//
// A type outside of a chunk file deletes its parameters and inputs. The copy in a document is a chunk, as are
// its parameters: the chunk file owns each of them, and the type deletes nothing.
class TNodeType : public TRegistered<TNodeType, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TNodeType";
    // A type has no more parameters, inputs or outputs than this.
    static constexpr int MaxPorts = 1024;

    TNodeType() = default;
    ~TNodeType() override;
    TNodeType(const TNodeType&) = delete;
    TNodeType& operator=(const TNodeType&) = delete;

    int GetVersion() override { return 6; }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;

    // Reads a node type file; false with the error in the list.
    bool LoadXml(const char* path, TErrorList& errors);

    int GetNumInputs() const { return Inputs.size(); }
    int GetNumOutputs() const { return Outputs.size(); }
    int GetNumParameters() const { return Parameters.size(); }
    TNodeParameter* GetInput(int i) const { return Inputs[i]; }
    TNodeParameter* GetParameter(int i) const { return Parameters[i]; }
    const TOutputPort& GetOutput(int i) const { return Outputs[i]; }
    TOutputPort& GetOutput(int i) { return Outputs[i]; }
    void GetInputName(int i, TString& out) const { out = Inputs[i]->Name; }
    void GetOutputName(int i, TString& out) const { out = Outputs[i].Name; }
    void GetInputDescription(int i, TString& out) const { out = Inputs[i]->Description; }
    // The concrete type in force.
    int GetInputType(int i) const;
    int GetOutputType(int i) const;
    bool IsInputRequired(int i) const { return Inputs[i]->Required; }
    // The declared type, TY_POLYTYPE for a polytype.
    int GetBasicInputType(int i) const { return Inputs[i]->Type; }
    // The port of the other side with the same name, without case; -1 if there is none. A pair so related is
    // tied: the node works on the value in place.
    int FindOutputNamedLikeInput(int i) const;
    int FindInputNamedLikeOutput(int i) const;
    int GetTiedOutput(int input) const { return FindOutputNamedLikeInput(input); }
    int FindInput(const char* name) const;
    int FindOutput(const char* name) const;
    // Walks a dotted path through groups; null on any miss.
    TNodeParameter* FindParameter(const char* path) const;
    // FindParameter, null also if the parameter is of another kind.
    template <class TParameter>
    TParameter* FindParameterOf(const char* path, int kind) const
    {
        TNodeParameter* parameter = FindParameter(path);
        return parameter != nullptr && parameter->Type == kind ? static_cast<TParameter*>(parameter)
                                                               : nullptr;
    }

    // A deep copy without listeners; the caller owns it.
    TNodeType* Clone() const;
    bool NeedsRefresh(const TNodeTypeLibrary& library) const;
    // Brings the copy of `node` to the library's state, keeping values and wires; all that a node type tells
    // of what is kept comes from the library. The ports stored in the wires are left as they are: MoveEdges
    // of the record sets them right once all nodes are refreshed.
    void Refresh(TEffectNode* node, const TNodeTypeLibrary& library, TChunkFile& chunkFile,
                 TEffectGraph& graph, TRefreshRecord& record);

    // Enters or removes the type with all its parameters and inputs and what these hold.
    void AddToChunkFile(TChunkFile& chunkFile);
    void RemoveFromChunkFile(TChunkFile& chunkFile);

    using TCallback = TCallbackList<>::TFunction;
    void AddCallback(TCallback cb, void* data) { Callbacks.AddOnce(cb, data); }
    void RemoveCallback(TCallback cb, void* data) { Callbacks.Remove(cb, data); }
    void NotifyChanged() { Callbacks.Call(); }

    bool HasFlag(uint32_t flag) const { return (Flags & flag) != 0; }
    void SetFlag(uint32_t flag, bool on) { Flags = on ? Flags | flag : Flags & ~flag; }
    bool IsOfClass(const char* className) const { return ClassName.Compare(className) == 0; }
    // Whether the type is the one of this name or, under whatever name an artist gave the node, of this
    // class.
    bool IsNamedOrOfClass(const char* name, const char* className) const;
    bool IsBypassed() const { return HasFlag(FL_BYPASSED); }
    // 0 to 255; lower renders first.
    int GetRenderPriority() const { return static_cast<int>(Flags >> RenderPriorityShift); }
    void SetRenderPriority(int priority);

    TString Name;
    TString Description;
    int Category = TU_TRIGGER;
    int Colour = 0;
    uint32_t Flags = 0;
    // A render node's static bounding box.
    TVector3 BoundsMin;
    TVector3 BoundsMax;
    vector<TNodeParameter*> Parameters;
    vector<TNodeParameter*> Inputs;
    vector<TOutputPort> Outputs;
    TString ClassName;
    TString DisplayClass;
    vector<TString> Interfaces;
    // Parameters before the ones that an effect node's outputs added.
    int NumOwnParameters = 0;

private:
    bool ReadFlags(TChunkFile* chunkFile, int version);
    bool ReadOutputs(TChunkFile* chunkFile, int version);
    static bool ReadOutput(TChunkFile* chunkFile, TOutputPort& output);
    static bool ReadOldOutput(TChunkFile* chunkFile, TOutputPort& output);

    TCallbackList<> Callbacks;
};
