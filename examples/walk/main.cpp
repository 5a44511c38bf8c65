// Makes a small project folder, counts its drawings, mirrors it and removes it again.
#include "paths/FileOperations.h"

#include "traversal/QuonFileTrees.h"

#include <cstdio>

namespace
{

void WriteFile(const QuonPath& path, const char* text)
{
    CFile file(path, CFile::modeCreate | CFile::modeWrite);
    file.Write(text, static_cast<UINT>(strlen(text)));
}

int CountFiles(const QuonPath& folder, const wchar_t* pattern)
{
    int count = 0;
    QuonBFSFileTree files;
    for (files.FindFirst(folder, pattern, kQuonMatchFiles); files.IsFound(); files.FindNext())
    {
        std::printf("  %ls\n", static_cast<const wchar_t*>(files.GetFoundName()));
        ++count;
    }
    return count;
}

}  // namespace

int main()
{
    const QuonPath temporary(QuonFolderTemp, 0);
    const QuonPath project = temporary + L"quon walk example\\project";
    const QuonPath mirror = temporary + L"quon walk example\\mirror";
    CreateFolderTree(project + L"drawings\\old");
    WriteFile(project + L"survey.csv", "1,100,200,10\n");
    WriteFile(project + L"drawings\\plan.dwg", "plan");
    WriteFile(project + L"drawings\\old\\plan.dwg", "old plan");

    std::printf("drawings, the nearest folders first:\n");
    std::printf("%d drawings\n", CountFiles(project, L"*.dwg"));

    // 0 is success, 1 is failure.
    std::printf("mirrored: %u\n", CopyFolderTree(project, mirror, TRUE));
    std::printf("everything in the mirror:\n");
    std::printf("%d files\n", CountFiles(mirror, L"*"));
    std::printf("removed: %u\n", RemoveFolderTree(temporary + L"quon walk example"));
    return 0;
}
