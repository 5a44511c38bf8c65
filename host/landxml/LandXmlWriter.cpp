#include "host/landxml/LandXmlWriter.h"

#include "host/landxml/LandXmlFrame.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/PlaceText.h"
#include "host/landxml/Steps.h"
#include "host/landxml/XmlText.h"

#include <algorithm>
#include <unordered_set>

namespace quonhost
{
namespace
{

// The data as text. In a DOM each point would take about a kilobyte.
class DataWriter
{
public:
    DataWriter(std::string& document, const Survey& survey)
        : m_document(document),
          m_survey(survey),
          m_steps(survey.points.size() * (survey.faces.empty() ? 1 : 2) + survey.faces.size())
    {
    }

    void Write(const std::wstring& surface)
    {
        WritePoints();
        if (!m_survey.faces.empty())
        {
            WriteSurface(surface);
        }
        m_steps.Finish();
    }

private:
    void Attribute(const char* name, std::wstring_view value)
    {
        m_document.append(" ").append(name).append("=\"");
        AppendXmlText(m_document, value);
        m_document += '"';
    }

    void WritePoints()
    {
        m_document += "\n  <CgPoints>";
        for (const SurveyPoint& point : m_survey.points)
        {
            m_document += "\n    <CgPoint";
            Attribute("name", point.identifier);
            if (!point.code.empty())
            {
                Attribute("code", point.code);
            }
            if (!point.description.empty())
            {
                Attribute("desc", point.description);
            }
            m_document.append(">").append(PlaceText(point.place)).append("</CgPoint>");
            m_steps.Advance();
        }
        m_document += "\n  </CgPoints>";
    }

    void WriteSurface(const std::wstring& name)
    {
        const std::unordered_set<unsigned long> used = UsedNumbers();
        m_document += "\n  <Surfaces>\n    <Surface";
        Attribute("name", name);
        m_document += ">\n      <Definition surfType=\"TIN\"" + ElevationsOf(used) + ">\n        <Pnts>";
        for (const SurveyPoint& point : m_survey.points)
        {
            const std::optional<unsigned long> number = NumberOf(point);
            if (number && used.contains(*number))
            {
                m_document.append("\n          <P id=\"").append(std::to_string(*number)).append("\">");
                m_document.append(PlaceText(point.place)).append("</P>");
            }
            m_steps.Advance();
        }
        m_document += "\n        </Pnts>\n        <Faces>";
        for (const SurveyFace& face : m_survey.faces)
        {
            m_document.append("\n          <F>").append(std::to_string(face[0])).append(" ");
            m_document.append(std::to_string(face[1])).append(" ").append(std::to_string(face[2])).append("</F>");
            m_steps.Advance();
        }
        m_document += "\n        </Faces>\n      </Definition>\n    </Surface>\n  </Surfaces>";
    }

    std::unordered_set<unsigned long> UsedNumbers() const
    {
        std::unordered_set<unsigned long> used;
        used.reserve(m_survey.points.size());
        for (const SurveyFace& face : m_survey.faces)
        {
            used.insert(face.begin(), face.end());
        }
        return used;
    }

    std::string ElevationsOf(const std::unordered_set<unsigned long>& used) const
    {
        ExtentsCollector extents;
        for (const SurveyPoint& point : m_survey.points)
        {
            const std::optional<unsigned long> number = NumberOf(point);
            if (number && used.contains(*number))
            {
                extents.Add(point.place);
            }
        }
        return " elevMax=\"" + FormatNumber(extents.Get()->highest.z) + "\" elevMin=\"" +
               FormatNumber(extents.Get()->lowest.z) + '"';
    }

    std::string& m_document;
    const Survey& m_survey;
    Steps m_steps;
};

}  // namespace

std::string WriteLandXml(const Survey& survey, const LandXmlHeader& header)
{
    LandXmlFrame frame = MakeLandXmlFrame(header);
    std::string document = std::move(frame.beginning);
    // About the length of the elements, so that the text is seldom moved.
    document.reserve(document.size() + survey.points.size() * (survey.faces.empty() ? 90 : 160) +
                     survey.faces.size() * 45);
    DataWriter(document, survey).Write(header.surface);
    return document + frame.end;
}

}  // namespace quonhost
