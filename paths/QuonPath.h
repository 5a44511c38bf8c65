/// @file
/// The path value of the library, and the free functions about paths and single files.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "paths/WellKnownFolders.h"

#include <commdlg.h>

#include <cstdint>
#include <list>
#include <string>

// <commdlg.h> makes a macro of this name. It may be read before this header or after it; the member is GetFileTitle in
// both cases.
#pragma push_macro("GetFileTitle")
#undef GetFileTitle

/// Flags for the constructors of QuonPath, QuonPath::Assign() and QuonPath::ApplyFlags(): any combination of the
/// constants below by "or". Of each pair (slashes, trailing separator, case) only one counts: both bits of the trailing
/// pair together, or both bits of the case pair, do nothing, and both slash bits mean the backslash.
using QuonPathFlags = std::uint32_t;

/// The separator becomes "/". Without this flag it becomes `\`.
inline constexpr QuonPathFlags QuonPathForwardSlash = 0x01;
/// The separator becomes `\`, as it does without any flag.
inline constexpr QuonPathFlags QuonPathBackslash = 0x02;
/// QuonPath::RemoveTrailingSeparators() is applied.
inline constexpr QuonPathFlags QuonPathStripTrailing = 0x04;
/// QuonPath::AddTrailingSeparator() is applied.
inline constexpr QuonPathFlags QuonPathAddTrailing = 0x08;
/// The whole text is put into lower case as CString::MakeLower() does: by the C run-time's locale, so A to Z alone in a
/// program that calls no setlocale().
inline constexpr QuonPathFlags QuonPathLowerCase = 0x10;
/// The whole text is put into upper case as CString::MakeUpper() does: by the C run-time's locale, as above.
inline constexpr QuonPathFlags QuonPathUpperCase = 0x20;
/// QuonPath::Normalize() is applied, after everything else.
inline constexpr QuonPathFlags QuonPathNormalize = 0x40;

/// What GetFileInfo() tells of a file, in the layout of the platform's `WIN32_FILE_ATTRIBUTE_DATA`.
struct QuonFileInfo
{
    DWORD attributes;         ///< The `FILE_ATTRIBUTE_...` bits.
    FILETIME creationTime;    ///< When the file was created.
    FILETIME lastAccessTime;  ///< When the file was last read or written.
    FILETIME lastWriteTime;   ///< When the file was last written.
    DWORD sizeHigh;           ///< The high 32 bits of the size in bytes.
    DWORD sizeLow;            ///< The low 32 bits of the size in bytes.
};

/// A file-system path: a text, and the separator (`\` or "/") that the object writes when it builds or joins paths.
///
/// Both separators are accepted on input everywhere. Nothing here resolves "." or ".." or touches the disk, except
/// Exists(), Access(), GetInfo(), SetToFolder() and what is built from a QuonFolderId.
///
/// **The separator and copies.** A new path has the separator `\`. *Copy construction copies the text alone* and gives
/// the copy `\`; only copy assignment from another path carries the separator over. So whatever is returned by value
/// has the separator `\`, even when its text was written with "/". Assigning a plain string changes the text alone.
/// For the same reason there is no move: moving is copying, and copies share the text anyway.
///
/// **Texts.** Where a `const wchar_t*` is taken, null counts as the empty text. A `std::wstring` is taken up to its
/// first zero character. A `CString` is taken whole: what is read through `const wchar_t*` ends at a zero inside it,
/// while joining, splitting and components use all of it. Arguments may point into the text of the object that
/// is called. There is no limit on the length of a text as such, but the parts given by SplitPlain() and Split(), and
/// all that is built from them (the `Get...` and `Set...` functions for parts, GetComponents(), MakeRelativeTo()), are
/// cut at 263 characters each.
///
/// **Comparing.** There are no comparison operators; `==` with a string would compare addresses. Compare the texts.
///
/// **Failures and threads.** Nothing but lack of memory throws (a `CMemoryException*`, as the framework's strings do),
/// and Normalize() not even then. There are no locks: one object is used by one thread at a time, different objects by
/// any.
class QUON_API QuonPath
{
public:
    /// An empty path with the separator `\`.
    QuonPath();
    /// Copies the text of `other`; the separator of the new path is `\` whatever `other` has.
    QuonPath(const QuonPath& other);
    /// Takes the text, then applies the flags.
    QuonPath(const wchar_t* text, QuonPathFlags flags);
    /// Takes the text, then applies the flags.
    QuonPath(const std::wstring& text, QuonPathFlags flags);
    /// Takes the text, then applies the flags.
    QuonPath(const CString& text, QuonPathFlags flags);
    /// Copies text and separator of `other`, then applies the flags, which set the separator anew.
    QuonPath(const QuonPath& other, QuonPathFlags flags);
    /// An empty path set to a well-known folder by SetToFolder(), then the flags. Empty for an unknown id.
    QuonPath(QuonFolderId folder, QuonPathFlags flags);
    ~QuonPath();

