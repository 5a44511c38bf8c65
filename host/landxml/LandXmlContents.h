// What a LandXML document holds.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quonhost
{

/// What a document says about itself. Texts are empty when the document does not have them.
struct LandXmlHeading
{
    std::wstring version;
    std::wstring units;       ///< "Metric" or "Imperial"
    std::wstring linearUnit;  ///< such as "meter"
    std::wstring project;
    std::wstring application;       ///< name and version of the program that wrote it
    std::wstring coordinateSystem;  ///< its name, or else its description
    std::wstring epsgCode;
};

/// A surface as the document gives it.
///
/// Its triangles are the faces that can be read and are not marked as holes.
struct LandXmlSurface : SurveySurface
{
    std::wstring type;      ///< "TIN" or "grid"
    size_t pointCount = 0;  ///< with those whose coordinates cannot be read
    size_t faceCount = 0;   ///< with holes and with those that cannot be read
    size_t invisibleFaces = 0;
    size_t breaklines = 0;
    size_t boundaries = 0;
    size_t dataPoints = 0;  ///< of the source data
    size_t contours = 0;    ///< of the source data
};

struct LandXmlAlignment
{
    std::wstring name;
    std::optional<double> start;  ///< the station
    std::optional<double> length;
    size_t lines = 0;
    size_t curves = 0;
    size_t spirals = 0;
    size_t crossSections = 0;
    std::vector<std::wstring> profiles;
};

struct LandXmlPipeNetwork
{
    std::wstring name;
    size_t structures = 0;
    size_t pipes = 0;
};

/// What a line in the plan is.
enum class LineKind
{
    kAlignment,
    kParcel,
    kPlanFeature,
    kBreakline,
    kBoundary,
    kPipe,
};

/// A line in the plan. Arcs and spirals are chords that differ from them by less than a drawing shows.
struct SurveyLine
{
    LineKind kind = LineKind::kAlignment;
    std::wstring name;
    std::wstring surface;  ///< whose breakline or boundary it is
    std::vector<VxGePoint3d> places;
};

/// A part of the document that cannot be used.
struct LandXmlWarning
{
    unsigned int line;
    std::wstring text;
};

/// Numbers of things by their names.
using CountsByName = std::map<std::wstring, size_t>;

struct LandXmlContents
{
    LandXmlHeading heading;
    std::vector<SurveyPoint> points;
    std::vector<LandXmlSurface> surfaces;
    std::vector<LandXmlAlignment> alignments;
    std::vector<std::wstring> parcels;
    std::vector<std::wstring> planFeatures;
    std::vector<LandXmlPipeNetwork> pipeNetworks;
    CountsByName observations;  ///< by the names of their elements
    CountsByName others;        ///< elements that none of the above counts
    std::vector<SurveyLine> lines;
    std::vector<LandXmlWarning> warnings;
};

}  // namespace quonhost
