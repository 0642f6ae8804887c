#include "particles/cindermill/batch/translatecommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"

#include <cstdio>

namespace {

// As the driver gets it, or as translation leaves it.
void GetShaderText(const TQdxShader& shader, bool raw, TString& text)
{
    if (!shader.IsFragmentProgram()) {
        text = shader.GetVertexProgram()->GetText();
        return;
    }
    if (raw) {
        text = shader.GetFragmentProgram()->GetText();
        return;
    }
    uint32_t targets[TQdxFragmentProgram::NumUnits];
    for (uint32_t& target : targets)
        target = TY_Target2D;
    shader.GetFragmentProgram()->GetVariantText(targets, 0, text);
}

} // namespace

TTranslateCommand::TTranslateCommand() : TBatchCommand("translate", "FILE.sho [--raw]") {}

const char* TTranslateCommand::GetHelp() const
{
    return "Prints the assembly text of a shader as the driver gets it.\n"
           "\n"
           "  --raw                 as translation leaves it, before a variant is made\n";
}

int TTranslateCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    (void)session;
    const char* path = arguments.TakeName();
    const bool raw = arguments.TakeIf("--raw");
    if (path == nullptr || !arguments.IsEmpty())
        return ReportUsage("translate takes one file");
    TString reason;
    TQdxShader* shader = nullptr;
    {
        TLogCapture capture(KeepFirstLine, &reason);
        shader = TQdxShader::LoadShaderFile(path);
    }
    if (shader == nullptr) {
        PrintMessage(path, reason.IsEmpty() ? "The file cannot be read" : reason.Print());
        return StatusErrors;
    }
    TString text;
    GetShaderText(*shader, raw, text);
    std::fputs(text.Print(), stdout);
    return StatusDone;
}
