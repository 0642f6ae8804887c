#pragma once

#include "support/fakehost.h"
#include "support/testapp.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/displayerrors.h"

// What was asked and shown, in order.
struct TForms
{
    static TForms& Get()
    {
        static TForms forms;
        return forms;
    }
    TNames Questions;
    TNames Errors;
    bool Answer = false;
};

inline void TakeErrors(const char* title, const TErrorList& errors)
{
    std::string text = title;
    for (const TError* error : errors) {
        TString line;
        error->GetText(line);
        text += std::string("|") + line.Print();
    }
    TForms::Get().Errors.push_back(text);
}

// A small effect that schedules: an emitter, points, quads.
class Document : public testing::Test
{
protected:
    Document()
    {
        TForms::Get() = TForms();
        SetMessageForms(nullptr, [](const char* text) {
            TForms::Get().Questions.push_back(text);
            return TForms::Get().Answer;
        });
        SetDisplayErrors(&TakeErrors);
    }
    ~Document() override
    {
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }
    TToolNode* Add(TDocument& document, const TNodeType& type, int x = 0, int y = 0)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, x, y);
        TToolNode* node = op->GetNode();
        document.ApplyOperation(op);
        return node;
    }
    TToolNode* Add(TDocument& document, const char* type) { return Add(document, App.Type(type)); }
    TToolEdge* Connect(TDocument& document, TToolNode* source, const char* output, TToolNode* destination,
                       const char* input)
    {
        TAddGraphEdgeOp* op = new TAddGraphEdgeOp(document, source, source->GetNodeType()->FindOutput(output),
                                                  destination, destination->GetNodeType()->FindInput(input));
        TToolEdge* edge = op->GetEdge();
        document.ApplyOperation(op);
        return edge;
    }
    void SetTexture(TDocument& document, TToolNode* stage, const char* name)
    {
        document.ApplyOperation(new TTextureParamOp(
            stage->GetNodeType()->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE), name));
    }
    void BuildEffect(TDocument& document)
    {
        Emitter = Add(document, "Emitter");
        Points = Add(document, "Point Emitter");
        Quads = Add(document, "Quad Render Stage");
        SetTexture(document, Quads, "spark.dds");
        Connect(document, Emitter, "Count", Points, "Emission Trigger");
        Connect(document, Points, "Start Transform", Quads, "Transform");
    }
    // The file of that effect.
    std::string EffectFile(const std::string& leaf)
    {
        TDocument document(App.Get());
        EXPECT_TRUE(document.New());
        BuildEffect(document);
        EXPECT_TRUE(document.SaveAs(Path(leaf).c_str()));
        return Path(leaf);
    }
    // "" when the file loads, otherwise the document's reason.
    std::string LoadErrorOf(const std::string& path)
    {
        TDocument document(App.Get());
        return document.Load(path.c_str()) ? "" : Text(document.GetLoadError());
    }

    TQuiet Quiet;
    TTestApp App;
    TToolNode* Emitter = nullptr;
    TToolNode* Points = nullptr;
    TToolNode* Quads = nullptr;
};
