#include "support/testresources.h"

#include "library/containers/image/image.h"

#include <filesystem>
#include <fstream>

static std::string Channel(const char* keys)
{
    return std::string("<animChannel><animData numKeys=2 keyStride=3><keyValues>") + keys +
           "</keyValues><keyTimes>0 1</keyTimes></animData></animChannel>";
}

bool MakeTestResources(const std::string& folder)
{
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/path.vori", std::ios::binary)
        << "<?xml version=\"1.0\"?><VOR><animclip><anim>" + Channel("0 0 0 1 2 3") +
               Channel("0 0 0 0 0.5 0") + Channel("1 1 1 2 2 2") + "</anim></animclip></VOR>";
    TImage image;
    image.Create(4, 4);
    return image.Save((folder + "/spark.dds").c_str(), IF_DDS_RAW);
}
