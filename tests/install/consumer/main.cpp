#include "paths/QuonPath.h"

#include <cstdio>

int wmain()
{
    QuonPath path(L"C:/survey//site.xml", QuonPathNormalize);
    path.SetExtension(L"bak");
    std::printf("%ls\n", static_cast<const wchar_t*>(path));
    return std::wstring(path) == L"C:\\survey\\site.bak" ? 0 : 1;
}
