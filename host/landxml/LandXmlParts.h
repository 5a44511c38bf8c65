// The readers of the parts of a LandXML document. Each adds what it finds to the contents.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"
#include "host/landxml/XmlTree.h"

#include <string_view>
#include <unordered_map>

namespace quonhost
{

/// Adds a warning about an element.
void Warn(LandXmlContents& contents, const XmlElement& element, const std::wstring& text);

/// Reads all points, in document order, with those of surveys and of groups of points. A point without coordinates has
/// those of the point that it refers to.
void ReadPoints(const XmlElement& root, LandXmlContents& contents);

/// Finds places by the names of points.
class PlacesByName
{
public:
    explicit PlacesByName(const std::vector<SurveyPoint>& points) : m_points(points) {}

    /// Returns null when no point has the name.
    const VxGePoint3d* Find(const std::wstring& name);

private:
    const std::vector<SurveyPoint>& m_points;
    std::unordered_map<std::wstring_view, const VxGePoint3d*> m_places;  // filled by the first search
};

/// Reads the surfaces with their breaklines and boundaries. A face of more than three corners, which is convex, becomes
/// triangles.
void ReadSurfaces(const XmlElement& root, LandXmlContents& contents);

/// Reads a geometry of lines, curves and spirals.
/// @return lines, each as long as the pieces follow one another
std::vector<std::vector<VxGePoint3d>> ReadGeometry(const XmlElement& geometry, PlacesByName& places,
                                                   LandXmlContents& contents);

/// Reads a place that is written as text or as a reference to a point.
std::optional<VxGePoint3d> ReadPlace(const XmlElement& element, PlacesByName& places);

/// Reads alignments with their profiles.
void ReadAlignments(const XmlElement& root, PlacesByName& places, LandXmlContents& contents);
/// Reads parcels, with those within others.
void ReadParcels(const XmlElement& root, PlacesByName& places, LandXmlContents& contents);
void ReadPlanFeatures(const XmlElement& root, PlacesByName& places, LandXmlContents& contents);
void ReadPipeNetworks(const XmlElement& root, PlacesByName& places, LandXmlContents& contents);

/// Counts the observations of surveys, and all elements that the other readers do not report.
void CountElements(const XmlElement& root, LandXmlContents& contents);

}  // namespace quonhost
