// Usage: zcmod_bench [--seconds S] [--rounds N] [--gif FILE] [--only TEXT]
#include <objbase.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <map>

#include "Bench.h"

namespace bench {

namespace {

Options g_options;

std::map<std::string, CaseFunction>& Cases()
{
    static std::map<std::string, CaseFunction> cases;
    return cases;
}

double Now()
{
    static const LARGE_INTEGER frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return f;
    }();
    LARGE_INTEGER t;
    QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

const Options& Settings() { return g_options; }

Registration::Registration(const char* key, CaseFunction function) { Cases()[key] = function; }

double Timing::Median() const
{
    std::vector<double> sorted = rounds;
    std::sort(sorted.begin(), sorted.end());
    const size_t n = sorted.size();
    return n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
}

namespace {

// One round of `body`: batches for `seconds`, the fastest batch's time per call. `batch` carries the batch
// size from round to round.
double Round(const std::function<bool()>& body, double seconds, int& batch)
{
    double best = 1e30;
    const double end = Now() + seconds;
    do {
        const double start = Now();
        for (int i = 0; i < batch; ++i)
            body();
        const double per = (Now() - start) / batch;
        best = std::min(best, per);
        if (per * batch < 0.02)
            batch *= 2;
    } while (Now() < end);
    return best;
}

int Rounds()
{
    return g_options.rounds > 0 ? g_options.rounds : 1;
}

}  // namespace

Timing Time(const std::function<bool()>& body)
{
    Timing timing;
    if (!body())
        return timing;
    int batch = 1;
    for (int round = 0; round < Rounds(); ++round)
        timing.rounds.push_back(Round(body, g_options.seconds / Rounds(), batch));
    return timing;
}

TimingPair TimeBoth(const std::function<bool()>& ours, const std::function<bool()>& reference)
{
    TimingPair pair;
    const bool oursWorks = ours();
    const bool referenceWorks = reference();
    int oursBatch = 1, referenceBatch = 1;
    for (int round = 0; round < Rounds(); ++round) {
        if (oursWorks)
            pair.ours.rounds.push_back(Round(ours, g_options.seconds / Rounds(), oursBatch));
        if (referenceWorks)
            pair.reference.rounds.push_back(Round(reference, g_options.seconds / Rounds(), referenceBatch));
    }
    return pair;
}

namespace {

// The median ratio of the rounds, paired in order, and its range: "1.23 (1.10-1.40)".
std::string RatioText(const Timing& ours, const Timing& reference)
{
    // Rounds are paired in order; a side measured another number of times is compared by its median.
    Timing ratios;
    if (ours.rounds.size() == reference.rounds.size()) {
        for (size_t i = 0; i < ours.rounds.size(); ++i)
            ratios.rounds.push_back(ours.rounds[i] / reference.rounds[i]);
    } else {
        ratios.rounds.push_back(ours.Median() / reference.Median());
    }
    const auto range = std::minmax_element(ratios.rounds.begin(), ratios.rounds.end());
    char text[64];
    snprintf(text, sizeof(text), "%.2f (%.2f-%.2f)", ratios.Median(), *range.first, *range.second);
    return text;
}

}  // namespace

std::string Format(const char* format, double value)
{
    char text[64];
    snprintf(text, sizeof(text), format, value);
    return text;
}

std::wstring TempFile(const wchar_t* name)
{
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

void AddTimes(std::vector<Row>& rows, const std::string& name, const std::string& input, const Timing& ours,
              const Timing& reference, const std::string& referenceName)
{
    if (ours.rounds.empty() || reference.rounds.empty()) {
        rows.push_back({name, input, "failed", "failed", "-"});
        return;
    }
    rows.push_back({name, input, Format("%.3f ms", ours * 1e3), Format("%.3f ms ", reference * 1e3) + referenceName,
                    RatioText(ours, reference)});
}

void AddRates(std::vector<Row>& rows, const std::string& name, const std::string& input, const Timing& ours,
              const Timing& reference, double units, const std::string& unitName, const std::string& referenceName)
{
    if (ours.rounds.empty() || reference.rounds.empty()) {
        rows.push_back({name, input, "failed", "failed", "-"});
        return;
    }
    rows.push_back({name, input, Format("%.1f ", units / ours) + unitName,
                    Format("%.1f ", units / reference) + unitName + " " + referenceName,
                    RatioText(ours, reference)});
}

}  // namespace bench

int wmain(int argc, wchar_t** argv)
{
    bench::Options& options = bench::g_options;
    for (int i = 1; i < argc; ++i) {
        if (wcscmp(argv[i], L"--gif") == 0 && i + 1 < argc)
            options.gif = argv[++i];
        else if (wcscmp(argv[i], L"--seconds") == 0 && i + 1 < argc)
            options.seconds = _wtof(argv[++i]);
        else if (wcscmp(argv[i], L"--rounds") == 0 && i + 1 < argc)
            options.rounds = _wtoi(argv[++i]);
        else if (wcscmp(argv[i], L"--only") == 0 && i + 1 < argc)
            options.only = argv[++i];
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    std::vector<bench::Row> rows;
    for (const auto& entry : bench::Cases()) {
        const std::wstring key(entry.first.begin(), entry.first.end());
        if (options.only.empty() || key.find(options.only) != std::wstring::npos)
            entry.second(rows);
    }
    printf("| case | input | zcmod | reference | ratio |\n|---|---|---|---|---|\n");
    for (const bench::Row& r : rows)
        printf("| %s | %s | %s | %s | %s |\n", r.name.c_str(), r.input.c_str(), r.ours.c_str(), r.reference.c_str(),
               r.ratio.c_str());
    printf("\nratio = zcmod time / reference time (below 1: zcmod is faster): the median of %d rounds, each the\n"
           "fastest batch of its share of the time, with the lowest and highest round in brackets; the times are\n"
           "the medians of each side\n",
           options.rounds);
    CoUninitialize();
    return rows.empty() ? 1 : 0;
}
