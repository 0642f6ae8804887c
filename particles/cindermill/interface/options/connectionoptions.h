#pragma once

#include "particles/cindermill/interface/options/optionspage.h"

// The address of a console. It has nothing behind it: no setting keeps it, and no connection is ever made.
class TConnectionOptions : public TOptionsPage
{
public:
    TConnectionOptions() : TOptionsPage("dialog114", "KZ5 Connection") {}

private:
    bool CreateControls() override;

    TLabel Label;
    TEdit Address;
};
