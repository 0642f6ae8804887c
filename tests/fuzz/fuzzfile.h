#pragma once

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/containers/string.h"
#include "library/system/message.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include <unistd.h>

// Gives a reader the fuzzer's bytes as a file, with the log and the message forms silent. A failed assertion
// is an answer that the readers may give; anything worse ends the process.
template <class TReader>
int ReadAsFile(const uint8_t* data, size_t size, TReader&& reader)
{
    static const std::string path = "/tmp/cindermill-fuzz-" + std::to_string(getpid());
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    SetMessageForms([](const char*) {}, [](const char*) { return false; });
    TLogCapture quiet([](const char*, void*) {}, nullptr);
    TString text;
    RunGuarded([&] { reader(path.c_str()); }, text);
    unlink(path.c_str());
    return 0;
}
