#include "afx.h"
#include "ModuleStateInternal.h"

namespace
{
// The slot holds the handler itself. An empty one, as that of every new thread, means the framework's own.
DWORD handlerSlot = TLS_OUT_OF_INDEXES;
}  // namespace

bool StartNewHandlers()
{
    handlerSlot = TlsAlloc();
    return handlerSlot != TLS_OUT_OF_INDEXES;
}

void EndNewHandlers()
{
    if (handlerSlot != TLS_OUT_OF_INDEXES)
    {
        TlsFree(handlerSlot);
        handlerSlot = TLS_OUT_OF_INDEXES;
    }
}

_PNH AFXAPI AfxGetNewHandler()
{
    void* const handler = handlerSlot == TLS_OUT_OF_INDEXES ? nullptr : TlsGetValue(handlerSlot);
    return handler == nullptr ? &AfxNewHandler : reinterpret_cast<_PNH>(handler);
}

_PNH AFXAPI AfxSetNewHandler(_PNH pfnNewHandler)
{
    const _PNH previous = AfxGetNewHandler();
    if (handlerSlot != TLS_OUT_OF_INDEXES)
    {
        TlsSetValue(handlerSlot, reinterpret_cast<void*>(pfnNewHandler));
    }
    return previous;
}

int AFX_CDECL AfxNewHandler(size_t)
{
    AfxThrowMemoryException();
}
