#pragma once

#include "library/containers/string.h"

#include <cstdint>

class QWidget;

// A click of a person that the desktop hands on to the program, as an id that it knows the click by.
class TLaunch
{
public:
    TLaunch() = default;
    explicit TLaunch(const TString& id) : Id(id) {}
    // The desktop shows a busy pointer until it hears this.
    void TellDone() const;
    // The frame asks for the front as of the click. The desktop refuses that to whoever asks as of a time
    // before a person's last doing elsewhere, and what the program knows of by itself is what was done in its
    // own windows.
    void Activate(QWidget& frame) const;

private:
    bool GetTime(uint32_t& time) const;

    TString Id;
};
