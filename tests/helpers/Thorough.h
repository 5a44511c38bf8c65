// How much the randomised tests and the soaks do: a little by default, as much as the environment asks for in a
// thorough run.
#pragma once

#include <algorithm>
#include <cstdlib>

namespace quon_test
{

/// @return the number in the environment variable `name`, 0 without one
inline int NumberFromEnvironment(const char* name)
{
    const char* const text = std::getenv(name);
    return text == nullptr ? 0 : std::atoi(text);
}

/// Rounds of a comparison with a model: `usual`, or QUON_TEST_CASES if that is more.
inline int Cases(int usual)
{
    return std::max(usual, NumberFromEnvironment("QUON_TEST_CASES"));
}

/// How long a soak lasts: a second, or QUON_SOAK_SECONDS if that is more.
inline unsigned long SoakMilliseconds()
{
    return 1000ul * static_cast<unsigned long>(std::max(1, NumberFromEnvironment("QUON_SOAK_SECONDS")));
}

}  // namespace quon_test
