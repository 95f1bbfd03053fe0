#include "common/guardedcall.h"

#include <windows.h>

// The compiler knows no __try: the frame that has a handler is written by hand. Its stack is the
// four words that every call has, one for the alignment, the return address, and its caller's words
// with the fifth argument after four.
asm(R"(
    .text
    .globl vlCallGuarded
    .def vlCallGuarded; .scl 2; .type 32; .endef
    .seh_proc vlCallGuarded
vlCallGuarded:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    .seh_handler vlEndGuardedCall, @except
    movq %rcx, %rax
    movq %rdx, %rcx
    movq %r8, %rdx
    movq %r9, %r8
    call *%rax
    nop
    .globl vlAfterGuardedCall
vlAfterGuardedCall:
    addq $40, %rsp
    ret
    .seh_endproc
)");

extern "C" void vlAfterGuardedCall();

extern "C" EXCEPTION_DISPOSITION vlEndGuardedCall(EXCEPTION_RECORD* record, void* frame,
                                                  CONTEXT* context, DISPATCHER_CONTEXT* dispatcher)
{
    constexpr DWORD unwinding = 0x66;     // in any of the ways
    constexpr DWORD compilers = 0x474343; // the low bytes of the codes of C++ exceptions
    if (record->ExceptionFlags & unwinding || (record->ExceptionCode & 0xFFFFFF) == compilers)
        return ExceptionContinueSearch;
    constexpr size_t fifthArgument = (5 + 1 + 4) * sizeof(uintptr_t);
    **static_cast<bool**>(static_cast<void*>(static_cast<char*>(frame) + fifthArgument)) = true;
    RtlUnwindEx(frame, reinterpret_cast<void*>(vlAfterGuardedCall), record, nullptr, context,
                dispatcher->HistoryTable);
    return ExceptionContinueSearch; // not reached
}
