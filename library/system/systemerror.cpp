#include "library/system/systemerror.h"

#include <string.h>

TString GetSystemErrorText(int error)
{
    switch (error) {
    case FF_NOREGULARFILE:
        return "It is no regular file";
    case FF_TOOLARGE:
        return "The file is larger than 2 GiB";
    }
    // Not translated, as no text of the program is.
    const char* description = strerrordesc_np(error);
    TString text;
    if (description == nullptr)
        text.Format("Error %d of the system", error);
    else
        text = description;
    return text;
}
