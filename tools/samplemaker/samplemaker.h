#pragma once

#include <string>
#include <vector>

class TCindermillApp;

// The names of the sample effects, without extension.
std::vector<std::string> GetSampleNames();

// Writes all samples: effects into the folder, textures and animations below it. The application must have
// its node types. False with the path that could not be written.
bool MakeSamples(TCindermillApp& app, const std::string& folder, std::string& failed);
