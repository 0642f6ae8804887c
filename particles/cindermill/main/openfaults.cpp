#include "particles/cindermill/main/openfaults.h"

#include "library/system/message.h"
#include "library/system/path.h"

namespace {

// As many as a box on a small screen has room for.
constexpr int MaxLines = 10;

} // namespace

void TOpenFaults::Add(const TString& path, const TString& fault)
{
    if (fault.IsEmpty() || ++NumFaults > MaxLines)
        return;
    if (!Lines.IsEmpty())
        Lines += "\n";
    TString line;
    line.Format("%s cannot be opened: %s", GetShownPath(path).Print(), fault.Print());
    Lines += line;
}

void TOpenFaults::Tell() const
{
    if (NumFaults > MaxLines)
        ShowMessage("%d files cannot be opened, among them:\n%s", NumFaults, Lines.Print());
    else if (NumFaults > 0)
        ShowMessage("%s", Lines.Print());
}
