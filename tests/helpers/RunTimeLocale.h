// The locale of the C run-time, for as long as an object lives.
#pragma once

#include <clocale>
#include <stdexcept>

namespace quon_test
{

/// Sets the locale of the C run-time that test, library and framework share, and the locale "C" at the end of its life.
class RunTimeLocale
{
public:
    explicit RunTimeLocale(const char* name)
    {
        if (std::setlocale(LC_ALL, name) == nullptr)
        {
            throw std::runtime_error("no such locale");
        }
    }
    ~RunTimeLocale() { std::setlocale(LC_ALL, "C"); }
    RunTimeLocale(const RunTimeLocale&) = delete;
    RunTimeLocale& operator=(const RunTimeLocale&) = delete;
};

}  // namespace quon_test
