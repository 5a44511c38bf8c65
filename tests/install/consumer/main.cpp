#include "paths/FileOperations.h"
#include "traversal/QuonFileTrees.h"

// Deletes every .bak file below a folder, read-only ones too, deepest folders first. 0 when all are gone.
unsigned int RemoveBackups(const wchar_t* folder)
{
    QuonDFSFileTree backups;
    backups.FindFirst(folder, L"*.bak", kQuonMatchFiles);
    return DeleteMatchedFiles(backups);
}

// The folder to clean is the only argument.
int wmain(int count, wchar_t** arguments)
{
    return count == 2 ? static_cast<int>(RemoveBackups(arguments[1])) : 2;
}
