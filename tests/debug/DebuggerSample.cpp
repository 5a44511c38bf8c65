// Values for a debugger to look at.
#include "geometry/VxGe.h"
#include "paths/QuonPath.h"
#include "points/QuonPointMarker.h"
#include "points/QuonSortedPointString.h"
#include "support/BlockPoolInternal.h"
#include "xml/QuonXml.h"

#include <afxcoll.h>
#include <afxtempl.h>

// The debugger stops here.
extern "C" void Stop() {}

int main()
{
    const CString text = L"survey \x00e4\x0416";
    const CString empty;
    CStringArray names;
    names.Add(L"one");
    names.Add(L"two");
    CList<int, int> list;
    list.AddTail(7);
    list.AddTail(8);
    const QuonPath path(L"C:\\projects\\plan.xml", 0);
    QuonPointString points(L"1-5, 9");
    unsigned long point = 0;
    points.GetFirstPoint(&point);
    QuonPointString stopped(L"1, x");
    stopped.GetFirstPoint(&point);
    stopped.GetNextPoint(&point);
    QuonSortedPointString sorted;
    sorted.AddPoint(12UL);
    sorted.UpdateText();
    QuonPointMarker none;
    QuonPointMarker marker;
    for (const unsigned long number : {3, 4, 5, 9, 100})
    {
        marker.MarkPoint(number);
    }
    VxGePoint3dArray corners(4);
    corners.Append({1, 2, 3.5});
    const QuonXml xml(L"survey.xml", false, false, false);
    const QuonBlockPool_details::PageHeader page = {84, 48, 3};
    Stop();
    return text.IsEmpty() || !empty.IsEmpty() || page.inUse != 3 || none.GetFirstNumber() != 1;
}
