// One line of the trace: as it goes to the debugger's output, and its formatting alone.
#include <afx.h>

#include "BenchmarkSupport.h"
#include "helpers/ImportPatch.h"
#include "support/TraceLog.h"

#include <benchmark/benchmark.h>
#include <fmt/xchar.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>

#include <cstdarg>
#include <cwchar>
#include <memory>
#include <optional>
#include <string>

using namespace quon_benchmark;

namespace
{

constexpr wchar_t kFile[] = L"C:\\projects\\survey\\import\\PointImport.cpp";
constexpr int kLine = 218;
constexpr wchar_t kLayer[] = L"existing ground";
constexpr int kDotsEnd = 98;
constexpr std::size_t kLineSize = 2048;

void Trace(int number)
{
    DebugLog(kFile, kLine, L"%d points of layer %s", number, kLayer);
}

// The whole line by the run-time's formatter: position, dots up to a column, thread, message.
int FormatByRunTime(wchar_t* line, const wchar_t* format, ...)
{
    static constexpr wchar_t kDots[] =
        L"............................................................................................................."
        L"...";
    const int position = ::_snwprintf(line, kLineSize, L"%s(%d): LOG ", kFile, kLine);
    int length = position + ::_snwprintf(line + position, kLineSize - static_cast<std::size_t>(position),
                                         L"%.*sTID=%08lX ", kDotsEnd - position, kDots, ::GetCurrentThreadId());
    va_list arguments;
    va_start(arguments, format);
    length += ::_vsnwprintf(line + length, kLineSize - static_cast<std::size_t>(length) - 2, format, arguments);
    va_end(arguments);
    line[length++] = L'\n';
    line[length] = L'\0';
    return length;
}

std::size_t FormatByFmt(fmt::wmemory_buffer& line, int number)
{
    line.clear();
    fmt::format_to(std::back_inserter(line), L"{}({}): LOG ", kFile, kLine);
    fmt::format_to(std::back_inserter(line), L"{:.<{}}TID={:08X} {} points of layer {}\n", L"",
                   kDotsEnd - static_cast<int>(line.size()), ::GetCurrentThreadId(), number, kLayer);
    return line.size();
}

// Its pattern has no dots and its text is narrow: it is told for what it takes, with a line that comes near.
std::size_t FormatBySpdlog(spdlog::pattern_formatter& formatter, spdlog::memory_buf_t& line, int number)
{
    line.clear();
    fmt::memory_buffer message;
    fmt::format_to(std::back_inserter(message), "{} points of layer {}", number, "existing ground");
    formatter.format(
        spdlog::details::log_msg({"C:\\projects\\survey\\import\\PointImport.cpp", kLine, ""}, "", spdlog::level::info,
                                 spdlog::string_view_t(message.data(), message.size())),
        line);
    return line.size();
}

// Takes the lines of the library in the place of the debugger's output.
std::wstring* theLine = nullptr;

void WINAPI Swallow(const wchar_t* text)
{
    if (theLine != nullptr)
    {
        *theLine = text;
    }
}

using OutputPatch = quon_test::ImportPatch<decltype(&::OutputDebugStringW)>;
std::optional<OutputPatch> thePatch;

void SwallowLines()
{
    if (!thePatch)
    {
        thePatch.emplace(L"QuonWin32Utils.dll", "OutputDebugStringW", &Swallow);
    }
}

void LetLinesThrough()
{
    thePatch.reset();
}

void Check()
{
    std::wstring ours;
    theLine = &ours;
    SwallowLines();
    Trace(12);
    theLine = nullptr;
    LetLinesThrough();

    wchar_t line[kLineSize];
    FormatByRunTime(line, L"%d points of layer %s", 12, kLayer);
    Require(ours == line, "the line by _vsnwprintf");
    fmt::wmemory_buffer buffer;
    const std::size_t length = FormatByFmt(buffer, 12);
    Require(ours == std::wstring(buffer.data(), length), "the line by fmt");
}

void AddOutput(int size)
{
    Add("write one line", size, "quon", [size] {
        for (int index = 0; index < size; ++index)
        {
            Trace(index);
        }
    });
    wchar_t text[kLineSize];
    FormatByRunTime(text, L"%d points of layer %s", 12, kLayer);
    Add("write one line", size, "limit: bare OutputDebugStringW, no formatting", [size, line = std::wstring(text)] {
        for (int index = 0; index < size; ++index)
        {
            ::OutputDebugStringW(line.c_str());
        }
    });
}

void AddFormatting(int size)
{
    const std::string work = "format one line";
    AddWithin(
        work, size, "quon", &SwallowLines,
        [size] {
            for (int index = 0; index < size; ++index)
            {
                Trace(index);
            }
        },
        &LetLinesThrough);
    Add(work, size, "_vsnwprintf (msvcrt)", [size] {
        wchar_t line[kLineSize];
        for (int index = 0; index < size; ++index)
        {
            benchmark::DoNotOptimize(FormatByRunTime(line, L"%d points of layer %s", index, kLayer));
        }
    });
    Add(work, size, "fmt 9.1.0", [size] {
        fmt::wmemory_buffer line;
        for (int index = 0; index < size; ++index)
        {
            benchmark::DoNotOptimize(FormatByFmt(line, index));
        }
    });
    Add(work, size, "spdlog 1.10.0, narrow and without the dots", [size] {
        spdlog::pattern_formatter formatter("%g(%#): LOG TID=%t %v", spdlog::pattern_time_type::local, "\n");
        spdlog::memory_buf_t line;
        for (int index = 0; index < size; ++index)
        {
            benchmark::DoNotOptimize(FormatBySpdlog(formatter, line, index));
        }
    });
}

void AddContenders(const Sizes& sizes)
{
    Check();
    for (const int size : sizes.UpTo(10000))
    {
        AddFormatting(size);
    }
    for (const int size : sizes.UpTo(1000))
    {
        AddOutput(size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