    /// Copies text and separator. Assigning a path to itself does nothing.
    QuonPath& operator=(const QuonPath& other);
    /// Takes the text and keeps the separator.
    QuonPath& operator=(const wchar_t* text);
    /// Takes the text and keeps the separator.
    QuonPath& operator=(const CString& text);
    /// Takes the text and keeps the separator.
    QuonPath& operator=(const std::wstring& text);

    /// Takes the text, then applies the flags.
    void Assign(const wchar_t* text, QuonPathFlags flags);
    /// Takes the text, then applies the flags.
    void Assign(const std::wstring& text, QuonPathFlags flags);
    /// Copies text and separator of `other`, then applies the flags, which set the separator anew.
    void Assign(const QuonPath& other, QuonPathFlags flags);
    /// Sets the path to a well-known folder by SetToFolder(), then applies the flags. For an unknown id the text stays
    /// and the flags are applied to it.
    void Assign(QuonFolderId folder, QuonPathFlags flags);

    /// The text, terminated by zero; never null. Valid until the path is changed or destroyed.
    operator const wchar_t*() const;

    /// Sets the separator from the slash bits, then changes case, then removes or adds the trailing separator, then
    /// normalizes, each as far as the flags ask for it.
    void ApplyFlags(QuonPathFlags flags);

    /// Sets the text to a well-known folder; the separator stays. When the system does not tell the folder, or for an
    /// unknown id, the text stays as it is. The system is given room for 260 characters: what is longer it cuts or does
    /// not tell.
    void SetToFolder(QuonFolderId folder);

    /// Joins in place: normalizes this path (even when nothing is appended), normalizes `other` with this path's
    /// separator, and puts it behind this text with one separator between, leading separators of `other` dropped. An
    /// empty path takes `other` whole, its leading separators included.
    /// @return a copy of the joined path (its separator is `\`).
    QuonPath Append(const wchar_t* other);
    /// As Append(const wchar_t*).
    QuonPath Append(const std::wstring& other);

    /// The relative path that leads from the folder of `base` to this path.
    ///
    /// `base` is taken as a file's name: what stands behind its last separator is dropped. A result that begins with
    /// the separator `\` gets a "." in front (`.\x.txt`), unless this path's own separator is "/".
    /// @return the relative path, written with `\`; empty when there is none (as across drives).
    QuonPath MakeRelativeTo(QuonPath base) const;

    /// Rewrites the text with the object's separator: every run of `\`, "/" and double quotes between two components
    /// becomes one separator, a double quote parts components as a separator does and vanishes, two leading separators
    /// (a UNC path) stay two, one stays one, and a trailing run becomes one. "." and ".." are kept. A text of two
    /// separators and nothing else becomes three. Without memory for the new text the old one stays, and nothing is
    /// thrown.
    void Normalize();
    /// Makes the separator "/" and normalizes.
    void NormalizeToSlashes();
    /// Makes the separator `\` and normalizes.
    void NormalizeToBackslashes();
    /// Appends the object's separator unless the text ends in `\` or "/". An empty text becomes one separator.
    void AddTrailingSeparator();
    /// Removes the whole run of `\` and "/" at the end: `C:\` becomes "C:", `\` becomes empty.
    void RemoveTrailingSeparators();
    /// Tells whether the text ends in `\` or "/".
    bool HasTrailingSeparator() const;
    /// Tells whether the text begins with two separators, in any mix of `\` and "/".
    bool IsUNC() const;
    /// Tells whether `ch` stands at `index`. A negative index means the first character, the length of the text means
    /// the terminating zero, a greater index gives false.
    bool IsCharAt(int index, const wchar_t& ch) const;

    /// Splits the text as the C run-time's `_wsplitpath` does: drive ("C:"), directory (`\a\b\`), name, extension
    /// (".txt"). Each result takes this path's separator; this path itself may be one of them. Parts longer than 263
    /// characters are cut to 263.
    void SplitPlain(QuonPath& drive, QuonPath& directory, QuonPath& name, QuonPath& extension) const;
    /// As SplitPlain(), but for a UNC path the drive is server and share with a trailing separator (`\\srv\share\`),
    /// written with this path's separator, and the directory is what remains, without a leading separator (`a\`).
    void Split(QuonPath& drive, QuonPath& directory, QuonPath& name, QuonPath& extension) const;

    /// The drive as Split() gives it.
    QuonPath GetDrive() const;
    /// The directory as Split() gives it, leading and trailing separators included.
    QuonPath GetDirectory() const;
    /// The containing folder (drive and directory joined), written with `\` and ending in it. Without a directory it is
    /// the drive alone ("C:" of "C:b.txt"), and empty for a mere file name.
    QuonPath GetFolder() const;
    /// Name and extension ("b.txt").
    QuonPath GetFileName() const;
    /// The name without its extension ("b").
    QuonPath GetFileTitle() const;

