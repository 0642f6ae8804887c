#pragma once

#include "library/containers/string.h"

class TPort;

// What a person is told of a port: its type and what it is wired to.
void TellPort(const TPort& port, TString& text);
// By its node's name and its own.
void TellPortName(const TPort& port, TString& text);
// What it is for; empty where nobody has written it down.
const TString& GetPortHelp(const TPort& port);
