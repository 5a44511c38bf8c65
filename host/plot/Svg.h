// The text of an SVG picture.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>

namespace quonhost
{

/// Returns the text as an element or an attribute can hold it, in UTF-8.
std::string EscapeXml(std::wstring_view text);

/// A length or place in pixels with at most one decimal.
std::string Pixels(double value);

/// The outline of shapes, in tenths of a pixel: short enough for a hundred thousand triangles. Shapes without extent at
/// that size are left out.
class SvgPath
{
public:
    void Begin(double x, double y);
    void LineTo(double x, double y);
    /// Ends the shape that was begun, with a line back to its beginning if it is closed.
    void End(bool isClosed);

    bool IsEmpty() const { return m_text.empty(); }
    const std::string& GetText() const { return m_text; }

private:
    void Write(long long number);

    std::string m_text;
    std::string m_lines;
    long long m_startX = 0, m_startY = 0;
    long long m_x = 0, m_y = 0;
};

/// A picture that is written from its beginning to its end.
class SvgWriter
{
public:
    /// A part, to be appended to another.
    SvgWriter() = default;
    SvgWriter(double width, double height, const std::wstring& title);

    void Append(const SvgWriter& part) { m_text += part.m_text; }

    void BeginGroup(const std::string& attributes);
    void EndGroup();
    /// @param attributes widths are in tenths of a pixel
    void Path(const SvgPath& path, const std::string& attributes);
    void Text(double x, double y, const std::wstring& text, const std::string& attributes = "");
    void Rectangle(double left, double top, double width, double height, const std::string& attributes);
    void Line(double x1, double y1, double x2, double y2, const std::string& attributes);
    /// Ends the picture. @return its text
    std::string Finish();

private:
    std::string m_text;
};

}  // namespace quonhost
