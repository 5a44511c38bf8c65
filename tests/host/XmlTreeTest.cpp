#include "host/Console.h"
#include "host/landxml/XmlEncoding.h"
#include "host/landxml/XmlTree.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::XmlBytesAsUtf8;
using quonhost::XmlElement;
using quonhost::XmlTree;

template <typename Work>
std::string ComplaintOf(const Work& work)
{
    try
    {
        work();
    }
    catch (const quonhost::CommandError& error)
    {
        return error.what();
    }
    return "";
}

// The elements as "name[text](children)", those of other namespaces with a "!".
std::string Describe(const XmlElement& element)
{
    std::string text = (element.IsOwn() ? "" : "!") + std::string(element.QualifiedName()) + "[" + element.Text() + "]";
    std::string children;
    for (XmlElement child = element.FirstChild(); child; child = child.Next())
    {
        children += Describe(child);
    }
    return children.empty() ? text : text + "(" + children + ")";
}

TEST(XmlTree, ElementsAreReadWithTheirTexts)
{
    const struct
    {
        std::string text, tree;
    } rows[] = {
        {"<a/>", "a[]"},
        {"<a></a>", "a[]"},
        {"<?xml version='1.0'?><!-- x --><!DOCTYPE a [<!ENTITY e 'x>'>]><a>t</a><!-- y --> ", "a[t]"},
        {"<a>1<b>2</b>3<c/>4</a>", "a[134](b[2]c[])"},
        {"<a>1<!-- <b> -->2<?p <c> ?>3</a>", "a[123]"},
        {"<a><![CDATA[<b>&amp;]]>x</a>", "a[<b>&amp;x]"},
        {"<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#x1F600;</a>", "a[<>&\"'AB\xF0\x9F\x98\x80]"},
        {"<a><b x='>'>1</b><b y=\"</b>\">2</b></a>", ""},
        {"<a><b x='/>'><c/></b>z</a>", "a[z](b[](c[]))"},
        {"<a\n x = '1'\ty='2'\n>t</a\n>", "a[t]"},
        {"<a xmlns='u'><b/><c xmlns='v'><d/></c><e/></a>", "a[](b[]!c[](!d[])e[])"},
        {"<p:a xmlns:p='u' xmlns:q='u' xmlns:r='v'><p:b/><q:c/><r:d/><e/></p:a>", "p:a[](p:b[]q:c[]!r:d[]!e[])"},
        {"<a><b xmlns:p='v'><p:c/></b></a>", "a[](b[](!p:c[]))"},
        {"<\xC3\xA4>\xE5\xB1\xB1</\xC3\xA4>", "\xC3\xA4[\xE5\xB1\xB1]"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        if (row.tree.empty())
        {
            EXPECT_THROW(XmlTree(L"x", row.text), quonhost::CommandError);
            continue;
        }
        const XmlTree tree(L"x", row.text);
        EXPECT_EQ(Describe(tree.Root()), row.tree);
    }
}

TEST(XmlTree, AttributesAreFoundByTheirNames)
{
    const XmlTree tree(L"x", "<a one='1' two=\"a &amp; 'b'\"\n  three = 'x\ty&#10;z' empty='' one2='no'><b/></a>");
    const XmlElement root = tree.Root();
    EXPECT_EQ(root.Attribute("one"), L"1");
    EXPECT_EQ(root.Attribute("two"), L"a & 'b'");
    EXPECT_EQ(root.Attribute("three"), L"x y\nz");
    EXPECT_EQ(root.Attribute("empty"), L"");
    EXPECT_TRUE(root.HasAttribute("empty"));
    EXPECT_EQ(root.Attribute("on"), L"");
    EXPECT_FALSE(root.HasAttribute("on"));
    EXPECT_FALSE(root.FirstChild().HasAttribute("one"));
    EXPECT_EQ(root.FirstChild().Line(), 2U);
    EXPECT_EQ(root.CountChildren(), 1U);
    EXPECT_FALSE(root.Child("c"));
}

TEST(XmlTree, WhatIsNotWellFormedIsReportedWithItsLine)
{
    const struct
    {
        std::string text, complaint;
    } rows[] = {
        {"  \n", "x line 2: there is no element"},
        {"abc", "x line 1: there is text before the first element"},
        {"\n\n  abc<a/>", "x line 3: there is text before the first element"},
        {"<a/>\nx", "x line 2: there is text after the last element"},
        {"<a/>\n<b/>", "x line 2: there is a second root element"},
        {"<a>\n<b>\n", "x line 3: the file ends before </b>, which line 2 opens"},
        {"<a>\n<b>\n</a>", "x line 3: </a> does not end <b>, which line 2 opens"},
        {"<a/></a>", "x line 1: </a> ends an element that is not open"},
        {"<a></a b>", "x line 1: the end tag </a> has more than its name"},
        {"<a></a", "x line 1: the file ends within the end tag </a>"},
        {"<a", "x line 1: the file ends within <a>"},
        {"<a\n\n", "x line 3: the file ends within <a>"},
        {"<a b", "x line 1: the file ends within <a>"},
        {"<a b=", "x line 1: the file ends within <a>"},
        {"<a b='1", "x line 1: the file ends within the attribute \"b\" of <a>"},
        {"<a b='1>\n<c/></a>", "x line 1: the value of the attribute \"b\" of <a> is not closed, or holds a \"<\""},
        {"<a b>", "x line 1: the attribute \"b\" of <a> has no value"},
        {"<a b=1/>", "x line 1: the value of the attribute \"b\" of <a> is not in quotes"},
        {"<a b='1' b='2'/>", "x line 1: <a> has the attribute \"b\" twice"},
        {"<a b='1'c='2'/>", "x line 1: <a> is not written as a tag"},
        {"<a / >", "x line 1: <a> is not written as a tag"},
        {"<1/>", "x line 1: the name of an element is missing or begins with a character that names cannot begin with"},
        {"<>", "x line 1: the name of an element is missing or begins with a character that names cannot begin with"},
        {"<a>&</a>", "x line 1: \"&\" must be written \"&amp;\""},
        {"<a>\n&nbsp;</a>", "x line 1: the entity \"&nbsp;\" is not known"},
        {"<a b='&#0;'/>", "x line 1: the entity \"&#0;\" is not known"},
        {"<a>&#xD800;</a>", "x line 1: the entity \"&#xD800;\" is not known"},
        {"<p:a/>", "x line 1: the prefix of <p:a> is not declared"},
        {"<a><b xmlns:p='u'/><p:c/></a>", "x line 1: the prefix of <p:c> is not declared"},
        {"<a><!-- \n</a>", "x line 2: the file ends within a comment that begins in line 1"},
        {"<a><!--></a>", "x line 1: the file ends within a comment that begins in line 1"},
        {"<a><![CDATA[ ]]</a>", "x line 1: the file ends within a CDATA section that begins in line 1"},
        {"<?xml version='1.0'", "x line 1: the file ends within a processing instruction that begins in line 1"},
        {"<!DOCTYPE a [", "x line 1: the file ends within a declaration that begins in line 1"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ComplaintOf([&] { const XmlTree tree(L"x", row.text); }), row.complaint);
    }
}

TEST(XmlTree, EveryTruncationIsReported)
{
    const std::string text =
        "<?xml version=\"1.0\"?>\n<!-- c --><a x='1' y=\"2\"><b>1 &amp; 2</b><![CDATA[z]]><p:c xmlns:p='u'/></a>";
    for (size_t length = 0; length < text.size(); ++length)
    {
        const std::string part = text.substr(0, length);
        EXPECT_NE(ComplaintOf([&] { const XmlTree tree(L"x", part); }), "") << part;
    }
    EXPECT_EQ(ComplaintOf([&] { const XmlTree tree(L"x", text); }), "");
}

TEST(XmlTree, DepthIsNotLimited)
{
    constexpr int kDepth = 100000;
    std::string text;
    for (int depth = 0; depth < kDepth; ++depth)
    {
        text += "<a>";
    }
    for (int depth = 0; depth < kDepth; ++depth)
    {
        text += "</a>";
    }
    const XmlTree tree(L"x", text);
    int depth = 0;
    for (XmlElement element = tree.Root(); element; element = element.FirstChild())
    {
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);
}

TEST(XmlEncoding, BytesBecomeUtf8)
{
    const struct
    {
        std::string bytes, text;
    } rows[] = {
        {"", ""},
        {"<a/>", "<a/>"},
        {"\xEF\xBB\xBF<a/>", "<a/>"},
        {std::string("\xFF\xFE<\0a\0/\0>\0", 10), "<a/>"},
        {std::string("\xFE\xFF\0<\0a\0/\0>", 10), "<a/>"},
        {std::string("<\0a\0/\0>\0", 8), "<a/>"},
        {std::string("\0<\0a\0/\0>", 8), "<a/>"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>",
         "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>"},
        {"<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\x80</a>",
         "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xE2\x82\xAC</a>"},
        {"<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA4</a>",
         "<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA4</a>"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(XmlBytesAsUtf8(L"x", row.bytes), row.text);
    }
}

TEST(XmlEncoding, WhatIsNotTextIsRefused)
{
    const struct
    {
        std::string bytes, complaint;
    } rows[] = {
        {"a\n\x80", "x line 2: the text is not UTF-8"},
        {"\xC0\xAF", "x line 1: the text is not UTF-8"},
        {"\xE0\x80\x80", "x line 1: the text is not UTF-8"},
        {"\xED\xA0\x80", "x line 1: the text is not UTF-8"},
        {"\xF4\x90\x80\x80", "x line 1: the text is not UTF-8"},
        {"\xC3", "x line 1: the text is not UTF-8"},
        {"\xE5\xB1", "x line 1: the text is not UTF-8"},
        {"a\n\n\x01", "x line 3: control character 1"},
        {std::string("\xFF\xFE<", 3), "x: the file ends within a character of UTF-16"},
        {"<?xml version='1.0' encoding='ebcdic-x'?>", "x: the encoding is not supported: \"ebcdic-x\""},
        {"<?xml version='1.0' encoding='iso-8859-99'?>", "x: the encoding is not supported: \"iso-8859-99\""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.complaint);
        EXPECT_EQ(ComplaintOf([&] { XmlBytesAsUtf8(L"x", row.bytes); }), row.complaint);
    }
}

}  // namespace
