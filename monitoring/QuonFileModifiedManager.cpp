#include "monitoring/QuonFileModifiedManager.h"

#include <algorithm>
#include <cwchar>
#include <list>

namespace
{

std::list<QuonFileModifiedStatus>& RememberedFiles()
{
    static std::list<QuonFileModifiedStatus> files;
    return files;
}

}  // namespace

QuonFileModifiedStatus::QuonFileModifiedStatus()
{
    m_ctime = CTime();
    m_mtime = CTime();
    m_atime = CTime();
}

QuonFileModifiedStatus::QuonFileModifiedStatus(const CFileStatus& status) : CFileStatus(status) {}

QuonFileModifiedStatus::QuonFileModifiedStatus(const QuonFileModifiedStatus&) = default;

QuonFileModifiedStatus& QuonFileModifiedStatus::operator=(const QuonFileModifiedStatus& other)
{
    if (this != &other)
    {
        std::copy(std::begin(other.m_szFullName), std::end(other.m_szFullName), m_szFullName);
        m_ctime = other.m_ctime;
        m_mtime = other.m_mtime;
        m_size = other.m_size;
    }
    return *this;
}

QuonFileModifiedStatus::~QuonFileModifiedStatus() = default;

bool QuonFileModifiedStatus::operator==(const QuonFileModifiedStatus& other) const
{
    // The addresses of the names, not their texts: two records are never equal, and what a caller removes from a list
    // by value is the very same record or nothing. As pointers, because compilers rightly warn of arrays that are
    // compared so.
    const wchar_t* const name = m_szFullName;
    const wchar_t* const otherName = other.m_szFullName;
    return this == &other ||
           (name == otherName && m_ctime == other.m_ctime && m_mtime == other.m_mtime && m_size == other.m_size);
}

bool QuonFileModifiedStatus::operator!=(const QuonFileModifiedStatus& other) const
{
    return !(*this == other);
}

QuonFileModifiedManager::QuonFileModifiedManager() = default;
QuonFileModifiedManager::QuonFileModifiedManager(const QuonFileModifiedManager&) = default;
QuonFileModifiedManager& QuonFileModifiedManager::operator=(const QuonFileModifiedManager&) = default;
QuonFileModifiedManager::~QuonFileModifiedManager() = default;

bool QuonFileModifiedManager::IsFileModified(CString path)
{
    CFileStatus read;
    if (!CFile::GetStatus(path, read))
    {
        return true;
    }
    std::list<QuonFileModifiedStatus>& files = RememberedFiles();
    const QuonFileModifiedStatus status(read);
    const auto known = std::find_if(files.begin(), files.end(), [&path](const QuonFileModifiedStatus& file) {
        return path.CompareNoCase(file.m_szFullName) == 0;
    });
    if (known != files.end())
    {
        if (known->m_mtime == status.m_mtime)
        {
            return false;
        }
        // Removes nothing, because no record equals another one: the first record of a file stays, and is what later
        // calls compare with. The copy matters, since the record itself would be equal and would go.
        const QuonFileModifiedStatus outdated(*known);
        files.remove(outdated);
    }
    files.push_back(status);
    return true;
}
