#pragma once

// From now on each thread that pthread_create or thrd_create starts, whoever calls them, has a stack of its
// own for signal handlers and blocks none of the signals by which the processor tells a fault: the failures
// of drivers' and libraries' threads are told too. Threads that run already stay as they are.
//
// What does not come by the program's own two functions is left out: the helper threads of the system's
// library (of timers that call a function, for one), threads made by the bare system call, and those of
// libraries that were loaded to look for names in themselves first or in a namespace of their own. The stack
// goes with the thread's work, before the destructors of objects that belong to the thread.
//
// That holds for a program into which this is linked. Under Clang's sanitizers, which start threads in their
// own way, nothing is done.
void EquipThreads();
