#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

// The counter by which a benchmark tells how many things one of its iterations works on: particles for one.
// All times of the table are per thing.
constexpr const char* ItemCounter = "things";

// What a program's table says of one benchmark.
struct TBenchRow
{
    std::string Label;
    // Names as Google Benchmark has them.
    std::string Measured;
    std::string Baseline;
    // The greatest ratio that is good enough; 0 where none is asked for. Without a baseline it is in
    // milliseconds.
    double Limit = 0;
};

// Adds a row to the table that the program prints in the end: the shortest time of all repetitions beside
// that of the baseline, and their ratio. Without a baseline the row has only the time. A row whose benchmark
// failed says so, and the program then ends with 1.
void AddRow(const TBenchRow& row);

// Benchmarks that take turns with each other only, one group after the other, so that what they have prepared
// need not be kept for all groups at a time. What is given registers them.
void AddGroup(const std::function<void()>& registration);

// A program defines this: it registers its benchmarks, or adds its groups, and adds its rows. False ends the
// program.
bool RegisterBenchmarks();
