// Writes a survey as a LandXML document.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"

#include <string>

namespace quonhost
{

enum class LandXmlUnits
{
    kMetric,
    kFoot,
    kSurveyFoot,
};

/// What a document says about itself before its data.
struct LandXmlHeader
{
    std::wstring project;
    std::wstring surface = L"Ground";
    LandXmlUnits units = LandXmlUnits::kMetric;
    bool isVersion12 = false;  ///< LandXML 1.2 instead of 1.0
};

/// Returns the document as UTF-8: the points and, when there are faces, a surface of the points that faces name.
/// @throws CommandError when the user wants to stop; _com_error when the parser fails
std::string WriteLandXml(const Survey& survey, const LandXmlHeader& header);

}  // namespace quonhost
