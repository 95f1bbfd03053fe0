#pragma once

#include <windows.h>

// What our DLLs use in place of parts of the static C++ runtime.
//
// The toolchain makes those parts for programs, which start once and end with their process. In a
// DLL they kept four handles, a thread-local index and 76 KB for each load, and the 1,084th load
// found no index left and ended the host. With these replacements nothing is kept:
//
//   entry.cpp          start and end of the DLL: none of its code runs when the process ends
//   exceptionpool.cpp  frees the memory that is set aside for exceptions when there is no other
//   iostreams.cpp      leaves std::cout and the like unmade
//   once.cpp           one-time initialisation over the system's locks. The thread library would
//                      make a record of each thread for it, with an event and a handle
//   stackcheck.cpp     the stack protection's value and its failure
//   threadlocal.cpp    thread-local variables in the system's fiber-local storage, which gives back
//                      what a thread has when the thread ends or the DLL goes
//
// The linker takes these definitions because they come before the toolchain's. A DLL that uses the
// thread library's threads or conditions finds pthread_once defined twice and does not link.

// vlDllEntry is the entry point of the file. It does nothing at the end of the process: the other
// threads were stopped wherever they were, with locks taken and the heap half changed, so that a
// destructor might wait for ever. The system takes back what the process has.
//
// Returns: as DllMain
extern "C" BOOL WINAPI vlDllEntry(HINSTANCE instance, DWORD reason, void* reserved);

// seedStackCheck makes the stack protection's value a random one. To be called before the first
// protected function.
void seedStackCheck() noexcept;
