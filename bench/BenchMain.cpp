// Usage: zcmod_bench [--seconds S] [--gif FILE] [--only TEXT]
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

double Time(const std::function<bool()>& body)
{
    if (!body())
        return -1.0;
    double best = 1e30;
    const double end = Now() + g_options.seconds;
    int batch = 1;
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

void AddTimes(std::vector<Row>& rows, const std::string& name, const std::string& input, double ours,
              double reference, const std::string& referenceName)
{
    if (ours <= 0 || reference <= 0) {
        rows.push_back({name, input, "failed", "failed", "-"});
        return;
    }
    rows.push_back({name, input, Format("%.3f ms", ours * 1e3), Format("%.3f ms ", reference * 1e3) + referenceName,
                    Format("%.2f", ours / reference)});
}

void AddRates(std::vector<Row>& rows, const std::string& name, const std::string& input, double ours,
              double reference, double units, const std::string& unitName, const std::string& referenceName)
{
    if (ours <= 0 || reference <= 0) {
        rows.push_back({name, input, "failed", "failed", "-"});
        return;
    }
    rows.push_back({name, input, Format("%.1f ", units / ours) + unitName,
                    Format("%.1f ", units / reference) + unitName + " " + referenceName,
                    Format("%.2f", ours / reference)});
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
    printf("\nratio = zcmod time / reference time (below 1: zcmod is faster)\n");
    CoUninitialize();
    return rows.empty() ? 1 : 0;
}
