// Where a project's exchange file goes, and how a drawing names it.
#include "paths/QuonPath.h"

#include <cstdio>

int main()
{
    // What users type: both separators, doubled ones.
    QuonPath project(L"C:/projects//bridge 12\\", 0);
    project.Normalize();

    QuonPath file = project + L"exchange\\survey.xml";
    std::printf("file      %ls\n", static_cast<const wchar_t*>(file));
    std::printf("folder    %ls\n", static_cast<const wchar_t*>(file.GetFolder()));
    std::printf("title     %ls\n", static_cast<const wchar_t*>(file.GetFileTitle()));

    file.SetExtension(L".bak");
    std::printf("backup    %ls\n", static_cast<const wchar_t*>(file.GetFileName()));

    const QuonPath drawing(L"C:\\projects\\bridge 12\\drawings\\plan.dwg", 0);
    std::printf("relative  %ls\n", static_cast<const wchar_t*>(file.MakeRelativeTo(drawing)));

    // A web server wants the other separator.
    QuonPath address(file, QuonPathForwardSlash);
    address.Normalize();
    std::printf("address   %ls\n", static_cast<const wchar_t*>(address));
    return 0;
}
