#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/launch.h"

// Who is asked by the desktop, by a double click on a file say, to come forward.
class TActivationHost
{
public:
    // Paths of local files; none to come forward alone, in the name of the launch. Never inside a dialog, a
    // menu or a drag.
    virtual void OnActivation(const vector<TString>& files, const TLaunch& launch) = 0;
    virtual ~TActivationHost() = default;
};

// The program's name on the user's session bus, by the desktop's interface `org.freedesktop.Application`. The
// desktop starts the program when nobody has the name, so one program opens all that is clicked.
class TDesktopActivation
{
public:
    TDesktopActivation() = default;
    ~TDesktopActivation();
    TDesktopActivation(const TDesktopActivation&) = delete;
    TDesktopActivation& operator=(const TDesktopActivation&) = delete;

    // `name` has dots between its parts. False where there is no session bus, or another program has the
    // name; this one then runs as well, unasked. The host must outlive this object, which needs an
    // initialised framework.
    bool Start(const char* name, TActivationHost& host);

private:
    class TBusObject;
    TBusObject* Object = nullptr;
};
