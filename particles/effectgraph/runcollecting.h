#pragma once

#include "particles/effectgraph/error.h"

// Runs work that may fail an assertion for the sake of the graph; its text then joins the list.
template <class TWork>
bool RunCollecting(TErrorList& errors, TWork&& work)
{
    bool result = false;
    TString text;
    if (RunGuarded([&] { result = work(); }, text))
        return result;
    errors.Add(new TError("%s", text.Print()));
    errors.ClearSource();
    return false;
}
