#include "particles/cindermill/batch/picturecommand.h"

#include "library/system/childprogram.h"
#include "library/system/file.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"

#include <cstdio>
#include <initializer_list>

namespace {

// Beside this program, or where an installation puts programs.
bool FindPictureProgram(const TString& directory, TString& path)
{
    for (const char* place : {"\\cindermill-picture", "\\..\\bin\\cindermill-picture"}) {
        path = directory;
        path += place;
        if (FileExists(path))
            return true;
    }
    return false;
}

} // namespace

TPictureCommand::TPictureCommand(const char* name, const char* usage) : TBatchCommand(name, usage) {}

int TPictureCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TString path;
    const TString& directory = session.GetApp().GetProgramDirectory();
    if (!FindPictureProgram(directory, path)) {
        TString shown;
        ToShownPath(directory, shown);
        std::fprintf(stderr, "Pictures are drawn by the program cindermill-picture, which is not in %s\n",
                     shown.Print());
        return StatusErrors;
    }
    vector<TString> words;
    words.push_back(path);
    session.GetOptionWords(words);
    words.push_back(Name);
    while (const char* word = arguments.Take())
        words.push_back(word);
    int status = StatusErrors;
    TString fault;
    std::fflush(stdout);
    if (RunChildProgram(words, status, fault))
        return status;
    std::fprintf(stderr, "cindermill-picture failed: %s\n", fault.Print());
    return StatusErrors;
}
