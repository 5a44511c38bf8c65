// GCC's run-time in a DLL: gives back, when the DLL is unloaded, the thread-local storage that it took.
//
// A DLL that has the run-time linked in takes one slot of thread-local storage for it, when the first exception is
// caught or the first local static is guarded. The run-time never frees the slot, so without this file each load of the
// DLL would lose one of the 1,088 slots that a process has, and with it a record of the thread that unloads the DLL.

#include <windows.h>

#include <atomic>

namespace
{

using TlsAllocFunction = DWORD(WINAPI*)();
using TlsFreeFunction = BOOL(WINAPI*)(DWORD);

// The slots that this DLL holds, whoever in it took them. Those that do not fit are left to whoever took them.
std::atomic<DWORD> heldSlots[8] = {TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES,
                                   TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES, TLS_OUT_OF_INDEXES};

void Replace(DWORD oldSlot, DWORD newSlot)
{
    for (std::atomic<DWORD>& held : heldSlots)
    {
        DWORD expected = oldSlot;
        if (held.compare_exchange_strong(expected, newSlot))
        {
            return;
        }
    }
}

}  // namespace

// The names by which the linker's option --wrap sends the calls of this DLL here and the calls below to the system.
extern "C"
{
    extern const TlsAllocFunction systemTlsAlloc __asm__("__real___imp_TlsAlloc");
    extern const TlsFreeFunction systemTlsFree __asm__("__real___imp_TlsFree");
    extern const TlsAllocFunction recordingTlsAlloc __asm__("__wrap___imp_TlsAlloc");
    extern const TlsFreeFunction recordingTlsFree __asm__("__wrap___imp_TlsFree");

    // What the run-time has the loader call when a thread ends.
    extern const PIMAGE_TLS_CALLBACK runTimeThreadCallback __asm__("__xl_f");
}

namespace
{

DWORD WINAPI AllocateAndRecord()
{
    const DWORD slot = systemTlsAlloc();
    if (slot != TLS_OUT_OF_INDEXES)
    {
        Replace(TLS_OUT_OF_INDEXES, slot);
    }
    return slot;
}

BOOL WINAPI FreeAndForget(DWORD slot)
{
    Replace(slot, TLS_OUT_OF_INDEXES);
    return systemTlsFree(slot);
}

// Constructed before every other static object of the DLL, so that it is destroyed after them: they still need the
// slot.
struct SlotOwner
{
    SlotOwner() = default;
    SlotOwner(const SlotOwner&) = delete;
    SlotOwner& operator=(const SlotOwner&) = delete;
    ~SlotOwner()
    {
        runTimeThreadCallback(nullptr, DLL_THREAD_DETACH, nullptr);
        for (std::atomic<DWORD>& held : heldSlots)
        {
            const DWORD slot = held.exchange(TLS_OUT_OF_INDEXES);
            if (slot != TLS_OUT_OF_INDEXES)
            {
                systemTlsFree(slot);
            }
        }
    }
};

__attribute__((init_priority(101))) SlotOwner slotOwner;

}  // namespace

const TlsAllocFunction recordingTlsAlloc = &AllocateAndRecord;
const TlsFreeFunction recordingTlsFree = &FreeAndForget;
