#include "support/testapp.h"
#include "support/testresources.h"

#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/error.h"

#include <stdexcept>

TTestApp::TTestApp(TAppHost* host, const std::string& nodeTypes)
    : App(new TCindermillApp(OpenSettingsFile(Folder.Path("settings.ini").c_str()), host))
{
    const std::string resources = Folder.Path("resources");
    if (!App->InitHeadless() || !MakeTestResources(resources))
        throw std::runtime_error("no application");
    App->GetResourceLocator().AddSearchDirectory(resources.c_str());
    TErrorList errors;
    App->LoadNodeTypes(nodeTypes.c_str(), errors);
    if (!errors.empty()) {
        TString text;
        (*errors.begin())->GetText(text);
        throw std::runtime_error(Text(text));
    }
}

const TNodeType& TTestApp::Type(const char* name) const
{
    const TNodeType* type = App->GetNodeTypes().FindType(name);
    if (type == nullptr)
        throw std::runtime_error(std::string("no node type ") + name);
    return *type;
}
