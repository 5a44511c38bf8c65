/// @file
/// The shell's dialog for choosing a folder.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "paths/QuonPath.h"

#include <shlobj.h>

namespace QuonBrowseForDirectory_details
{
struct Dialog;
}

/// Lets the user choose a folder. A derived class may refuse folders.
///
/// Each object keeps COM initialised on the thread that made it, and is used and destroyed there.
class QUON_API QuonBrowseForDirectory
{
public:
    /// Initialises COM on this thread.
    /// @param callback what the dialog calls, with the object as its data; null for the class's own, which selects the
    /// initial folder and asks ValidateFolder
    explicit QuonBrowseForDirectory(BFFCALLBACK callback);
    /// One object, one initialisation of COM.
    QuonBrowseForDirectory(const QuonBrowseForDirectory&) = delete;
    /// One object, one initialisation of COM.
    QuonBrowseForDirectory& operator=(const QuonBrowseForDirectory&) = delete;
    /// Uninitialises COM.
    virtual ~QuonBrowseForDirectory();

    /// Shows the dialog and waits for its end.
    /// @param result receives the chosen folder, with a separator behind it; left alone when none is chosen
    /// @param initialFolder the folder to select at first; null for none. Ignored when it does not exist.
    /// @param title a text above the folders; may be null
    /// @param owner the window that the dialog belongs to; may be null
    /// @param rootFolder the folder above which the user cannot go; null for the desktop. Ignored when the shell does
    /// not know it.
    /// @return true when the user chose a folder; false on cancel, and when the shell's allocator cannot be had
    virtual bool Browse(QuonPath& result, const wchar_t* initialFolder, const wchar_t* title, HWND owner,
                        const wchar_t* rootFolder);

    /// Called by the class's own callback whenever a folder is selected. Accepts everything by default.
    /// @param path the folder, without a separator behind it unless it is a root
    /// @param statusText empty; what is put there the dialog shows
    /// @return false to disable OK for this folder
    virtual bool ValidateFolder(const wchar_t* path, CString& statusText);

private:
    // What works on the fields is not a member: every member of an exported class is exported.
    friend struct QuonBrowseForDirectory_details::Dialog;

    // In this order: other modules were built against this layout.
    BFFCALLBACK m_callback;
    CString m_initialFolder;
    CString m_rootFolder;
    PIDLIST_RELATIVE m_initialList;
    PIDLIST_RELATIVE m_rootList;
};
