#include "library/system/becomeprogram.h"

#include "library/system/path.h"
#include "library/system/systemerror.h"

#include <errno.h>
#include <unistd.h>

void BecomeProgram(const vector<TString>& words, TString& fault)
{
    TString path;
    ToSystemPath(words[0], path);
    vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    arguments.push_back(const_cast<char*>(path.Print()));
    for (int i = 1; i < words.size(); ++i)
        arguments.push_back(const_cast<char*>(words[i].Print()));
    arguments.push_back(nullptr);
    execv(path.Print(), arguments.data());
    fault = GetSystemErrorText(errno);
}
