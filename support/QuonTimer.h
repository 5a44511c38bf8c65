/// @file
/// A text log file whose name can carry a time stamp, and a stopwatch that writes its readings into one.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// A text file that opens at construction. Nothing is reported when that fails: the object stays closed and everything
/// that `QuonTimer` writes into it is dropped. The destructor closes the file.
class QUON_API QuonStdioFile : public CStdioFile
{
public:
    /// Opens the file for reading and writing, for this object only (exclusive sharing), and creates it when it is
    /// missing.
    /// @param path the log file; an empty path opens nothing.
    /// @param timeStamped puts " - " and the current time, in whole seconds since 1970 UTC, behind the file's title
    ///        ("run.log" becomes "run - 1700000000.log") and creates the folder of the file with all missing parents.
    ///        Without it the folder must exist. The seconds have 32 bits: from 2038-01-19 on they are negative.
    /// @param overwrite drops what the file holds; without it new text comes behind the old.
    QuonStdioFile(const CString& path, BOOL timeStamped, BOOL overwrite);
    ~QuonStdioFile() override;

    QuonStdioFile(const QuonStdioFile&) = delete;
    QuonStdioFile& operator=(const QuonStdioFile&) = delete;

protected:
    /// 1 after the constructor has opened the file, else 0.
    BOOL m_isOpen;
};

/// A stopwatch on the process's clock (`clock()`, 1000 ticks per second) with a log file.
///
/// `StartTimer` takes the start; each `AddLap` adds the time since then to the sum, so laps that follow one another
/// without a new `StartTimer` overlap. A text is made of the sum; while the sum is 0, of the time since the start.
/// Objects are independent of one another; one object is for one thread at a time.
class QUON_API QuonTimer : public QuonStdioFile
{
public:
    /// Opens the log file as `QuonStdioFile` does. A timer without a log (empty path, or a file that cannot be opened)
    /// measures all the same.
    QuonTimer(const CString& path, BOOL timeStamped, BOOL overwrite);
    ~QuonTimer() override;

    QuonTimer(const QuonTimer&) = delete;
    QuonTimer& operator=(const QuonTimer&) = delete;

    /// Sets the start to now. The sum stays as it is.
    /// @return the clock's ticks (milliseconds) at the start.
    long StartTimer();

    /// Adds the time since the start to the sum. The start stays as it is.
    /// @return the time since the start in ticks (milliseconds).
    long AddLap();

    /// @param reset sets the sum to 0 afterwards.
    /// @return the sum in seconds, such as "1.250 sec". A sum of exactly 0 is first set to the time since the start,
    /// and
    ///         so sticks: without @p reset the next call returns the same text.
    CString GetElapsedText(BOOL reset);

    /// @param label what was measured.
    /// @param reset as for `GetElapsedText`.
    /// @return a line of its own, such as "\nTimer in Load: 1.250 sec\n".
    CString GetReportText(const CString& label, BOOL reset);

    /// Writes `GetElapsedText` into the log. Without an open log it does nothing: the sum is neither set nor reset.
    /// A failure to write is not reported.
    void WriteElapsed(BOOL reset);

    /// Writes `GetReportText` into the log. Without an open log it does nothing: the sum is neither set nor reset.
    /// A failure to write is not reported.
    void WriteReport(const CString& label, BOOL reset);

private:
    long m_startClock;
    double m_elapsed;
};
