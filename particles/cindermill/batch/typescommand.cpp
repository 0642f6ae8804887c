#include "particles/cindermill/batch/typescommand.h"

#include "particles/cindermill/batch/batchsession.h"

#include <cstdio>

namespace {

void PrintPorts(const char* name, int type, bool& first)
{
    std::printf("%s%s:%s", first ? "" : ", ", name, GetTypeName(type));
    first = false;
}

} // namespace

TTypesCommand::TTypesCommand() : TBatchCommand("types", "", true) {}

int TTypesCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    if (!arguments.IsEmpty())
        return ReportUsage("types takes no arguments");
    const TNodeTypeLibrary& library = session.GetApp().GetNodeTypes();
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType& type = *library.GetType(i);
        std::printf("%s\t%s\t%s\t", type.Name.Print(), GetUsageName(type.Category), type.ClassName.Print());
        bool first = true;
        for (int p = 0; p < type.GetNumInputs(); ++p)
            PrintPorts(type.GetInput(p)->Name.Print(), type.GetBasicInputType(p), first);
        std::putchar('\t');
        first = true;
        for (int p = 0; p < type.GetNumOutputs(); ++p)
            PrintPorts(type.GetOutput(p).Name.Print(), type.GetOutput(p).Type, first);
        std::putchar('\n');
    }
    return session.AreNodeTypesSound() ? StatusDone : StatusErrors;
}
