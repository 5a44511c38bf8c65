#include "traversal/QuonFileTrees.h"

// Both file trees are the same walk over different folder trees: the steps are written once, over the parts of either.
namespace
{

// Searches the current folder and, while there is nothing to find, the folders after it.
template <typename FolderTree>
bool FindInFolders(FolderTree& folders, QuonBasicFileMatcher& matcher, const QuonPath& pattern, unsigned int filter)
{
    while (folders.IsFound())
    {
        if (matcher.FindFirst(folders.GetFoundPath(), pattern, filter))
        {
            return true;
        }
        folders.FindNext();
    }
    return false;
}

template <typename FolderTree>
bool FindFirstFileOf(FolderTree& folders, QuonBasicFileMatcher& matcher, const wchar_t* root, const QuonPath& pattern,
                     unsigned int filter)
{
    folders.FindFirst(root, L"*", kQuonMatchFolders);
    return FindInFolders(folders, matcher, pattern, filter);
}

template <typename FolderTree>
bool FindNextFileOf(FolderTree& folders, QuonBasicFileMatcher& matcher, const QuonPath& pattern, unsigned int filter)
{
    if (matcher.FindNext())
    {
        return true;
    }
    folders.FindNext();
    return FindInFolders(folders, matcher, pattern, filter);
}

}  // namespace

QuonBFSFileTree::QuonBFSFileTree() : m_filePattern(L"", QuonPathBackslash), m_fileFilter(0) {}

QuonBFSFileTree::~QuonBFSFileTree()
{
    QuonBFSFileTree::Close();
}

void QuonBFSFileTree::Close()
{
    m_matcher.Close();
    m_folders.Close();
    m_filePattern = L"";
}

bool QuonBFSFileTree::FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter)
{
    m_filePattern = pattern;
    m_fileFilter = filter;
    return FindFirstFileOf(m_folders, m_matcher, root, m_filePattern, m_fileFilter);
}

bool QuonBFSFileTree::FindNext()
{
    return FindNextFileOf(m_folders, m_matcher, m_filePattern, m_fileFilter);
}

bool QuonBFSFileTree::IsFound() const
{
    return m_folders.IsFound() && m_matcher.IsFound();
}

QuonPath QuonBFSFileTree::GetFoundPath() const
{
    return m_folders.GetFoundPath() + m_matcher.GetFindData()->cFileName;
}

QuonPath QuonBFSFileTree::GetFoundName() const
{
    return m_folders.GetFoundName() + m_matcher.GetFindData()->cFileName;
}

QuonPath QuonBFSFileTree::GetFolder() const
{
    return m_folders.GetFolder();
}

QuonDFSFileTree::QuonDFSFileTree() : m_filePattern(L"", QuonPathBackslash), m_fileFilter(0) {}

QuonDFSFileTree::~QuonDFSFileTree()
{
    QuonDFSFileTree::Close();
}

void QuonDFSFileTree::Close()
{
    m_matcher.Close();
    m_folders.Close();
    m_filePattern = L"";
}

bool QuonDFSFileTree::FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter)
{
    m_filePattern = pattern;
    m_fileFilter = filter;
    return FindFirstFileOf(m_folders, m_matcher, root, m_filePattern, m_fileFilter);
}

bool QuonDFSFileTree::FindNext()
{
    return FindNextFileOf(m_folders, m_matcher, m_filePattern, m_fileFilter);
}

bool QuonDFSFileTree::IsFound() const
{
    return m_folders.IsFound() && m_matcher.IsFound();
}

QuonPath QuonDFSFileTree::GetFoundPath() const
{
    return m_folders.GetFoundPath() + m_matcher.GetFindData()->cFileName;
}

QuonPath QuonDFSFileTree::GetFoundName() const
{
    return m_folders.GetFoundName() + m_matcher.GetFindData()->cFileName;
}

QuonPath QuonDFSFileTree::GetFolder() const
{
    return m_folders.GetFolder();
}
