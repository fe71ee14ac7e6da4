// The benchmark program's frame: timing, the result table, and the registration of cases. Each case file
// registers its cases with ZCMOD_BENCH_CASE; the program runs them in order of their keys and prints one table
// of ratios, each against a reference timed in the same run on the same input.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Row {
    std::string name;
    std::string input;
    std::string ours;
    std::string reference;
    std::string ratio;
};

struct Options {
    double seconds = 0.4;     // measuring time per case and side, spread over the rounds
    int rounds = 5;           // --rounds: measurements of each side, whose median counts
    std::wstring gif;         // --gif: the animated GIF input
    std::wstring only;        // --only: run the cases whose key contains this text
};

const Options& Settings();

// Seconds per call, measured in a number of rounds (Options::rounds). Each round runs batches for its share of
// the time and keeps its fastest batch. A body that returns false on its warm-up call makes the case fail
// (no rounds). Converts to the median of the rounds.
struct Timing {
    std::vector<double> rounds;

    Timing() = default;
    // One measurement (none when it isn't positive), for a case that times something once.
    Timing(double seconds)
    {
        if (seconds > 0)
            rounds.push_back(seconds);
    }

    double Median() const;
    operator double() const { return rounds.empty() ? -1.0 : Median(); }
};
Timing Time(const std::function<bool()>& body);

// Both sides of a case, their rounds taken in turn (ours, reference, ours, ...), so that a slow spell of a
// shared machine weighs on both alike.
struct TimingPair {
    Timing ours;
    Timing reference;
};
TimingPair TimeBoth(const std::function<bool()>& ours, const std::function<bool()>& reference);

std::string Format(const char* format, double value);
std::wstring TempFile(const wchar_t* name);

// Adds a row with the two median times and their ratio (ours / reference): the median of the rounds' ratios,
// with their lowest and highest beside it.
void AddTimes(std::vector<Row>& rows, const std::string& name, const std::string& input, const Timing& ours,
              const Timing& reference, const std::string& referenceName);
// Adds a row of rates: `units` of work per call, shown as units per second under `unitName`.
void AddRates(std::vector<Row>& rows, const std::string& name, const std::string& input, const Timing& ours,
              const Timing& reference, double units, const std::string& unitName, const std::string& referenceName);

using CaseFunction = void (*)(std::vector<Row>& rows);

struct Registration {
    Registration(const char* key, CaseFunction function);
};

}  // namespace bench

// Registers `function` to run in the order of `key` (e.g. "10-image-png").
#define ZCMOD_BENCH_CASE(key, function) static ::bench::Registration g_bench_registration_##function(key, function)
