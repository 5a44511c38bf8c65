// Makes the compiler lay out every class that crosses the interface, and the records that promises rest on. It is read
// with the stand-ins of abi/sizes/ and never run.
#include <map>
#include <unordered_map>

#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"
#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonServerThread.h"
#include "messaging/QuonWndMsgServerInternal.h"
#include "base/QuonEllipsis.h"
#include "monitoring/FileSubscriptionInternal.h"
#include "monitoring/QuonBrowseForDirectory.h"
#include "monitoring/QuonFileEventServer.h"
#include "monitoring/QuonFileModifiedManager.h"
#include "paths/QuonPath.h"
#include "points/QuonPointMarker.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"
#include "support/BlockPoolInternal.h"
#include "support/Progress.h"
#include "support/QuonTimer.h"
#include "traversal/QuonFileTrees.h"
#include "xml/QuonFileStream.h"
#include "xml/NodeArray.h"
#include "xml/QuonXml.h"
#include "xml/XmlNodes.h"

// What the fields of the classes are laid out with.
static_assert(sizeof(std::wstring) == 32);
static_assert(sizeof(std::list<int>) == 16);
static_assert(sizeof(std::map<int, int>) == 16);
static_assert(sizeof(std::unordered_map<int, int>) == 64);
static_assert(sizeof(std::vector<int>) == 24);
static_assert(sizeof(std::unique_ptr<int>) == 8);
static_assert(sizeof(CString) == 8);
static_assert(sizeof(CTime) == 8);
static_assert(sizeof(CFileStatus) == 560);
static_assert(sizeof(CList<int, int>) == 56);
static_assert(sizeof(CMap<int, int, int, int>) == 56);

/// Lays out the fields.
template <typename... Classes>
void Fields()
{
    static_assert(((sizeof(Classes) != 0) && ...));
}

/// Lays out the fields and, for the call of a virtual destructor, the table.
template <typename... Classes>
void Tables(Classes*... objects)
{
    Fields<Classes...>();
    (objects->~Classes(), ...);
}

template void Fields<QuonEllipsis, QuonFileInfo, QuonPath, VxGePoint3d, VxGePoint3dArray, WndMsgRecord,
                     QuonSynchronizedSelector::HandleRecord, QuonWndMsgServer_details::Registration,
                     QuonBlockPool_details::PageHeader, QuonFileEventServer_details::FileSubscription>();

template void Tables(QuonFileMatch*, QuonBasicFileMatcher*, QuonBFSDirectoryTree*, QuonDFSDirectoryTree*,
                     QuonBFSFileTree*, QuonDFSFileTree*);
template void Tables(QuonFileEventServer*, QuonFileModifiedStatus*, QuonFileModifiedManager*, QuonBrowseForDirectory*);
template void Tables(QuonProgressDisabler*, QuonStdioFile*, QuonTimer*, QuonXml*);
template void Tables(QuonPointMarker*, QuonPointString*, QuonSortedPointString*, QuonUnsortedPointString*);
template void Tables(QuonFaceReader*, QuonSingleFaceReader*, QuonMultiTriFaceReader*, QuonMultiPolyFaceReader*,
                     QuonPointReader*, QuonSinglePointReader*, QuonArrayPointReader*);
template void Tables(QuonCallback*, QuonHEVENTCallback*, QuonMessage*, QuonMessageQueue*, QuonServerEventHandler*,
                     QuonSocket*, QuonServerThread*, QuonSynchronizedSelector*, QuonWndMsgServer*,
                     QuonWndMsgServer::Callback*, QuonWndMsgServer_details::QuonWndMsgServerImpl*);

// Destructors that are not for callers.

void EventSink(QuonFileEventSink* sink);
void EventSink(QuonFileEventSink* sink)
{
    sink->OnFileNameChanged(nullptr);
}

ULONG FileStream(QuonFileStream* stream);
ULONG FileStream(QuonFileStream* stream)
{
    return stream->AddRef();
}
