#include "particles/cindermill/picture/pictureoptions.h"

#include "particles/cindermill/batch/arguments.h"

#include <climits>
#include <cstdio>
#include <cstring>

namespace {

constexpr int MaxPictures = 4096;
constexpr int MaxTurntable = 360;

// "WxH".
bool ReadSize(const char* word, TPictureOptions& options)
{
    TString width = word;
    TString height;
    return word != nullptr && width.SplitAtFirst('x', height) != -1 &&
           ParseWhole(width.Print(), 1, TPictureOptions::MaxSide, options.Width) &&
           ParseWhole(height.Print(), 1, TPictureOptions::MaxSide, options.Height);
}

// "A-B".
bool ReadFrames(const char* word, TPictureOptions& options)
{
    TString first = word;
    TString last;
    return word != nullptr && first.SplitAtFirst('-', last) != -1 &&
           ParseWhole(first.Print(), 0, INT_MAX, options.FirstFrame) &&
           ParseWhole(last.Print(), options.FirstFrame, INT_MAX, options.LastFrame);
}

// "#rrggbb", or "r,g,b" from 0 to 255.
bool ReadColour(const char* word, uint32_t& colour)
{
    if (word == nullptr)
        return false;
    constexpr size_t length = 7;
    if (*word == '#') {
        if (std::strlen(word) != length || std::strspn(word + 1, "0123456789abcdefABCDEF") != length - 1)
            return false;
        colour = TString(word + 1).ToHex();
        return true;
    }
    vector<TString> parts;
    TString(word).Split(parts, ',');
    if (parts.size() != 3)
        return false;
    colour = 0;
    for (const TString& part : parts) {
        int value = 0;
        if (!ParseWhole(part.Print(), 0, 255, value))
            return false;
        colour = colour << 8 | static_cast<uint32_t>(value);
    }
    return true;
}

// "x,y,z,tx,ty,tz": the eye, and what it looks at.
bool ReadCamera(const char* word, TPictureOptions& options)
{
    vector<TString> parts;
    if (word != nullptr)
        TString(word).Split(parts, ',');
    float numbers[6];
    if (parts.size() != 6)
        return false;
    for (int i = 0; i < 6; ++i)
        if (!ParseReal(parts[i].Print(), numbers[i]))
            return false;
    options.HasCamera = true;
    options.Eye = TVector3(numbers[0], numbers[1], numbers[2]);
    options.Target = TVector3(numbers[3], numbers[4], numbers[5]);
    const TVector3 way = options.Eye - options.Target;
    return Dot(way, way) > 0;
}

bool ReadFrame(const char* word, TPictureOptions& options)
{
    const bool isRead = ParseWhole(word, 0, INT_MAX, options.FirstFrame);
    options.LastFrame = options.FirstFrame;
    return isRead;
}

struct TOptionWord
{
    const char* Word;
    const char* Needs;
    bool (*Read)(const char* word, TPictureOptions& options);
};

constexpr TOptionWord Table[] = {
    {"--frame", "a whole number", ReadFrame},
    {"--frames", "two whole numbers, the smaller first, such as 1-24", ReadFrames},
    {"--sheet", "a number of columns",
     [](const char* word, TPictureOptions& options) {
         return ParseWhole(word, 1, MaxPictures, options.Columns);
     }},
    {"--seed", "an unsigned 32-bit number",
     [](const char* word, TPictureOptions& options) { return ParseUnsigned(word, options.Seed); }},
    {"--camera", "six numbers, the eye and another place that it looks at, such as 0,1,5,0,0.5,0",
     ReadCamera},
    {"--size", "a width and a height, such as 640x480", ReadSize},
    {"--background", "a colour, such as #203040 or 32,48,64",
     [](const char* word, TPictureOptions& options) { return ReadColour(word, options.Background); }},
    {"--turntable", "a number of views",
     [](const char* word, TPictureOptions& options) {
         return ParseWhole(word, 1, MaxTurntable, options.Turntable);
     }},
};

bool IsFrameOption(const char* word)
{
    return std::strcmp(word, "--frame") == 0 || std::strcmp(word, "--frames") == 0;
}

const TOptionWord* TakeOption(TArguments& arguments)
{
    for (const TOptionWord& option : Table)
        if (arguments.TakeIf(option.Word))
            return &option;
    return nullptr;
}

} // namespace

int TPictureOptions::GetNumPictures() const
{
    return (LastFrame - FirstFrame + 1) * (Turntable > 0 ? Turntable : 1);
}

bool ReadPictureOptions(TArguments& arguments, TPictureOptions& options, TString& fault)
{
    bool hasFrames = false;
    while (!arguments.IsEmpty()) {
        if (arguments.TakeIf("--plain")) {
            options.Plain = true;
            continue;
        }
        const bool tellsFrames = IsFrameOption(arguments.Peek());
        if (tellsFrames && hasFrames) {
            fault = "--frame and --frames both tell the frames: one of them is enough";
            return false;
        }
        hasFrames = hasFrames || tellsFrames;
        const TOptionWord* option = TakeOption(arguments);
        if (option == nullptr) {
            fault = "It does not know \"";
            fault += arguments.Take();
            fault += "\"";
            return false;
        }
        if (!option->Read(arguments.Take(), options)) {
            fault = option->Word;
            fault += " takes ";
            fault += option->Needs;
            return false;
        }
    }
    if (options.LastFrame - options.FirstFrame >= MaxPictures || options.GetNumPictures() > MaxPictures) {
        fault.Format("There are no more than %d pictures in a sheet", MaxPictures);
        return false;
    }
    return true;
}
