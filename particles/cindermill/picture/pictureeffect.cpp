#include "particles/cindermill/picture/pictureeffect.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cstdio>

TPictureEffect::TPictureEffect(TBatchSession& session, const TPictureOptions& options)
    : Session(session), Options(options), Document(session.GetApp())
{
}

// The seed is set for each effect, so that it looks the same alone and among others.
bool TPictureEffect::Start(const char* path)
{
    Path = path;
    if (!Session.LoadGraph(Document, path))
        return false;
    if (!Options.Plain)
        AddDisplays();
    TRandom::SetDefaultSeed(Options.Seed);
    TErrorList errors;
    bool started = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        started = Document.CreateSchedule(errors) && Document.InitEngine(errors, true);
    }
    return started || Tell(errors);
}

void TPictureEffect::AddDisplays()
{
    RegisterDisplayClasses();
    for (int i = 0; i < Document.GetGraph()->GetNumNodes(); ++i) {
        TEffectNode* node = Document.GetGraph()->GetNode(i);
        if (!IsClassA(FindClassByNameID(node->GetClassId()), TToolNode::ClassId()))
            continue;
        static_cast<TToolNode*>(node)->Attach(&Document);
        static_cast<TToolNode*>(node)->Added(&Document);
    }
}

bool TPictureEffect::RunTo(int frame)
{
    TErrorList errors;
    for (; Frame < frame; ++Frame)
        if (!Document.UpdateEngine(FrameTime, errors))
            return Tell(errors);
    return true;
}

bool TPictureEffect::Tell(const TErrorList& errors) const
{
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        text.Trim();
        std::fprintf(stderr, "%s: %s\n", Path.Print(), text.Print());
    }
    return false;
}
