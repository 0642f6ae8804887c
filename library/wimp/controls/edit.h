#pragma once

#include "library/containers/string.h"
#include "library/wimp/wimpcontrol.h"

// A field of text, of one line or of several. Reports code 12 with its id when a person changes it.
class TEdit : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name, bool readOnly = false, bool severalLines = false);
    void SetText(const char* text);
    void GetText(TString& text) const;
    void SelectAll();
    // Whether what is typed in its window comes here, in front or not.
    bool HasFocus() const;
    // Of several lines: letters of one width, and no line goes on below.
    void SetFixedPitch();
    // Of several lines: so many are in sight, whatever room there is.
    void SetNumLines(int lines);
    // Adds to the end; at most 8,191 characters at a time.
    void AppendFormat(const char* format, ...) CINDERMILL_PRINTF(2, 3);
    int GetId() const { return Id; }

private:
    template <class TField>
    void Attach(TField* field, TWindow* owner, const char* name, bool readOnly);

    int Id = 0;
};
