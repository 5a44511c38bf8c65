#include <gtest/gtest.h>
#include <afx.h>

namespace
{
TEST(CStringSmokeTest, IsOnePointerAndSharesItsCharacters)
{
    CString text = L"abc";
    const CString copy = text;
    EXPECT_EQ(sizeof(text), sizeof(void*));
    EXPECT_EQ(text.GetString(), copy.GetString());
    text += L"def";
    EXPECT_TRUE(text == L"abcdef");
    EXPECT_TRUE(copy == L"abc");
}

TEST(CStringSmokeTest, ExceptionsCrossTheBorderByPointer)
{
    try
    {
        AfxThrowMemoryException();
        FAIL();
    }
    catch (CException* error)
    {
        EXPECT_NE(dynamic_cast<CMemoryException*>(error), nullptr);
        error->Delete();
    }
}
}  // namespace
