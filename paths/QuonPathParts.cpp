#include "paths/PathStringInternal.h"

#include "paths/PathTextInternal.h"
#include "paths/QuonPath.h"

// <commdlg.h> makes a macro of this name.
#undef GetFileTitle

using QuonPathText::JoinString;
using QuonPathText::MakeString;
using QuonPathText::SetText;
using QuonPathText::SplitText;
using QuonPathText::View;

namespace
{

// Everything that is rebuilt from parts is written with this one, whatever the path that gave the parts writes.
constexpr wchar_t kRebuiltSeparator = L'\\';

/// The text of `folder`, joined with `file`, by the rules of QuonPath's operator+.
CString JoinParts(std::wstring_view folder, std::wstring_view file)
{
    CString text = MakeString(folder);
    JoinString(text, kRebuiltSeparator, file);
    return text;
}

CString FolderOf(const SplitText& split)
{
    return JoinParts(split.Get().drive, split.Get().directory);
}

}  // namespace

void QuonPath::SplitPlain(QuonPath& drive, QuonPath& directory, QuonPath& name, QuonPath& extension) const
{
    // One of the results may be this very object: its text and separator are kept until all are written.
    const CString text = m_path;
    const wchar_t* const separator = m_separator;
    const QuonPathText::Parts parts = QuonPathText::SplitPlain(View(text));
    SetText(drive.m_path, parts.drive);
    drive.m_separator = separator;
    SetText(directory.m_path, parts.directory);
    directory.m_separator = separator;
    SetText(name.m_path, parts.name);
    name.m_separator = separator;
    SetText(extension.m_path, parts.extension);
    extension.m_separator = separator;
}

void QuonPath::Split(QuonPath& drive, QuonPath& directory, QuonPath& name, QuonPath& extension) const
{
    const CString text = m_path;
    const wchar_t* const separator = m_separator;
    const SplitText split(View(text), *separator);
    SetText(name.m_path, split.Get().name);
    name.m_separator = separator;
    SetText(extension.m_path, split.Get().extension);
    extension.m_separator = separator;
    SetText(drive.m_path, split.Get().drive);
    drive.m_separator = separator;
    SetText(directory.m_path, split.Get().directory);
    directory.m_separator = separator;
}

QuonPath QuonPath::GetDrive() const
{
    QuonPath drive;
    SetText(drive.m_path, SplitText(View(m_path), *m_separator).Get().drive);
    return drive;
}

QuonPath QuonPath::GetDirectory() const
{
    QuonPath directory;
    SetText(directory.m_path, SplitText(View(m_path), *m_separator).Get().directory);
    return directory;
}

QuonPath QuonPath::GetFolder() const
{
    QuonPath folder;
    folder.m_path = FolderOf(SplitText(View(m_path), *m_separator));
    return folder;
}

QuonPath QuonPath::GetFileName() const
{
    QuonPath fileName;
    SetText(fileName.m_path, SplitText(View(m_path), *m_separator).FileName());
    return fileName;
}

QuonPath QuonPath::GetFileTitle() const
{
    QuonPath title;
    SetText(title.m_path, QuonPathText::SplitPlain(View(m_path)).name);
    return title;
}

QuonPath QuonPath::GetExtension() const
{
    QuonPath extension;
    SetText(extension.m_path, QuonPathText::SplitPlain(View(m_path)).extension);
    return extension;
}

void QuonPath::SetDrive(const wchar_t* drive)
{
    const SplitText split(View(m_path), *m_separator);
    const CString rest = JoinParts(split.Get().directory, split.FileName());
    CString text(drive);
    JoinString(text, *m_separator, View(rest));
    m_path = text;
}

void QuonPath::SetDirectory(const wchar_t* directory)
{
    QuonPath rebuilt;
    const SplitText split(View(m_path), *m_separator);
    rebuilt.m_path = JoinParts(split.Get().drive, View(directory));
    JoinString(rebuilt.m_path, kRebuiltSeparator, split.FileName());
    *this = rebuilt;
}

void QuonPath::SetFileTitle(const wchar_t* title)
{
    QuonPath rebuilt;
    const SplitText split(View(m_path), *m_separator);
    CString fileName(title);
    fileName += MakeString(split.Get().extension);
    rebuilt.m_path = FolderOf(split);
    JoinString(rebuilt.m_path, kRebuiltSeparator, View(fileName));
    *this = rebuilt;
}

void QuonPath::SetExtension(const wchar_t* extension)
{
    QuonPath rebuilt;
    const SplitText split(View(m_path), *m_separator);
    rebuilt.m_path = FolderOf(split);
    JoinString(rebuilt.m_path, kRebuiltSeparator, split.Get().name);
    const std::wstring_view given = View(extension);
    if (given.empty() || given.front() != L'.')
    {
        rebuilt.m_path += L'.';
    }
    rebuilt.m_path += MakeString(given);
    *this = rebuilt;
}

QuonPath QuonPath::GetFirstComponent() const
{
    QuonPath component;
    std::wstring_view rest = View(m_path);
    SetText(component.m_path, QuonPathText::TakeComponent(rest));
    return component;
}

QuonPath QuonPath::GetLastComponent() const
{
    QuonPath component;
    SetText(component.m_path, QuonPathText::LastComponent(View(m_path)));
    return component;
}

void QuonPath::RemoveFirstComponent()
{
    const int length = m_path.GetLength();
    if (length == 0)
    {
        return;
    }
    wchar_t* const buffer = m_path.GetBuffer(length);
    const std::wstring_view text(buffer, static_cast<std::size_t>(length));
    m_path.ReleaseBuffer(static_cast<int>(QuonPathText::WithoutFirstComponent(text, *m_separator, buffer)));
}

void QuonPath::GetComponents(std::list<QuonPath>& components) const
{
    // The list may hold this very path.
    const CString text = m_path;
    const wchar_t separator = *m_separator;
    components.clear();
    const auto add = [&components](std::wstring_view component) {
        if (!component.empty())
        {
            SetText(components.emplace_back().m_path, component);
        }
    };
    const SplitText split(View(text), separator);
    add(split.Get().drive);
    std::wstring_view rest = split.Get().directory;
    while (!rest.empty())
    {
        add(QuonPathText::TakeComponent(rest));
    }
    add(split.FileName());
}
