#pragma once

#include "particles/cindermill/main/document.h"

class TBatchSession;
struct TPictureOptions;

// An effect that runs to be drawn.
class TPictureEffect
{
public:
    TPictureEffect(TBatchSession& session, const TPictureOptions& options);

    // Its start, at frame 0. What goes wrong, here and in what follows, is told on the standard error.
    bool Start(const char* path);
    // On to the frame.
    bool RunTo(int frame);
    TDocument& GetDocument() { return Document; }

    // Seconds.
    static constexpr float FrameTime = 0.02f;

private:
    void AddDisplays();
    bool Tell(const TErrorList& errors) const;

    TBatchSession& Session;
    const TPictureOptions& Options;
    TDocument Document;
    TString Path;
    int Frame = 0;
};
