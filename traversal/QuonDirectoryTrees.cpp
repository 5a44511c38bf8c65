#include "traversal/QuonDirectoryTrees.h"

#include <memory>

namespace
{

using MatcherStack = CList<QuonBasicFileMatcher*, QuonBasicFileMatcher*>;

constexpr INT_PTR kStackBlockSize = 10;
constexpr const wchar_t* kAnyName = L"*";

QuonBasicFileMatcher* Deepest(const MatcherStack& stack)
{
    return stack.GetAt(stack.GetTailPosition());
}

void Push(MatcherStack& stack, const wchar_t* folder, const wchar_t* pattern, unsigned int filter)
{
    auto matcher = std::make_unique<QuonBasicFileMatcher>();
    matcher->SetSkipDots(TRUE);
    matcher->FindFirst(folder, pattern, filter);
    stack.AddTail(matcher.get());
    static_cast<void>(matcher.release());
}

// From `folder`, which the deepest matcher searches, down to a folder without (further) subfolders: its matcher, which
// found nothing, becomes the deepest.
void Descend(MatcherStack& stack, QuonPath folder, const wchar_t* pattern, unsigned int filter)
{
    while (Deepest(stack)->IsFound())
    {
        folder.Append(Deepest(stack)->GetFindData()->cFileName);
        Push(stack, folder, pattern, filter);
    }
}

// Ends a matcher's search with the scope that lists the matches, also when that has no memory for one of them.
class SearchScope
{
public:
    explicit SearchScope(QuonBasicFileMatcher& matcher) : m_matcher(matcher) {}
    ~SearchScope() { m_matcher.Close(); }
    SearchScope(const SearchScope&) = delete;
    SearchScope& operator=(const SearchScope&) = delete;

private:
    QuonBasicFileMatcher& m_matcher;
};

}  // namespace

QuonBFSDirectoryTree::QuonBFSDirectoryTree() : m_root(L"", QuonPathBackslash), m_folderFilter(0) {}

QuonBFSDirectoryTree::~QuonBFSDirectoryTree()
{
    QuonBFSDirectoryTree::Close();
}

void QuonBFSDirectoryTree::Close()
{
    m_root = L"";
    m_queue.clear();
}

bool QuonBFSDirectoryTree::FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int /*filter*/)
{
    // Copied first: both may point into this object, which Close empties.
    const QuonPath newRoot(root, QuonPathBackslash);
    const CString firstPattern(pattern);
    Close();
    m_root = newRoot;
    m_folderFilter = kQuonMatchFolders;

    const SearchScope scope(m_matcher);
    m_matcher.SetSkipDots(TRUE);
    m_matcher.FindFirst(m_root, firstPattern, m_folderFilter);
    m_queue.emplace_back(L"", QuonPathBackslash);
    for (; m_matcher.IsFound(); m_matcher.FindNext())
    {
        m_queue.push_back(m_matcher.GetFoundName());
    }
    return IsFound();
}

bool QuonBFSDirectoryTree::FindNext()
{
    if (!m_queue.empty())
    {
        m_queue.pop_front();
    }
    if (m_queue.empty())
    {
        return IsFound();
    }
    const QuonPath& current = m_queue.front();
    const SearchScope scope(m_matcher);
    m_matcher.SetSkipDots(TRUE);
    m_matcher.FindFirst(m_root + current, kAnyName, m_folderFilter);
    for (; m_matcher.IsFound(); m_matcher.FindNext())
    {
        m_queue.push_back(current + m_matcher.GetFindData()->cFileName);
    }
    return IsFound();
}

bool QuonBFSDirectoryTree::IsFound() const
{
    return !m_queue.empty();
}

QuonPath QuonBFSDirectoryTree::GetFoundPath() const
{
    return m_root + GetFoundName();
}

QuonPath QuonBFSDirectoryTree::GetFoundName() const
{
    return m_queue.empty() ? QuonPath(L"", QuonPathBackslash) : QuonPath(m_queue.front());
}

QuonPath QuonBFSDirectoryTree::GetFolder() const
{
    return QuonPath(m_root);
}

QuonDFSDirectoryTree::QuonDFSDirectoryTree()
    : m_root(L"", QuonPathBackslash),
      m_unusedPath(L"", QuonPathBackslash),
      m_matchers(kStackBlockSize),
      m_folderFilter(0),
      m_unusedWord(0)
{
}

QuonDFSDirectoryTree::~QuonDFSDirectoryTree()
{
    QuonDFSDirectoryTree::Close();
}

void QuonDFSDirectoryTree::Close()
{
    m_root = L"";
    while (!m_matchers.IsEmpty())
    {
        delete m_matchers.RemoveHead();
    }
}

bool QuonDFSDirectoryTree::FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int /*filter*/)
{
    // Copied first: both may point into this object, which Close empties.
    const QuonPath newRoot(root, QuonPathBackslash);
    const CString newPattern(pattern);
    Close();
    m_root = newRoot;
    m_pattern = newPattern;
    m_folderFilter = kQuonMatchFolders;
    m_unusedWord = 0;

    Push(m_matchers, m_root, m_pattern, m_folderFilter);
    Descend(m_matchers, QuonPath(m_root), m_pattern, m_folderFilter);
    return IsFound();
}

bool QuonDFSDirectoryTree::FindNext()
{
    if (!m_matchers.IsEmpty() && !Deepest(m_matchers)->IsFound())
    {
        // Closes the search of the folder that was current, before the search above it goes on: whoever removed that
        // folder sees it gone.
        delete m_matchers.RemoveTail();
    }
    if (!m_matchers.IsEmpty())
    {
        Deepest(m_matchers)->FindNext();
        Descend(m_matchers, GetFoundPath(), m_pattern, m_folderFilter);
    }
    return IsFound();
}

bool QuonDFSDirectoryTree::IsFound() const
{
    return !m_matchers.IsEmpty();
}

QuonPath QuonDFSDirectoryTree::GetFoundPath() const
{
    return m_matchers.IsEmpty() ? QuonPath(L"", QuonPathBackslash) : Deepest(m_matchers)->GetFolder();
}

QuonPath QuonDFSDirectoryTree::GetFoundName() const
{
    QuonPath name(L"", QuonPathBackslash);
    for (POSITION position = m_matchers.GetHeadPosition(); position != nullptr;)
    {
        const QuonBasicFileMatcher* const matcher = m_matchers.GetNext(position);
        if (matcher->IsFound())
        {
            name.Append(matcher->GetFindData()->cFileName);
        }
    }
    return name;
}

QuonPath QuonDFSDirectoryTree::GetFolder() const
{
    return QuonPath(m_root);
}
