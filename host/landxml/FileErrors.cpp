#include "host/landxml/FileErrors.h"

#include "host/Streams.h"

namespace quonhost
{

std::wstring ShownName(const std::wstring& name)
{
    return name == kStandardStreamName ? L"the standard input" : L"\"" + name + L"\"";
}

CommandError FileError(const std::wstring& name, const std::wstring& what)
{
    return CommandError(std::wstring_view(name + L": " + what));
}

CommandError LineError(const std::wstring& name, unsigned int line, const std::wstring& what)
{
    return CommandError(std::wstring_view(name + L" line " + std::to_wstring(line) + L": " + what));
}

}  // namespace quonhost
