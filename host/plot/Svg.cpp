#include "host/plot/Svg.h"

#include "host/Console.h"

#include <cmath>

namespace quonhost
{
namespace
{

long long TenthsOf(double pixels)
{
    return std::llround(10 * pixels);
}

std::string Attribute(const char* name, const std::string& value)
{
    return std::string(" ") + name + "=\"" + value + '"';
}

std::string Led(const std::string& attributes)
{
    return attributes.empty() ? attributes : ' ' + attributes;
}

}  // namespace

std::string EscapeXml(std::wstring_view text)
{
    std::string result;
    for (const char ch : ToUtf8(text))
    {
        const auto code = static_cast<unsigned char>(ch);
        switch (ch)
        {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += code < ' ' ? ' ' : ch;
                break;
        }
    }
    return result;
}

std::string Pixels(double value)
{
    const long long tenths = TenthsOf(value);
    const long long rest = std::llabs(tenths % 10);
    const std::string sign = tenths < 0 ? "-" : "";
    const std::string whole = sign + std::to_string(std::llabs(tenths / 10));
    return rest == 0 ? whole : whole + '.' + std::to_string(rest);
}

void SvgPath::Write(long long number)
{
    // A minus sign also separates a number from the one before.
    if (number >= 0 && m_lines.back() != 'l')
    {
        m_lines += ' ';
    }
    m_lines += std::to_string(number);
}

void SvgPath::Begin(double x, double y)
{
    m_lines.clear();
    m_startX = m_x = TenthsOf(x);
    m_startY = m_y = TenthsOf(y);
}

void SvgPath::LineTo(double x, double y)
{
    const long long toX = TenthsOf(x);
    const long long toY = TenthsOf(y);
    if (toX == m_x && toY == m_y)
    {
        return;
    }
    if (m_lines.empty())
    {
        m_lines += 'l';
    }
    Write(toX - m_x);
    Write(toY - m_y);
    m_x = toX;
    m_y = toY;
}

void SvgPath::End(bool isClosed)
{
    if (!m_lines.empty())
    {
        m_text += 'M' + std::to_string(m_startX) + ' ' + std::to_string(m_startY) + m_lines + (isClosed ? "z" : "");
    }
}

SvgWriter::SvgWriter(double width, double height, const std::wstring& title)
{
    m_text = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("width", Pixels(width)) +
             Attribute("height", Pixels(height)) + Attribute("viewBox", "0 0 " + Pixels(width) + ' ' + Pixels(height)) +
             " font-family=\"Helvetica, Arial, sans-serif\" font-size=\"11\" fill=\"#222\" role=\"img\">\n<title>" +
             EscapeXml(title) + "</title>\n";
}

void SvgWriter::BeginGroup(const std::string& attributes)
{
    m_text += "<g" + Led(attributes) + ">\n";
}

void SvgWriter::EndGroup()
{
    m_text += "</g>\n";
}

void SvgWriter::Path(const SvgPath& path, const std::string& attributes)
{
    if (!path.IsEmpty())
    {
        m_text += "<path transform=\"scale(.1)\"" + Led(attributes) + Attribute("d", path.GetText()) + "/>\n";
    }
}

void SvgWriter::Text(double x, double y, const std::wstring& text, const std::string& attributes)
{
    m_text += "<text" + Attribute("x", Pixels(x)) + Attribute("y", Pixels(y)) + Led(attributes) + '>' +
              EscapeXml(text) + "</text>\n";
}

void SvgWriter::Rectangle(double left, double top, double width, double height, const std::string& attributes)
{
    m_text += "<rect" + Attribute("x", Pixels(left)) + Attribute("y", Pixels(top)) + Attribute("width", Pixels(width)) +
              Attribute("height", Pixels(height)) + Led(attributes) + "/>\n";
}

void SvgWriter::Line(double x1, double y1, double x2, double y2, const std::string& attributes)
{
    m_text += "<line" + Attribute("x1", Pixels(x1)) + Attribute("y1", Pixels(y1)) + Attribute("x2", Pixels(x2)) +
              Attribute("y2", Pixels(y2)) + Led(attributes) + "/>\n";
}

std::string SvgWriter::Finish()
{
    return std::move(m_text) + "</svg>\n";
}

}  // namespace quonhost
