#include "host/landxml/LandXmlParts.h"

#include "host/Console.h"

#include <algorithm>
#include <iterator>

namespace quonhost
{
namespace
{

// Elements of the measurements. Each is counted by its name.
constexpr std::string_view kObservations[] = {
    "Backsight",
    "BacksightPoint",
    "ControlPoint",
    "GPSPosition",
    "GPSSetup",
    "GPSVector",
    "InstrumentPoint",
    "InstrumentSetup",
    "LaserSetup",
    "ObservationGroup",
    "PointResults",
    "RawObservation",
    "RedHorizontalPosition",
    "ReducedArcObservation",
    "ReducedObservation",
    "RedVerticalObservation",
    "SurveyMonument",
    "TargetPoint",
    "TargetSetup",
    "TestObservation",
};

// Elements that other readers report, directly or as parts of what they report, with all their children that are not
// listed here in their turn.
constexpr std::string_view kReported[] = {
    "LandXML",       "Units",
    "Metric",        "Imperial",
    "Project",       "Application",
    "Author",        "CoordinateSystem",
    "CgPoints",      "CgPoint",
    "Survey",        "SurveyHeader",
    "Equipment",     "Surfaces",
    "Surface",       "Definition",
    "Pnts",          "P",
    "Faces",         "F",
    "SourceData",    "DataPoints",
    "PntList2D",     "PntList3D",
    "Breaklines",    "Breakline",
    "Boundaries",    "Boundary",
    "Contours",      "Contour",
    "Alignments",    "Alignment",
    "CoordGeom",     "Line",
    "Curve",         "Spiral",
    "IrregularLine", "Chain",
    "Start",         "Center",
    "End",           "PI",
    "Profile",       "ProfAlign",
    "ProfSurf",      "PVI",
    "ParaCurve",     "UnsymParaCurve",
    "CircCurve",     "CrossSects",
    "CrossSect",     "CrossSectSurf",
    "CrossSectPnt",  "DesignCrossSectSurf",
    "Parcels",       "Parcel",
    "PlanFeatures",  "PlanFeature",
    "PipeNetworks",  "PipeNetwork",
    "Structs",       "Struct",
    "Invert",        "CircStruct",
    "RectStruct",    "InletStruct",
    "OutletStruct",  "Connection",
    "Pipes",         "Monuments",
    "Pipe",          "CircPipe",
    "RectPipe",      "ElliPipe",
    "EggPipe",
};

template <size_t kCount>
bool Contains(const std::string_view (&names)[kCount], std::string_view name)
{
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// What most elements of a long document are. Those have no children of interest.
bool IsFrequent(std::string_view name)
{
    return name == "CgPoint" || name == "P" || name == "F";
}

}  // namespace

void CountElements(const XmlElement& root, LandXmlContents& contents)
{
    std::vector<XmlElement> open = {root};
    while (!open.empty())
    {
        const XmlElement parent = open.back();
        open.pop_back();
        for (XmlElement child = parent.FirstChild(); child; child = child.Next())
        {
            const std::string_view name = child.LocalName();
            const bool isObservation = child.IsOwn() && !IsFrequent(name) && Contains(kObservations, name);
            if (isObservation)
            {
                ++contents.observations[ToWide(name)];
            }
            else if (!child.IsOwn() || (!IsFrequent(name) && !Contains(kReported, name)))
            {
                ++contents.others[ToWide(child.QualifiedName())];
                continue;
            }
            if (child.FirstChild())
            {
                open.push_back(child);
            }
        }
    }
}

}  // namespace quonhost
