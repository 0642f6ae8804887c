#include "particles/cindermill/batch/lint/lintfiles.h"

#include "library/containers/image/image.h"
#include "library/containers/log.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/main/animation/animation.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/settings.h"
#include "particles/effectgraph/filereferences.h"
#include "particles/effectgraph/xmltext.h"

namespace {

constexpr int MaxName = 400;

void Drop(const char* text, void* data)
{
    (void)text;
    (void)data;
}

bool IsPowerOfTwo(int n)
{
    return n > 0 && (n & (n - 1)) == 0;
}

bool IsAbsolute(const TString& name)
{
    const char* text = name.Print();
    return text[0] == '\\' || (text[0] != 0 && text[1] == ':');
}

// Without "." and "..", as far as they can be taken out; a name that climbs out of where it starts keeps its
// "..".
void Straighten(const TString& path, TString& result)
{
    vector<TString> parts;
    vector<TString> kept;
    path.Split(parts, '\\');
    for (const TString& part : parts) {
        if (part.Compare(".") == 0)
            continue;
        if (part.Compare("..") == 0 && !kept.empty() && !kept.back().IsEmpty() &&
            kept.back().Compare("..") != 0)
            kept.pop_back();
        else
            kept.push_back(part);
    }
    result = nullptr;
    for (int i = 0; i < kept.size(); ++i) {
        if (i > 0)
            result += "\\";
        result += kept[i].Print();
    }
}

bool LeadsUp(const TString& path)
{
    return path.CompareStart("..") == 0 && (path.Length() == 2 || path.Print()[2] == '\\');
}

// Both in the kept form.
bool LiesIn(const TString& path, const TString& directory)
{
    TString file;
    TString folder;
    Straighten(path, file);
    Straighten(directory, folder);
    if (folder.IsEmpty())
        return !IsAbsolute(file) && !LeadsUp(file);
    return file.CompareStart(folder) == 0 && file.Print()[folder.Length()] == '\\';
}

} // namespace

void TLintFiles::Tell(const TEffectGraph& graph, TLintReport& report)
{
    Uses.clear();
    AnimationFault = false;
    vector<TFileReference> references;
    GetFileReferences(graph, references);
    for (const TFileReference& reference : references)
        AddUse(reference, report);
    const TLogCapture quiet(Drop, nullptr);
    for (const TUse& use : Uses)
        TellUse(use, report);
}

// A file that several nodes name is told once, at the first of them.
void TLintFiles::AddUse(const TFileReference& reference, TLintReport& report)
{
    const bool isAnimation = reference.IsAnimation;
    if (reference.Name.IsEmpty()) {
        report.AddNode(LK_FILEUNNAMED, *reference.Node, -1, "%s names no %s",
                       GetNodeName(*reference.Node).Print(), isAnimation ? "animation" : "texture");
        AnimationFault = AnimationFault || isAnimation;
        return;
    }
    for (TUse& use : Uses)
        if (use.Name == reference.Name && use.IsAnimation == isAnimation) {
            use.Count += use.Node != reference.Node ? 1 : 0;
            return;
        }
    Uses.push_back(TUse{reference.Node, reference.Name, isAnimation, 1});
}

// Where it is told where files are to lie, the rest of the disc is not walked for them.
void TLintFiles::TellUse(const TUse& use, TLintReport& report)
{
    vector<TString> bases;
    Locator.GetBases(bases);
    TString path;
    const bool found =
        bases.empty() ? Locator.Find(use.Name, path) != FR_NOTFOUND : Locator.FindKnown(use.Name, path);
    TellOutside(use, found ? path : TString(), report);
    const char* kind = use.IsAnimation ? "Animation" : "Texture";
    if (!found) {
        Fail(use);
        TFinding& finding = report.AddNode(LK_FILEMISSING, *use.Node, -1, "%s \"%s\" is not found", kind,
                                           QuoteText(use.Name, MaxName).Print());
        AddNumber(finding, "nodes", use.Count);
        return;
    }
    if (!use.IsAnimation) {
        TellPicture(use, path, report);
        return;
    }
    TellAnimation(use, path, report);
}

void TLintFiles::TellAnimation(const TUse& use, const TString& path, TLintReport& report)
{
    const TString name = QuoteText(use.Name, MaxName);
    TAnimation animation;
    if (!animation.Load(path)) {
        Fail(use);
        TFinding& finding =
            report.AddNode(LK_FILEUNREADABLE, *use.Node, -1, "Animation \"%s\" cannot be read", name.Print());
        AddNumber(finding, "nodes", use.Count);
        return;
    }
    if (animation.GetTagFault().IsEmpty())
        return;
    TFinding& finding = report.AddNode(LK_FILEDAMAGED, *use.Node, -1, "Animation \"%s\" is damaged: %s",
                                       name.Print(), animation.GetTagFault().Print());
    AddNumber(finding, "nodes", use.Count);
}

const TLintFiles::TPicture& TLintFiles::GetPicture(const TString& path)
{
    for (const TPicture& picture : Pictures)
        if (picture.Path == path)
            return picture;
    TImage image;
    const bool readable = image.Load(path);
    Pictures.push_back(
        TPicture{path, readable, readable ? image.GetWidth() : 0, readable ? image.GetHeight() : 0});
    return Pictures[Pictures.size() - 1];
}

void TLintFiles::TellPicture(const TUse& use, const TString& path, TLintReport& report)
{
    const TPicture& picture = GetPicture(path);
    const TString name = QuoteText(use.Name, MaxName);
    if (!picture.Readable) {
        TFinding& finding =
            report.AddNode(LK_FILEUNREADABLE, *use.Node, -1, "Texture \"%s\" cannot be read", name.Print());
        AddNumber(finding, "nodes", use.Count);
        return;
    }
    if (IsPowerOfTwo(picture.Width) && IsPowerOfTwo(picture.Height))
        return;
    TFinding& finding = report.AddNode(LK_FILESIDES, *use.Node, -1, "Texture \"%s\" is %d by %d pixels",
                                       name.Print(), picture.Width, picture.Height);
    AddNumber(finding, "width", picture.Width);
    AddNumber(finding, "height", picture.Height);
}

void TLintFiles::TellOutside(const TUse& use, const TString& path, TLintReport& report) const
{
    vector<TString> bases;
    Locator.GetBases(bases);
    TString name;
    TString straight;
    ToKeptPath(use.Name, name);
    Straighten(name, straight);
    // A relative path may begin with one separator.
    const bool absolute =
        IsAbsolute(name) && (Locator.GetMode() != RM_RELATIVEPATH || name.Print()[0] != '\\');
    const TString& place = absolute ? name : path;
    bool inside = bases.empty() ? !absolute || Locator.GetMode() == RM_FULLPATH : place.IsEmpty();
    TString kept;
    ToKeptPath(place, kept);
    for (const TString& base : bases)
        inside = inside || LiesIn(kept, base);
    if (inside && (absolute || !LeadsUp(straight)))
        return;
    report.AddNode(LK_FILEOUTSIDE, *use.Node, -1, "\"%s\" leads outside of the resource base",
                   QuoteText(use.Name, MaxName).Print());
}
