// What callers were built for, asserted for every compiler that builds the library: no code, no data. The table with
// all fields and virtual operations is abi/layout.txt.

#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"
#include "geometry/VxGe.h"
#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonServerThread.h"
#include "messaging/QuonWndMsgServer.h"
#include "monitoring/QuonBrowseForDirectory.h"
#include "monitoring/QuonFileEventServer.h"
#include "monitoring/QuonFileModifiedManager.h"
#include "paths/QuonPath.h"
#include "points/QuonPointMarker.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"
#include "support/Progress.h"
#include "support/QuonTimer.h"
#include "traversal/QuonFileTrees.h"
#include "xml/QuonFileStream.h"
#include "xml/QuonXml.h"

#include <cstddef>
#include <list>
#include <memory>

#if defined(_WIN64)

// Records that callers fill and read.

static_assert(sizeof(QuonFileInfo) == 36);
static_assert(offsetof(QuonFileInfo, attributes) == 0);
static_assert(offsetof(QuonFileInfo, creationTime) == 4);
static_assert(offsetof(QuonFileInfo, lastAccessTime) == 12);
static_assert(offsetof(QuonFileInfo, lastWriteTime) == 20);
static_assert(offsetof(QuonFileInfo, sizeHigh) == 28);
static_assert(offsetof(QuonFileInfo, sizeLow) == 32);

static_assert(sizeof(WndMsgRecord) == 48);
static_assert(offsetof(WndMsgRecord, window) == 0);
static_assert(offsetof(WndMsgRecord, message) == 8);
static_assert(offsetof(WndMsgRecord, wParam) == 16);
static_assert(offsetof(WndMsgRecord, lParam) == 24);
static_assert(offsetof(WndMsgRecord, unused1) == 32);
static_assert(offsetof(WndMsgRecord, unused2) == 40);

static_assert(sizeof(QuonSynchronizedSelector::HandleRecord) == 16);
static_assert(offsetof(QuonSynchronizedSelector::HandleRecord, active) == 0);
static_assert(offsetof(QuonSynchronizedSelector::HandleRecord, handler) == 8);

static_assert(sizeof(VxGePoint3d) == 24);
static_assert(offsetof(VxGePoint3d, x) == 0);
static_assert(offsetof(VxGePoint3d, y) == 8);
static_assert(offsetof(VxGePoint3d, z) == 16);

// Classes that callers create, embed and derive from.

static_assert(sizeof(CString) == 8);
static_assert(sizeof(QuonPath) == 16);
static_assert(sizeof(VxGePoint3dArray) == 24);

static_assert(sizeof(QuonFileMatch) == 8);
static_assert(sizeof(QuonBasicFileMatcher) == 656);
static_assert(sizeof(QuonBFSDirectoryTree) == 24 + sizeof(std::list<QuonPath>) + 656 + 8);
static_assert(sizeof(QuonDFSDirectoryTree) == 40 + sizeof(CList<void*, void*>) + 16);
static_assert(sizeof(QuonBFSFileTree) == 8 + sizeof(QuonBFSDirectoryTree) + 656 + 24);
static_assert(sizeof(QuonDFSFileTree) == 8 + sizeof(QuonDFSDirectoryTree) + 656 + 24);

static_assert(sizeof(QuonFileEventSink) == 8);
static_assert(sizeof(QuonFileEventServer) == 8);
static_assert(sizeof(QuonFileModifiedStatus) == 8 + sizeof(CFileStatus));
static_assert(sizeof(QuonFileModifiedManager) == 8);
static_assert(sizeof(QuonBrowseForDirectory) == 48);

static_assert(sizeof(QuonProgressDisabler) == 16);
static_assert(sizeof(QuonStdioFile) == sizeof(CStdioFile) + 8);
#if defined(_MSC_VER)
// Others put the next field where the flag of the base leaves room.
static_assert(sizeof(QuonTimer) == sizeof(CStdioFile) + 24);
#endif

static_assert(sizeof(QuonXml) == 32);
static_assert(sizeof(QuonFileStream) == 24);
#if defined(_MSC_VER)
// Fields that callers touch. Other compilers warn of the question: these classes have virtual operations.
static_assert(offsetof(QuonXml, m_pDoc) == 8);
static_assert(offsetof(QuonXml, m_bAsync) == 16);
static_assert(offsetof(QuonXml, m_bStream) == 17);
static_assert(offsetof(QuonXml, m_bFileStream) == 18);
static_assert(offsetof(QuonXml, m_strFileName) == 24);
static_assert(offsetof(QuonFileStream, m_hFile) == 8);
static_assert(offsetof(QuonFileStream, m_bRead) == 16);
static_assert(offsetof(QuonFileStream, m_cRef) == 20);
#endif

static_assert(sizeof(QuonPointMarker) == 32);
static_assert(sizeof(QuonPointString) == 336);
static_assert(sizeof(QuonSortedPointString) == 344);
static_assert(sizeof(QuonUnsortedPointString) == 336 + sizeof(CList<unsigned long, unsigned long&>));

static_assert(sizeof(QuonFaceReader) == 8);
static_assert(sizeof(QuonSingleFaceReader) == 24);
static_assert(sizeof(QuonMultiTriFaceReader) == 24);
static_assert(sizeof(QuonMultiPolyFaceReader) == 24);
static_assert(sizeof(QuonPointReader) == 8);
static_assert(sizeof(QuonSinglePointReader) == 40);
static_assert(sizeof(QuonArrayPointReader) == 24);

static_assert(sizeof(QuonCallback) == 8);
static_assert(sizeof(QuonHEVENTCallback) == 24);
static_assert(sizeof(QuonMessage) == 8);
static_assert(sizeof(QuonMessageQueue) == 8 + sizeof(CList<QuonMessage*, QuonMessage*>) + 24);
static_assert(sizeof(QuonServerEventHandler) == 16);
static_assert(sizeof(QuonSocket) == 16);
static_assert(sizeof(QuonSynchronizedSelector) == 8 + sizeof(CMap<void*, void*, void*, void*>));
static_assert(sizeof(QuonServerThread) == 64 + sizeof(QuonSynchronizedSelector) + 8);
static_assert(sizeof(QuonWndMsgServer) == 8);
static_assert(sizeof(QuonWndMsgServer::Callback) == 8);

#endif
