/// @file
/// Walks over the files of a tree.
#pragma once

#include <afx.h>

#include "traversal/QuonDirectoryTrees.h"

/// The files of a tree, folder by folder in the order of QuonBFSDirectoryTree: the root's files first. Within a folder
/// they come in the order of the system.
///
/// What counts as a file is up to the filter: kQuonMatchFiles lists files only, kQuonMatchEverything lists a folder's
/// subfolders too, "." and ".." never. A root that does not exist or cannot be listed gives no match.
class QUON_API QuonBFSFileTree : public QuonFileMatch
{
public:
    QuonBFSFileTree();

    QuonBFSFileTree(const QuonBFSFileTree&) = delete;
    QuonBFSFileTree& operator=(const QuonBFSFileTree&) = delete;

    /// Closes the search, then the walk over the folders, and forgets the pattern.
    void Close() override;

    /// Goes to the first file. Every folder is walked; pattern and filter hold for the files in them.
    bool FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter) override;

    bool FindNext() override;

    bool IsFound() const override;

    /// The current folder's path joined with the name of the entry that was read last, whether or not that is a match.
    QuonPath GetFoundPath() const override;

    /// The current folder relative to the root, joined with the name of the entry that was read last.
    QuonPath GetFoundName() const override;

    QuonPath GetFolder() const override;

    ~QuonBFSFileTree() override;

private:
    QuonBFSDirectoryTree m_folders;
    QuonBasicFileMatcher m_matcher;
    QuonPath m_filePattern;
    unsigned int m_fileFilter;
};

/// The files of a tree, folder by folder in the order of QuonDFSDirectoryTree: the files of the deepest first-found
/// folder come before those of its parent, the root's files last. For the rest see QuonBFSFileTree.
class QUON_API QuonDFSFileTree : public QuonFileMatch
{
public:
    QuonDFSFileTree();

    QuonDFSFileTree(const QuonDFSFileTree&) = delete;
    QuonDFSFileTree& operator=(const QuonDFSFileTree&) = delete;

    /// Closes the search, then the walk over the folders, and forgets the pattern.
    void Close() override;

    /// Goes to the first file. Every folder is walked; pattern and filter hold for the files in them.
    bool FindFirst(const wchar_t* root, const wchar_t* pattern, unsigned int filter) override;

    bool FindNext() override;

    bool IsFound() const override;

    /// The current folder's path joined with the name of the entry that was read last, whether or not that is a match.
    QuonPath GetFoundPath() const override;

    /// The current folder relative to the root, joined with the name of the entry that was read last.
    QuonPath GetFoundName() const override;

    QuonPath GetFolder() const override;

    ~QuonDFSFileTree() override;

private:
    QuonDFSDirectoryTree m_folders;
    QuonBasicFileMatcher m_matcher;
    QuonPath m_filePattern;
    unsigned int m_fileFilter;
};
