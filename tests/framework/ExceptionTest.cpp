// The framework's exceptions: thrown as pointers out of its DLL, caught by class or base class, ended by Delete().
#include <afx.h>
#include <afxdisp.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace
{
template <class Exception, class Action>
bool ThrowsAs(Action action)
{
    try
    {
        action();
    }
    catch (Exception* error)
    {
        error->Delete();
        return true;
    }
    return false;
}

/// Whether a handler for Exception catches what `action` throws.
template <class Exception, class Action>
bool Throws(Action action)
{
    try
    {
        return ThrowsAs<Exception>(action);
    }
    catch (CException* error)
    {
        error->Delete();
    }
    return false;
}

TEST(ExceptionTest, AreCaughtByTheirClassAndByTheBase)
{
    EXPECT_TRUE(Throws<CMemoryException>([] { AfxThrowMemoryException(); }));
    EXPECT_TRUE(Throws<CInvalidArgException>([] { AfxThrowInvalidArgException(); }));
    EXPECT_TRUE(Throws<CNotSupportedException>([] { AfxThrowNotSupportedException(); }));
    EXPECT_TRUE(Throws<COleException>([] { AfxThrowOleException(E_FAIL); }));
    EXPECT_TRUE(Throws<CSimpleException>([] { AfxThrowMemoryException(); }));
    EXPECT_TRUE(Throws<CException>([] { AfxThrowInvalidArgException(); }));
    EXPECT_TRUE(Throws<CException>([] { AfxThrowOleException(E_FAIL); }));
    EXPECT_FALSE(Throws<CMemoryException>([] { AfxThrowInvalidArgException(); }));
    EXPECT_FALSE(Throws<CSimpleException>([] { AfxThrowOleException(E_FAIL); }));
}

TEST(ExceptionTest, CanBeThrownAgainAndAgain)
{
    for (int i = 0; i < 1000; ++i)
    {
        ASSERT_TRUE(Throws<CMemoryException>([] { AfxThrowMemoryException(); }));
        ASSERT_TRUE(Throws<COleException>([] { AfxThrowOleException(E_POINTER); }));
    }
}

// More than any heap has, and a size that the compiler does not see.
std::size_t TooMuch()
{
    static volatile std::size_t size = SIZE_MAX / 4;
    return size;
}

TEST(ExceptionTest, OperatorNewThrowsTheMemoryException)
{
    EXPECT_TRUE(Throws<CMemoryException>([] { ::operator delete(::operator new(TooMuch())); }));
    EXPECT_TRUE(Throws<CMemoryException>([] { std::make_unique<char[]>(TooMuch()); }));
    EXPECT_TRUE(Throws<CMemoryException>([] { std::vector<char> bytes(TooMuch()); }));
    EXPECT_TRUE(Throws<CMemoryException>([] { std::string text(TooMuch(), 'x'); }));
    EXPECT_EQ(std::unique_ptr<char[]>(new (std::nothrow) char[TooMuch()]), nullptr);
}

TEST(ExceptionTest, OperatorNewTakesNoBytesForOne)
{
    void* const first = ::operator new(0);
    void* const second = ::operator new(0);
    EXPECT_NE(first, second);
    ::operator delete(first);
    ::operator delete(second);
}

int handlerCalls = 0;

int __cdecl TryThreeTimes(std::size_t size)
{
    EXPECT_EQ(size, TooMuch());
    handlerCalls += 1;
    return handlerCalls < 3 ? 1 : ::AfxNewHandler(size);
}

TEST(ExceptionTest, OperatorNewTriesAgainAsLongAsTheThreadsHandlerSays)
{
    handlerCalls = 0;
    const _PNH previous = ::AfxSetNewHandler(&TryThreeTimes);
    EXPECT_TRUE(Throws<CMemoryException>([] { ::operator delete(::operator new(TooMuch())); }));
    EXPECT_EQ(handlerCalls, 3);
    _PNH other = nullptr;
    std::thread([&other] { other = ::AfxGetNewHandler(); }).join();
    EXPECT_EQ(other, previous) << "a thread has its own handler";
    EXPECT_EQ(::AfxSetNewHandler(previous), &TryThreeTimes);
    EXPECT_EQ(::AfxGetNewHandler(), previous);
}

TEST(ExceptionTest, UnwindDestroysTheFrames)
{
    CString outer(L"shared");
    const wchar_t* characters = outer.GetString();
    EXPECT_TRUE(Throws<CMemoryException>([&] {
        const CString copy(outer);
        AfxThrowMemoryException();
    }));
    EXPECT_EQ(static_cast<const wchar_t*>(outer.GetBuffer()), characters);
}

class CountedException : public CException
{
public:
    CountedException(BOOL autoDelete, int& ends) : CException(autoDelete), m_ends(ends) {}
    ~CountedException() override { ++m_ends; }

private:
    int& m_ends;
};

TEST(ExceptionTest, DeleteEndsOnlyWhatWasMadeForIt)
{
    int ends = 0;
    try
    {
        throw new CountedException(TRUE, ends);
    }
    catch (CException* error)
    {
        error->Delete();
    }
    EXPECT_EQ(ends, 1);
    {
        CountedException stays(FALSE, ends);
        stays.Delete();
        EXPECT_EQ(ends, 1);
    }
    EXPECT_EQ(ends, 2);
}

TEST(ExceptionTest, TellTheirMessage)
{
    CMemoryException memory;
    CException plain;
    wchar_t text[64] = L"before";
    EXPECT_TRUE(memory.GetErrorMessage(text, 64));
    EXPECT_NE(std::wstring(text), L"");
    EXPECT_NE(std::wstring(text), L"before");
    wchar_t shortText[5] = L"....";
    EXPECT_TRUE(memory.GetErrorMessage(shortText, 5));
    EXPECT_EQ(std::wstring(shortText), std::wstring(text, 4));
    UINT help = 7;
    EXPECT_FALSE(plain.GetErrorMessage(text, 64, &help));
    EXPECT_EQ(std::wstring(text), L"");
    EXPECT_EQ(help, 0U);
}
}  // namespace
