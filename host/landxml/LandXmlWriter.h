// Writes a survey as a LandXML 1.0 document.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"
#include "paths/QuonPath.h"

#include <string>

namespace quonhost
{

/// What a document says of itself before its data.
struct LandXmlHeader
{
    std::wstring project;     ///< the name of the project
    bool isImperial = false;  ///< feet instead of metres
};

/// Writes the points and, when there are faces, a surface of them. The surface has the points that faces name.
/// @throws CommandError, CString or _com_error when the file cannot be written; it may be there in part then
void WriteLandXml(const Survey& survey, const LandXmlHeader& header, const QuonPath& path);

}  // namespace quonhost
