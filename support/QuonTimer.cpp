#include "support/QuonTimer.h"

#include "paths/FileOperations.h"
#include "paths/QuonPath.h"

#include <ctime>

namespace
{

constexpr UINT kKeepContent =
    CFile::modeReadWrite | CFile::shareExclusive | CFile::modeCreate | CFile::modeNoTruncate | CFile::typeText;
constexpr UINT kDropContent = CFile::modeReadWrite | CFile::shareExclusive | CFile::modeCreate | CFile::typeText;
static_assert(kKeepContent == 0x7012 && kDropContent == 0x5012);

constexpr double kTicksPerSecond = 1000.0;

// The time goes through "%d": beyond the range of 32 bits it wraps.
CString StampedPath(const CString& path)
{
    const int seconds = static_cast<int>(::_time64(nullptr));
    QuonPath stamped(path, 0);
    CString title;
    title.Format(L"%s - %d", static_cast<const wchar_t*>(stamped.GetFileTitle()), seconds);
    stamped.SetFileTitle(title);
    return CString(static_cast<const wchar_t*>(stamped));
}

// Differences of the 32-bit clock wrap around with it.
long TicksSince(long start)
{
    return static_cast<long>(static_cast<unsigned long>(std::clock()) - static_cast<unsigned long>(start));
}

void WriteText(CStdioFile& log, const CString& text)
{
    if (text.IsEmpty())
    {
        return;
    }
    try
    {
        log.WriteString(text);
    }
    catch (CFileException* failure)
    {
        // A full disk must not end what is being measured.
        failure->Delete();
    }
}

}  // namespace

QuonStdioFile::QuonStdioFile(const CString& path, BOOL timeStamped, BOOL overwrite) : m_isOpen(0)
{
    if (path.IsEmpty())
    {
        return;
    }
    CString name = path;
    if (timeStamped)
    {
        name = StampedPath(path);
        // Should this fail, so does the opening.
        CreateFolderTree(QuonPath(name, 0).GetFolder());
    }
    try
    {
        CFileException error;
        if (!Open(name, overwrite ? kDropContent : kKeepContent, &error))
        {
            AfxThrowFileException(error.m_cause, error.m_lOsError, name);
        }
        m_isOpen = 1;
        if (!overwrite)
        {
            // Frameworks differ in where the first text goes when the content is kept; a log goes on at its end. What
            // cannot be positioned, a pipe or a device, has no end and needs none.
            SeekToEnd();
        }
    }
    catch (CFileException* failure)
    {
        failure->Delete();
    }
}

QuonStdioFile::~QuonStdioFile() = default;

QuonTimer::QuonTimer(const CString& path, BOOL timeStamped, BOOL overwrite)
    : QuonStdioFile(path, timeStamped, overwrite), m_startClock(0), m_elapsed(0.0)
{
}

QuonTimer::~QuonTimer() = default;

long QuonTimer::StartTimer()
{
    m_startClock = std::clock();
    return m_startClock;
}

long QuonTimer::AddLap()
{
    const long ticks = TicksSince(m_startClock);
    m_elapsed += ticks / kTicksPerSecond;
    return ticks;
}

CString QuonTimer::GetElapsedText(BOOL reset)
{
    if (m_elapsed == 0.0)
    {
        m_elapsed = TicksSince(m_startClock) / kTicksPerSecond;
    }
    CString text;
    text.Format(L"%.3f sec", m_elapsed);
    if (reset)
    {
        m_elapsed = 0.0;
    }
    return text;
}

CString QuonTimer::GetReportText(const CString& label, BOOL reset)
{
    return L"\nTimer in " + label + L": " + GetElapsedText(reset) + L"\n";
}

void QuonTimer::WriteElapsed(BOOL reset)
{
    if (m_isOpen)
    {
        WriteText(*this, GetElapsedText(reset));
    }
}

void QuonTimer::WriteReport(const CString& label, BOOL reset)
{
    if (m_isOpen)
    {
        WriteText(*this, GetReportText(label, reset));
    }
}
