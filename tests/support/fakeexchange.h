#pragma once

#include "particles/cindermill/main/nodeexchange.h"

#include <string>

// A desktop whose clipboard several programs share; a program has one of its own exchanges.
struct TFakeDesktop
{
    TNodeExchange* Owner = nullptr;
    vector<uint8_t> Effect;
    std::string Text;

    // As a program does that knows nothing of effects.
    void Put(const std::string& text)
    {
        Owner = nullptr;
        Effect.clear();
        Text = text;
    }
    // As one does that is gone, where nobody keeps its clipboard.
    void Lose() { Put(""); }
};

class TFakeExchange : public TNodeExchange
{
public:
    explicit TFakeExchange(TFakeDesktop& desktop) : Desktop(desktop) {}

    void Offer(const vector<uint8_t>& effect, const char* text) override
    {
        Desktop.Owner = this;
        Desktop.Effect = effect;
        Desktop.Text = text;
    }
    bool IsOwn() override { return Desktop.Owner == this; }
    bool IsEmpty() override { return !Ask(!Desktop.Effect.empty() || !Desktop.Text.empty()); }
    bool HasEffect() override { return Ask(!Desktop.Effect.empty()); }
    bool HasText() override { return Ask(!Desktop.Text.empty()); }
    bool GetEffect(vector<uint8_t>& effect) override
    {
        effect.clear();
        if (!Ask(!Desktop.Effect.empty() && !Withholds))
            return false;
        effect = Desktop.Effect;
        return true;
    }
    bool GetText(TString& text) override
    {
        ++TextsFetched;
        text = nullptr;
        if (!Ask(!Desktop.Text.empty() && !Withholds))
            return false;
        text = Desktop.Text.c_str();
        return true;
    }
    bool IsSlow() override { return WasSlow; }

    // Whoever has the clipboard takes long for each answer,
    bool Slow = false;
    // gives none,
    bool Silent = false;
    // or tells what it has and does not give it.
    bool Withholds = false;
    int Questions = 0;
    int TextsFetched = 0;

private:
    bool Ask(bool answer)
    {
        ++Questions;
        WasSlow = Slow;
        return answer && !Silent;
    }

    bool WasSlow = false;
    TFakeDesktop& Desktop;
};
