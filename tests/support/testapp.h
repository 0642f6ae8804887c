#pragma once

#include "support/testsupport.h"

#include "particles/cindermill/main/cindermillapp.h"

#include <memory>

// The application over the repository's node types, with settings in a folder of its own and a folder of
// resources: the texture "spark.dds" and the animation "path.vori". Another directory of node types may be
// told. Throws std::runtime_error where that cannot be had.
class TTestApp
{
public:
    explicit TTestApp(TAppHost* host = nullptr, const std::string& nodeTypes = SourcePath("NodeTypes"));
    TTestApp(const TTestApp&) = delete;
    TTestApp& operator=(const TTestApp&) = delete;

    TCindermillApp& Get() { return *App; }
    const TNodeType& Type(const char* name) const;
    // A path in the folder.
    std::string Path(const std::string& leaf) const { return Folder.Path(leaf); }

private:
    TTempFolder Folder;
    std::unique_ptr<TCindermillApp> App;
};

// Drops the log while it lives.
class TQuiet
{
public:
    TQuiet() : Capture([](const char*, void*) {}, nullptr) {}

private:
    TLogCapture Capture;
};
