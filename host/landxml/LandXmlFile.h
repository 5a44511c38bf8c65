// Reads LandXML documents of versions 1.0 to 1.2.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"
#include "host/landxml/XmlTree.h"

#include <string>

namespace quonhost
{

/// Reads all of a document. Elements count by their names in the namespace of the root, whatever its prefix. Points,
/// faces and lines that cannot be read are left out and listed as warnings.
/// @param name the file, or "-" for the standard input
/// @throws CommandError when the file cannot be read, is not well-formed, or is not a LandXML document of a known
/// version
LandXmlContents ReadLandXml(const std::wstring& name);

/// Reads a document from the bytes of its file; `name` is the file as error texts show it.
LandXmlContents ReadLandXmlBytes(const std::wstring& name, std::string bytes);

}  // namespace quonhost
