// A LandXML document without its data, made by the library's DOM functions.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlWriter.h"

#include <string>

namespace quonhost
{

/// A document in two pieces. The data belongs between them.
struct LandXmlFrame
{
    std::string beginning;  ///< the XML declaration, the start tag of the root, units, project and application
    std::string end;        ///< the end tag of the root
};

/// Returns a document in UTF-8. @throws CommandError or _com_error when the parser fails
LandXmlFrame MakeLandXmlFrame(const LandXmlHeader& header);

}  // namespace quonhost
