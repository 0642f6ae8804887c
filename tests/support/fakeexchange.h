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
    bool IsEmpty() override { return Desktop.Effect.empty() && Desktop.Text.empty(); }
    bool HasEffect() override
    {
        ++Questions;
        return !Desktop.Effect.empty();
    }
    bool GetEffect(vector<uint8_t>& effect) override
    {
        ++Questions;
        effect = Desktop.Effect;
        return !effect.empty();
    }
    bool GetText(TString& text) override
    {
        ++Questions;
        text = Desktop.Text.c_str();
        return !text.IsEmpty();
    }
    bool IsSlow() override { return Slow; }

    bool Slow = false;
    int Questions = 0;

private:
    TFakeDesktop& Desktop;
};
