// The readers' sources once more, compiled with the point array of a host's geometry library.
#include "geometry/PlanExtents.cpp"
#include "geometry/QuonFaceReader.cpp"
#include "geometry/QuonPointReader.cpp"
#include "geometry/VxGe.cpp"
