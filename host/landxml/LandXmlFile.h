// Reads what a LandXML document of versions 1.0 to 1.2 holds.
#pragma once

#include <afx.h>

#include "host/landxml/CgPoint.h"
#include "xml/Msxml2.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

/// The box around a surface's points.
struct SurfaceExtents
{
    double minNorthing, minEasting, minElevation;
    double maxNorthing, maxEasting, maxElevation;
};

struct SurfaceInfo
{
    std::wstring name;
    size_t points = 0;
    size_t lostPoints = 0;  ///< of the points: those whose coordinates cannot be read
    size_t faces = 0;
    size_t invisibleFaces = 0;              ///< of the faces: those marked as holes
    std::optional<SurfaceExtents> extents;  ///< of the points that have coordinates; none without any
};

struct AlignmentInfo
{
    std::wstring name;
    std::optional<double> length;
};

/// A surface as the document gives it.
struct LandXmlSurface
{
    struct Place
    {
        double northing, easting, elevation;
    };

    std::wstring name;
    std::vector<Place> points;
    std::vector<std::array<size_t, 3>> triangles;  ///< indices of points; no face that is marked as a hole
};

/// What a document says of itself.
struct LandXmlHeading
{
    std::wstring version;
    std::wstring units;       ///< "Metric" or "Imperial"; empty when the document does not tell
    std::wstring linearUnit;  ///< such as "meter"
    std::wstring project;
};

struct LandXmlInfo : LandXmlHeading
{
    size_t points = 0;
    std::vector<SurfaceInfo> surfaces;
    std::vector<AlignmentInfo> alignments;
};

/// A loaded document. Elements count by their names in the document's own namespace, whatever its prefix.
class LandXmlFile
{
public:
    /// @throws CommandError when the file is no LandXML document of a known version
    explicit LandXmlFile(const std::string& name);

    LandXmlHeading GetHeading() const;
    LandXmlInfo GetInfo() const;

    /// All points, in document order, those of surveys and of groups of points included.
    std::vector<CgPoint> ReadPoints() const;

    /// All surfaces, in document order. A face with more than three corners, which is convex, becomes triangles.
    /// @throws CommandError when a face names a point that its surface does not have
    std::vector<LandXmlSurface> ReadSurfaces() const;

private:
    std::string m_name;
    MSXML2::IXMLDOMDocumentPtr m_document;
    MSXML2::IXMLDOMNodePtr m_root;
    std::wstring m_version;
};

}  // namespace quonhost
