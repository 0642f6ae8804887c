#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

// Where random choices come from: a seed, or the bytes that a fuzzer tries. Once the bytes are spent every
// choice is the first one.
class TDice
{
public:
    explicit TDice(uint32_t seed) : Random(seed) {}
    // The bytes stay the caller's and outlive the dice.
    TDice(const uint8_t* bytes, size_t size) : Bytes(bytes), End(bytes + size) {}

    // 0 for a count of 0.
    uint32_t Below(uint32_t count);
    bool Chance(double p) { return Below(1000) < p * 1000; }
    bool IsSpent() const { return Bytes != nullptr && Bytes == End; }

private:
    const uint8_t* Bytes = nullptr;
    const uint8_t* End = nullptr;
    std::mt19937 Random;
};

// A number that the environment gives: a soak sets how many trials there are, and their first seed.
uint32_t Setting(const char* name, uint32_t usual);
