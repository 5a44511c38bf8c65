// Random operations on strings that share their characters, against std::wstring, which shares nothing.
#include <gtest/gtest.h>
#include <afx.h>
#include <algorithm>
#include <array>
#include <random>
#include <string>

namespace
{
constexpr size_t kStrings = 6;

class Model
{
public:
    explicit Model(unsigned seed) : m_random(seed) {}

    void Step()
    {
        const size_t to = Below(kStrings);
        const size_t from = Below(kStrings);
        m_operation = Below(20);
        Apply(m_strings[to], m_texts[to], m_strings[from], m_texts[from]);
        if (m_texts[to].size() > 300)
        {
            m_strings[to].Truncate(5);
            m_texts[to].resize(5);
        }
    }

    void Check() const
    {
        for (size_t i = 0; i < kStrings; ++i)
        {
            const std::wstring got(m_strings[i].GetString(), static_cast<size_t>(m_strings[i].GetLength()));
            ASSERT_EQ(got, m_texts[i]) << "string " << i << " after operation " << m_operation;
            ASSERT_EQ(m_strings[i].GetString()[got.size()], L'\0');
        }
    }

private:
    size_t Below(size_t bound) { return m_random() % bound; }

    std::wstring Piece()
    {
        std::wstring piece(Below(12), L'a');
        for (wchar_t& ch : piece)
        {
            ch = L"abc \x416"[Below(5)];
        }
        return piece;
    }

    static void ReplaceAll(std::wstring& text, const std::wstring& from, const std::wstring& to)
    {
        for (size_t at = text.find(from); at != std::wstring::npos; at = text.find(from, at + to.size()))
        {
            text.replace(at, from.size(), to);
        }
    }

    void Apply(CString& s, std::wstring& t, const CString& otherString, const std::wstring& otherText)
    {
        const CString other(otherString);
        const std::wstring otherCopy(otherText);
        const std::wstring piece = Piece();
        const size_t at = Below(t.size() + 1);
        const size_t count = Below(t.size() - at + 1);
        const int index = static_cast<int>(at);
        const int length = static_cast<int>(count);
        switch (m_operation)
        {
            case 0:
                s = other;
                t = otherCopy;
                break;
            case 1:
                s += otherString;
                t += otherText;
                break;
            case 2:
                s += piece.c_str();
                t += piece;
                break;
            case 3:
                s += L'z';
                t += L'z';
                break;
            case 4:
                s = piece.c_str();
                t = piece;
                break;
            case 5:
                s.Insert(index, piece.c_str());
                t.insert(at, piece);
                break;
            case 6:
                s.Delete(index, length);
                t.erase(at, count);
                break;
            case 7:
                s = s.Mid(index, length);
                t = t.substr(at, count);
                break;
            case 8:
                s = s.GetString() + index;
                t = t.substr(at);
                break;
            case 9:
                s.Replace(L'a', L'b');
                std::replace(t.begin(), t.end(), L'a', L'b');
                break;
            case 10:
                s.Replace(L"ab", piece.c_str());
                ReplaceAll(t, L"ab", piece);
                break;
            case 11:
                s.Remove(L'c');
                t.erase(std::remove(t.begin(), t.end(), L'c'), t.end());
                break;
            case 12:
                s.Trim();
                t.erase(t.find_last_not_of(L' ') + 1);
                t.erase(0, t.find_first_not_of(L' '));
                break;
            case 13:
                s.Format(L"<%s %d>", other.GetString(), index);
                t = L"<" + otherCopy + L" " + std::to_wstring(index) + L">";
                break;
            case 14:
                s = other + s;
                t = otherCopy + t;
                break;
            case 15:
                s.MakeReverse();
                std::reverse(t.begin(), t.end());
                break;
            case 16:
                wmemset(s.GetBufferSetLength(length), L'q', count);
                t.assign(count, L'q');
                break;
            case 17:
                s = static_cast<CString&&>(CString(other));
                t = otherCopy;
                break;
            case 18:
                ASSERT_EQ(s.Find(piece.c_str(), index), static_cast<int>(t.find(piece, at)));
                ASSERT_EQ(s.ReverseFind(L'b'), static_cast<int>(t.rfind(L'b')));
                ASSERT_EQ(s.Compare(other) < 0, t < otherCopy);
                break;
            default:
                s.Empty();
                t.clear();
                break;
        }
    }

    std::mt19937 m_random;
    size_t m_operation = 0;
    std::array<CString, kStrings> m_strings;
    std::array<std::wstring, kStrings> m_texts;
};

TEST(CStringModelTest, BehavesAsTextsThatShareNothing)
{
    for (unsigned seed = 1; seed <= 40; ++seed)
    {
        SCOPED_TRACE(seed);
        Model model(seed);
        for (int step = 0; step < 2000 && !testing::Test::HasFatalFailure(); ++step)
        {
            model.Step();
            model.Check();
        }
    }
}
}  // namespace
