#include <afx.h>

#include "reliability/ImportFailure.h"

#include "support/BlockPool.h"
#include "support/StringHelpers.h"
#include "support/TraceLog.h"

namespace quon_test::import_failure
{

namespace
{

std::string TakePages(const Folder&)
{
    // At most a region and a page: then the pool has asked the system.
    void* head = nullptr;
    std::size_t size = 2000;
    bool isRefused = false;
    for (int page = 0; page < 33 && !isRefused; ++page)
    {
        isRefused = PoolAddPage(&head, &size) == nullptr;
    }
    while (head != nullptr)
    {
        void* const element = PoolAllocate(&head);
        void* const other = head != nullptr ? PoolAllocate(&head) : nullptr;
        PoolFree(&head, element);
        if (other != nullptr)
        {
            PoolFree(&head, other);
        }
    }
    return isRefused ? "refused" : "taken";
}

}  // namespace

std::vector<Row> SupportRows()
{
    return {
        {"CharLowerBuffW", kZero, "AbC", [](const Folder&) { return Narrow(ToLowerCopy(L"AbC")); }},
        {"CharUpperBuffW", kZero, "AbC", [](const Folder&) { return Narrow(ToUpperCopy(L"AbC")); }},
        {"FormatMessageW", kZero, "", [](const Folder&) { return Narrow(GetSystemErrorText(ERROR_FILE_NOT_FOUND)); }},
        {"LocalFree", 1, "text",
         [](const Folder&) { return GetSystemErrorText(ERROR_FILE_NOT_FOUND).IsEmpty() ? "none" : "text"; }},
        {"StringFromCLSID", kNoMemory, "", [](const Folder&) { return Narrow(ClsidToString(IID_IUnknown)); }},
        {"MessageBoxW", kZero, "0", [](const Folder&) { return std::to_string(ShowErrorBox(ERROR_FILE_NOT_FOUND)); }},
        {"VirtualAlloc", kZero, "refused", &TakePages},
    };
}

}  // namespace quon_test::import_failure