    // A template, because every other member of an exported class is exported.
    /// Returns GetFileTitle(): a call of that reads as this where <commdlg.h> has renamed it.
    template <typename = void>
    QuonPath GetFileTitleW() const
    {
        return GetFileTitle();
    }
    /// Returns GetFileTitle(), like GetFileTitleW(), in a program without `UNICODE`.
    template <typename = void>
    QuonPath GetFileTitleA() const
    {
        return GetFileTitle();
    }

    /// The extension with its dot (".txt"), empty when there is none.
    QuonPath GetExtension() const;

    /// Rebuilds the path with another drive, written with the object's separator, which it keeps.
    void SetDrive(const wchar_t* drive);
    /// Rebuilds the path with another directory, written with `\`. The separator becomes `\`.
    void SetDirectory(const wchar_t* directory);
    /// Rebuilds the path with another name and the same extension, written with `\`. The separator becomes `\`.
    void SetFileTitle(const wchar_t* title);
    /// Rebuilds the path with another extension, written with `\`. The separator becomes `\`. A dot is put before an
    /// extension that does not begin with one, the empty extension included (`C:\a\b.`).
    void SetExtension(const wchar_t* extension);

    /// The first component ("C:" of `C:\a\b`, "server" of `\\server\share`), empty when there is none. Components are
    /// the stretches between `\`, "/" and double quotes.
    QuonPath GetFirstComponent() const;
    /// The last component ("b" of `C:\a\b\`), empty when there is none.
    QuonPath GetLastComponent() const;
    /// Removes the first component. The others are joined by the object's separator; leading separators are lost, a
    /// trailing one stays as long as anything stays.
    void RemoveFirstComponent();
    /// Cuts the text where its last component begins and so keeps the separator before it (`C:\a\b\` becomes `C:\a\`).
    /// A text of one component becomes empty, a leading separator notwithstanding. Here only `\` and "/" part
    /// components; double quotes do not.
    void RemoveLastComponent();
    /// Fills the list, which is cleared first, with the drive as Split() gives it, the components of the directory, and
    /// the file name; those that are empty are left out. All have the separator `\`.
    void GetComponents(std::list<QuonPath>& components) const;

    /// Tells whether a file or folder of this name exists.
    bool Exists() const;
    /// Asks whether the file can be accessed: what the C run-time's `_waccess` says for the mode (0 existence, 2
    /// writing, 4 reading, 6 both), 0 for yes and -1 for no.
    int Access(int mode) const;
    /// Reads attributes, times and size of the file, as GetFileInfo() does.
    /// @return true when all were read.
    bool GetInfo(QuonFileInfo* info) const;

private:
    CString m_path;
    const wchar_t* m_separator;  // one of two statics of the library, never owned
};

/// Joins `left` and `right` into a new path, as QuonPath::Append() does, written with `\`.
///
/// There is no overload for a `CString` on the left and a `const wchar_t*` on the right: it would be ambiguous with the
/// framework's own concatenation, which stays what `+` means there. Write `QuonPath(text, 0) + L"..."` instead. A
/// `CString` on the right of a path is ambiguous for the same reason: write `path + text.GetString()`.
QUON_API QuonPath operator+(const QuonPath& left, const wchar_t* right);
/// As operator+(const QuonPath&, const wchar_t*).
QUON_API QuonPath operator+(const QuonPath& left, const std::wstring& right);
/// As operator+(const QuonPath&, const wchar_t*).
QUON_API QuonPath operator+(const CString& left, const std::wstring& right);

/// Sets `result` to what the shell's `PathCombineW` makes of the two: it resolves "." and "..", and an absolute second
/// path replaces the first. Empty when the two do not fit into `MAX_PATH` characters.
QUON_API void CombinePaths(CString& result, CString first, CString second);

/// Appends `\` unless the text ends in `\`. A trailing "/" does not count.
QUON_API void AddTrailingBackslash(CString& path);

/// Removes one `\` from the end of the text, if there is one. A trailing "/" does not count.
QUON_API void RemoveTrailingBackslash(CString& path);

/// Reads attributes, times and size of a file. The file is opened for reading; folders cannot be opened this way, so a
/// folder gives 0 with its attributes filled.
///
/// @param name  the file's name.
/// @param level 0; there is no other level of information.
/// @param info  the record to fill. When the result is 0, fields may have been written all the same: the attributes
///              are (as `INVALID_FILE_ATTRIBUTES` when there is no such file).
/// @return nonzero when everything was read; 0 when something could not be, when `info` is null or `level` is not 0.
QUON_API int GetFileInfo(const wchar_t* name, int level, QuonFileInfo* info);

#pragma pop_macro("GetFileTitle")
