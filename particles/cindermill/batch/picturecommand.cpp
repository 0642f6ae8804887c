#include "particles/cindermill/batch/picturecommand.h"

#include "library/system/becomeprogram.h"
#include "library/system/file.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"

#include <cstdio>
#include <initializer_list>

namespace {

// Beside this program, or where an installation puts what is started by programs alone.
bool FindPictureProgram(const TString& directory, TString& path)
{
    for (const char* place : {"\\cindermill-picture", "\\..\\libexec\\cindermill\\cindermill-picture"}) {
        path = directory;
        path += place;
        if (FileExists(path))
            return true;
    }
    return false;
}

} // namespace

TPictureCommand::TPictureCommand(const char* name, const char* usage, bool isOfOne)
    : TBatchCommand(name, usage), IsOfOne(isOfOne)
{
}

const char* TPictureCommand::GetHelp() const
{
    if (!IsOfOne)
        return "Draws all effects below a folder side by side, with their names.\n"
               "\n"
               "  --frame N             each after N steps of 0.02 seconds, 100 unless told\n"
               "  --sheet C             in so many columns\n"
               "  --seed K              what the random generators start from, 1 unless told\n"
               "  --camera X,Y,Z,TX,TY,TZ\n"
               "                        the eye, and the place that it looks at\n"
               "  --size WxH            of each picture, in pixels, 320x240 unless told\n"
               "  --background COLOUR   #rrggbb, or r,g,b from 0 to 255\n"
               "  --plain               the particles alone\n";
    return "Draws the effect as the preview does, without a display.\n"
           "\n"
           "  --frame N             after N steps of 0.02 seconds, 100 unless told\n"
           "  --frames A-B          all frames from A to B, side by side\n"
           "  --sheet C             in so many columns\n"
           "  --turntable N         N views from all around, side by side\n"
           "  --seed K              what the random generators start from, 1 unless told\n"
           "  --camera X,Y,Z,TX,TY,TZ\n"
           "                        the eye, and the place that it looks at\n"
           "  --size WxH            of each picture, in pixels, 800x568 or 320x240 unless told\n"
           "  --background COLOUR   #rrggbb, or r,g,b from 0 to 255\n"
           "  --plain               the particles alone\n";
}

int TPictureCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TString path;
    const TString& directory = session.GetApp().GetProgramDirectory();
    if (!FindPictureProgram(directory, path)) {
        std::fprintf(stderr, "Pictures are drawn by the program cindermill-picture, which is not in %s\n",
                     GetShownPath(directory).Print());
        return StatusErrors;
    }
    vector<TString> words;
    words.push_back(path);
    session.GetOptionWords(words);
    words.push_back(Name);
    while (const char* word = arguments.Take())
        words.push_back(word);
    TString fault;
    std::fflush(stdout);
    BecomeProgram(words, fault);
    std::fprintf(stderr, "%s cannot be started: %s\n", GetShownPath(words[0]).Print(), fault.Print());
    return StatusErrors;
}
