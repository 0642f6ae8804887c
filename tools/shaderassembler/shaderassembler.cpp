#include "tools/shaderassembler/shaderassembler.h"

#include "tools/shaderassembler/shaderimage.h"
#include "tools/shaderassembler/shaderparser.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {
bool WriteWhole(const std::string& path, const std::vector<uint8_t>& bytes)
{
    const std::string beside = path + ".new";
    std::ofstream stream(beside, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    std::error_code error;
    if (stream)
        std::filesystem::rename(beside, path, error);
    if (stream && !error)
        return true;
    std::filesystem::remove(beside, error);
    return false;
}
} // namespace

bool AssembleShader(const std::string& text, const std::string& fileName, std::vector<uint8_t>& image,
                    std::vector<std::string>& errors)
{
    image.clear();
    TShaderParser parser(fileName);
    if (!parser.Parse(text)) {
        errors = parser.GetErrors();
        return false;
    }
    if (!BuildShaderImage(parser.GetProgram(), image)) {
        errors = {fileName + ": the program is too large for a shader file"};
        return false;
    }
    return true;
}

bool AssembleShaderFile(const std::string& source, const std::string& output,
                        std::vector<std::string>& errors)
{
    std::ifstream stream(source, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) {
        errors = {source + ": cannot be read"};
        return false;
    }
    std::vector<uint8_t> image;
    if (!AssembleShader(text, source, image, errors))
        return false;
    if (!WriteWhole(output, image)) {
        errors = {output + ": cannot be written"};
        return false;
    }
    return true;
}
