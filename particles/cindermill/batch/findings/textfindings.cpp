#include "library/containers/shortentext.h"
#include "particles/cindermill/batch/findings/findingreport.h"

namespace {

void AddPart(TString& text, const char* part)
{
    if (!text.IsEmpty())
        text += ", ";
    text += part;
}

} // namespace

void GetPlaceText(const TFindingPlace& place, TString& text)
{
    text = nullptr;
    TString part;
    if (!place.Node.IsEmpty()) {
        text = "node \"";
        text += OneLineText(place.Node).Print();
        text += "\"";
    }
    if (!place.Type.IsEmpty()) {
        part = "type ";
        part += OneLineText(place.Type).Print();
        AddPart(text, part);
    }
    if (place.Group != -1)
        AddPart(text, part.Format("group %d", place.Group));
    if (place.Id != -1)
        AddPart(text, part.Format("number %d, at %.9g, %.9g", place.Id, static_cast<double>(place.X),
                                  static_cast<double>(place.Y)));
}

void GetFindingText(const TFinding& finding, TString& text)
{
    TString part;
    text = OneLineText(finding.File);
    if (finding.Line > 0)
        text += part.Format(":%d", finding.Line).Print();
    text += ": ";
    text += finding.Allowed.IsEmpty() ? GetSeverityName(finding.Severity) : "allowed";
    text += ": ";
    text += finding.Message.Print();
    text += " [";
    text += finding.Id;
    text += "]";
    GetPlaceText(finding.Place, part);
    if (!part.IsEmpty()) {
        text += " (";
        text += part.Print();
        text += ")";
    }
    if (!finding.Allowed.IsEmpty()) {
        text += ": ";
        text += OneLineText(finding.Allowed).Print();
    }
}
