#include "host/HelpText.h"

#include <gtest/gtest.h>

namespace
{

using quonhost::WrapHelp;

TEST(HelpText, IsWrappedBelowItsColumn)
{
    struct Row
    {
        const char* text;
        const char* wrapped;  // at 20 columns
    };
    for (const Row& row :
         {Row{"", ""}, Row{"\n", "\n"}, Row{"short", "short"}, Row{"a\n\nb\n", "a\n\nb\n"},
          Row{"exactly twenty chars", "exactly twenty chars"},
          Row{"exactly twenty chars and more", "exactly twenty chars\nand more"},
          Row{"  name   text that is longer than that", "  name   text that\n         is longer\n         than that"},
          Row{"  indented text that is longer", "  indented text that\n  is longer"},
          Row{"a-word-that-is-longer-than-a-line", "a-word-that-is-longer-than-a-line"},
          Row{"  x  a-word-that-is-longer-than-a-line and more",
              "  x  a-word-that-is-longer-than-a-line\n     and more"},
          Row{"trailing blanks     \nnext", "trailing blanks\nnext"}, Row{"          \nnext", "\nnext"}})
    {
        EXPECT_EQ(WrapHelp(row.text, 20), row.wrapped) << row.text;
    }
}

}  // namespace
