#pragma once

#include <string>

// Fills a folder, made where it is missing, with the texture "spark.dds" and the animation "path.vori"; false
// where that cannot be done.
bool MakeTestResources(const std::string& folder);
