#include "support/testapp.h"

#include "library/containers/image/image.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/error.h"

#include <filesystem>
#include <stdexcept>

static std::string Channel(const char* keys)
{
    return std::string("<animChannel><animData numKeys=2 keyStride=3><keyValues>") + keys +
           "</keyValues><keyTimes>0 1</keyTimes></animData></animChannel>";
}

TTestApp::TTestApp(TAppHost* host, const std::string& nodeTypes)
    : App(new TCindermillApp(OpenSettingsFile(Folder.Path("settings.ini").c_str()), host))
{
    const std::string resources = Folder.Path("resources");
    std::filesystem::create_directory(resources);
    TImage image;
    image.Create(4, 4);
    if (!App->InitHeadless() || !image.Save((resources + "/spark.dds").c_str(), IF_DDS_RAW))
        throw std::runtime_error("no application");
    WriteBytes(resources + "/path.vori", "<?xml version=\"1.0\"?><VOR><animclip><anim>" +
                                             Channel("0 0 0 1 2 3") + Channel("0 0 0 0 0.5 0") +
                                             Channel("1 1 1 2 2 2") + "</anim></animclip></VOR>");
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
