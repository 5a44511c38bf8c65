/// @file
/// Random texts of a given alphabet, the same in every run.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace quon_test
{

class RandomText
{
public:
    explicit RandomText(unsigned int seed) : m_engine(seed) {}

    /// A number from 0 to `last`.
    std::size_t Number(std::size_t last) { return std::uniform_int_distribution<std::size_t>(0, last)(m_engine); }

    /// Up to `mostLength` characters, each from `alphabet`.
    std::wstring Text(std::wstring_view alphabet, std::size_t mostLength)
    {
        std::wstring text(Number(mostLength), L' ');
        for (wchar_t& character : text)
        {
            character = alphabet[Number(alphabet.size() - 1)];
        }
        return text;
    }

private:
    std::mt19937 m_engine;
};

}  // namespace quon_test
