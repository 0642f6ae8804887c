#pragma once

#include "particles/effectgraph/nodetypefile.h"
#include "support/testgraph.h"

#include "particles/effectgraph/effectgraphclasses.h"

// What came of parsing one parameter element of a node type file.
struct TParsed
{
    explicit TParsed(const std::string& element, bool isInput = false)
    {
        // What is parsed here may be sent through a chunk file.
        RegisterEffectGraphClasses();
        const std::string path = Folder.Path("a.xml");
        WriteBytes(path, "<list>" + element + "</list>");
        TXmlFile xml;
        TErrorList errors;
        if (!xml.OpenRead(path.c_str()) || !xml.FindTag("list"))
            throw std::runtime_error("no list");
        TNodeParameter* parameter = nullptr;
        TNodeTypeFile file(xml, errors, "a.xml");
        Ok = ParseParameter(file, parameter, isInput);
        Result.reset(parameter);
        xml.Close();
        for (const TError* error : errors)
            Error += Text(error->GetMessage());
    }
    template <class TParameter>
    TParameter& As() const
    {
        return dynamic_cast<TParameter&>(*Result);
    }

    TTempFolder Folder;
    bool Ok = false;
    std::unique_ptr<TNodeParameter> Result;
    std::string Error;
};

// A named element with further tags in it.
inline std::string Element(const std::string& tag, const std::string& content)
{
    return "<" + tag + "><name>P</name>" + content + "</" + tag + ">";
}

inline std::string Default(const std::string& text)
{
    return "<defaultvalue>" + text + "</defaultvalue>";
}

inline std::vector<float> FloatsOf(const TNodeParameter& parameter)
{
    float floats[MaxValueFloats] = {9, 9, 9, 9, 9, 9};
    parameter.GetValue(floats);
    return std::vector<float>(floats, floats + GetTypeFloats(parameter.GetValueType()));
}

// A node type file's parse.
struct TLoaded
{
    explicit TLoaded(const std::string& text, const char* path = nullptr)
    {
        const std::string file = path != nullptr ? path : Folder.Path("type.xml");
        if (path == nullptr)
            WriteBytes(file, text);
        TErrorList errors;
        Ok = Type->LoadXml(file.c_str(), errors);
        for (const TError* error : errors) {
            const std::string message = Text(error->GetMessage());
            // What such a text does to the reader is told besides.
            if (message.find("closing tag ") != std::string::npos || message.find("The tag ") == 0 ||
                message.find("A tag ") == 0) {
                TagFaults.push_back(message);
                continue;
            }
            Messages.push_back(message);
            const TFileError* fileError = dynamic_cast<const TFileError*>(error);
            Line = fileError != nullptr ? fileError->GetLine() : -1;
        }
    }
    std::string Error() const { return Messages.size() == 1 ? Messages[0] : std::to_string(Messages.size()); }

    TTempFolder Folder;
    std::unique_ptr<TNodeType> Type = std::make_unique<TNodeType>();
    bool Ok = false;
    std::vector<std::string> Messages;
    std::vector<std::string> TagFaults;
    int Line = -1;
};

inline std::string NodeFile(const std::string& sections, const std::string& type = "process",
                            const std::string& name = "N")
{
    return "<node><name>" + name + "</name><type>" + type + "</type><colour>red</colour>" + sections +
           "<code><classname>TN</classname></code></node>";
}

// A node whose type is told by a node type file.
inline TEffectNode* AddFromXml(TTestGraph& graph, const std::string& sections, const std::string& name = "N")
{
    TLoaded loaded(NodeFile(sections, "process", name));
    if (!loaded.Ok)
        throw std::runtime_error(loaded.Error());
    return graph.AddNode(std::move(loaded.Type));
}

// Ports of a polytype: the types by tag ("scalar", "vector3"), and optional links.
inline std::string PolytypeInput(const std::string& name, const std::vector<std::string>& types,
                                 const std::string& linkInput = "", const std::string& linkOutput = "")
{
    std::string text = "<Polytype><name>" + name + "</name>";
    if (!linkInput.empty())
        text += "<linkinput>" + linkInput + "</linkinput>";
    if (!linkOutput.empty())
        text += "<linkoutput>" + linkOutput + "</linkoutput>";
    text += "<validtypes>";
    for (const std::string& type : types)
        text += "<" + type + "/>";
    return text + "</validtypes></Polytype>";
}

inline std::string PolytypeOutput(const std::string& name, const std::vector<std::string>& types,
                                  const std::string& linkInput = "", const std::string& linkOutput = "")
{
    return PolytypeInput(name, types, linkInput, linkOutput);
}

// A class's chunk written and read back through a chunk file.
template <class TClass>
struct TRoundTrip
{
    // Takes the chunk and whatever it holds.
    explicit TRoundTrip(TNodeParameter* parameter)
    {
        TChunkFile out;
        parameter->AddToChunkFile(out);
        Load(out);
    }
    void Load(TChunkFile& out)
    {
        const std::string path = Folder.Path("chunks");
        if (!out.Save(path.c_str()) || !In.Load(path.c_str()))
            throw std::runtime_error("no round trip");
        Bytes = ReadBytes(path);
        Result = dynamic_cast<TClass*>(In.GetChunkAt(0));
    }

    TTempFolder Folder;
    TChunkFile In;
    std::string Bytes;
    TClass* Result = nullptr;
};
