/// @file
/// Walks over the folders of a tree.
#pragma once

#include <afxtempl.h>

#include "traversal/QuonBasicFileMatcher.h"

#include <list>

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251)  // the containers are private: no client touches them
#endif

/// The folders of a tree, breadth-first: the root itself (relative name empty), then its subfolders, then theirs, level
/// by level, siblings in the order of the system. No search stays open between calls.
///
/// A root that does not exist or cannot be listed is still visited, as the only item. There is no depth limit, and
/// links and junctions are followed: a folder that is reached twice is visited twice, and a link to a folder above
/// itself is walked round until the system refuses the ever longer path. A queue beyond the list's maximum size throws
/// the length error of the standard library's list, where that has one.
class QUON_API QuonBFSDirectoryTree : public QuonFileMatch
{
public:
    QuonBFSDirectoryTree();

    QuonBFSDirectoryTree(const QuonBFSDirectoryTree&) = delete;
    QuonBFSDirectoryTree& operator=(const QuonBFSDirectoryTree&) = delete;

    /// Empties the queue and forgets the root.
    void Close() override;

    /// Starts at the root.
    /// @param pattern  restricts the root's own subfolders; below them every subfolder is visited
    /// @param filter   ignored: all folders count, hidden and system ones included
    bool FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter) override;

    bool FindNext() override;

    bool IsFound() const override;

    /// The root joined with GetFoundName(); so the normalised root once the walk is over.
    QuonPath GetFoundPath() const override;

    /// The current folder relative to the root; empty for the root itself and once the walk is over.
    QuonPath GetFoundName() const override;

    QuonPath GetFolder() const override;

    ~QuonBFSDirectoryTree() override;

private:
    QuonPath m_root;
    std::list<QuonPath> m_queue;  // folders still to be visited, relative to the root; the front is the current one
    QuonBasicFileMatcher m_matcher;
    unsigned int m_folderFilter;
};

/// The folders of a tree, depth-first, each one after all of its subfolders, the root (relative name empty) last;
/// siblings in the order of the system. So a folder may be removed while it is the current one.
///
/// Between calls one search is open per level, from the root down to the current folder; that of the current folder is
/// exhausted. Root, depth and links are as for QuonBFSDirectoryTree.
class QUON_API QuonDFSDirectoryTree : public QuonFileMatch
{
public:
    QuonDFSDirectoryTree();

    QuonDFSDirectoryTree(const QuonDFSDirectoryTree&) = delete;
    QuonDFSDirectoryTree& operator=(const QuonDFSDirectoryTree&) = delete;

    /// Closes every open search and forgets the root.
    void Close() override;

    /// Starts at the first leaf, reached by following the first match of every level.
    /// @param pattern  holds at every level: only subfolders whose names match are entered
    /// @param filter   ignored: all folders count, hidden and system ones included
    bool FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter) override;

    bool FindNext() override;

    bool IsFound() const override;

    /// The current folder, for the root exactly as it was given; the empty path once the walk is over.
    QuonPath GetFoundPath() const override;

    /// The current folder relative to the root; empty for the root itself and once the walk is over.
    QuonPath GetFoundName() const override;

    QuonPath GetFolder() const override;

    ~QuonDFSDirectoryTree() override;

private:
    QuonPath m_root;
    QuonPath m_unusedPath;  // no operation reads it; it keeps its place in the object
    // One owned matcher per level. The head searches the root, each later one the current match of the one before it.
    CList<QuonBasicFileMatcher*, QuonBasicFileMatcher*> m_matchers;
    unsigned int m_folderFilter;
    unsigned int m_unusedWord;  // written by FindFirst, read by nothing; it keeps its place in the object
    CString m_pattern;
};

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
