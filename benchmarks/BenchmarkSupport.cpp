#include "BenchmarkSupport.h"

#include <afx.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace quon_benchmark
{
namespace
{

// Of Wine; empty on Windows.
std::string WineVersion()
{
    using GetVersion = const char*(__cdecl*)();
    const auto getVersion = reinterpret_cast<GetVersion>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version")));
    return getVersion != nullptr ? getVersion() : "";
}

std::string NameOf(const std::string& work, int size, const std::string& contender)
{
    return work + "/" + std::to_string(size) + "/" + contender;
}

}  // namespace

std::vector<int> Sizes::UpTo(int largest) const
{
    if (m_smoke)
    {
        return {std::max(10, largest / 1000)};
    }
    return {largest / 100, largest / 10, largest};
}

void Add(const std::string& work, int size, const std::string& contender, std::function<void()> once)
{
    AddWithin(work, size, contender, nullptr, std::move(once), nullptr);
}

void AddPrepared(const std::string& work, int size, const std::string& contender, std::function<void()> prepare,
                 std::function<void()> once)
{
    // The library's way to stop its clock takes a tenth of a millisecond under Wine, which would count as work.
    const auto body = [prepare = std::move(prepare), once = std::move(once), size](benchmark::State& state) {
        for (auto _ : state)
        {
            prepare();
            const auto start = std::chrono::steady_clock::now();
            once();
            benchmark::ClobberMemory();
            state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * size);
    };
    benchmark::RegisterBenchmark(NameOf(work, size, contender).c_str(), body)->UseManualTime();
}

void AddWithin(const std::string& work, int size, const std::string& contender, std::function<void()> begin,
               std::function<void()> once, std::function<void()> end)
{
    const auto body = [begin = std::move(begin), once = std::move(once), end = std::move(end),
                       size](benchmark::State& state) {
        if (begin)
        {
            begin();
        }
        for (auto _ : state)
        {
            once();
            benchmark::ClobberMemory();
        }
        if (end)
        {
            end();
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * size);
    };
    // The processor's clock stands still while a thread waits; a user's does not.
    benchmark::RegisterBenchmark(NameOf(work, size, contender).c_str(), body)->UseRealTime();
}

void Require(bool condition, const std::string& what)
{
    if (!condition)
    {
        std::fprintf(stderr, "contenders disagree: %s\n", what.c_str());
        std::exit(1);
    }
}

void Note(const std::string& what, double value)
{
    char text[32] = {};
    std::snprintf(text, sizeof(text), "%.6g", value);
    benchmark::AddCustomContext("note: " + what, text);
}

int Run(int argc, char** argv, void (*addContenders)(const Sizes& sizes))
{
    char** const smoke =
        std::find_if(argv + 1, argv + argc, [](const char* text) { return std::strcmp(text, "--smoke") == 0; });
    const bool isSmoke = smoke != argv + argc;
    if (isSmoke)
    {
        std::rotate(smoke, smoke + 1, argv + argc);
        --argc;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 2;
    }
    benchmark::AddCustomContext("wine", WineVersion());
    addContenders(Sizes(isSmoke));
    const std::size_t count = benchmark::RunSpecifiedBenchmarks();
    // Ends what the contenders hold, such as their temporary folders.
    benchmark::ClearRegisteredBenchmarks();
    benchmark::Shutdown();
    std::printf("benchmarks done: %u\n", static_cast<unsigned>(count));
    return count > 0 ? 0 : 1;
}

}  // namespace quon_benchmark
