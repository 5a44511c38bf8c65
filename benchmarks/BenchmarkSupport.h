/// @file
/// What the benchmark programs share: contenders for a piece of work, at growing sizes.
#pragma once

#include <afx.h>

#include <functional>
#include <string>
#include <vector>

namespace quon_benchmark
{

/// Which sizes a program measures.
class Sizes
{
public:
    /// @param smoke only the smallest size, made smaller still
    explicit Sizes(bool smoke) : m_smoke(smoke) {}

    /// @param largest the size that the goals are about
    /// @return a hundredth of it, a tenth and all; in a smoke run a thousandth alone, and at least 10
    std::vector<int> UpTo(int largest) const;

private:
    bool m_smoke;
};

/// Enters a contender. Google Benchmark repeats `once` and times it; the report sets the contenders of one work and
/// size side by side.
/// @param work what is done, such as "allocate and free, 48 bytes"
/// @param size how many items `once` works on
/// @param contender who does it; the library itself is "quon", a bare loop that nobody can beat begins with "limit"
/// @param once does the whole work once; lasts well over the timer's resolution (10 microseconds or more)
void Add(const std::string& work, int size, const std::string& contender, std::function<void()> once);

/// The same for work that needs something made anew, outside the measured time, before each run.
void AddPrepared(const std::string& work, int size, const std::string& contender, std::function<void()> prepare,
                 std::function<void()> once);

/// The same for work in surroundings that are made before all runs in a row and are gone behind them.
void AddWithin(const std::string& work, int size, const std::string& contender, std::function<void()> begin,
               std::function<void()> once, std::function<void()> end);

/// Ends the program when contenders disagree: nothing is timed before all results are the same.
void Require(bool condition, const std::string& what);

/// Notes a figure that is no time, such as the bytes of an element, for the report.
void Note(const std::string& what, double value);

/// The body of a benchmark program's main. Understands `--smoke` besides the options of Google Benchmark.
/// @param addContenders called once before the measurements
/// @return the exit code
int Run(int argc, char** argv, void (*addContenders)(const Sizes& sizes));

}  // namespace quon_benchmark
