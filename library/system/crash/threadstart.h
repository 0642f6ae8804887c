#pragma once

// From now on every thread of the process, whoever starts it, has a stack of its own for signal handlers and
// blocks none of the signals by which the processor tells a fault: the failures of drivers' and libraries'
// threads are told too. Threads that run already stay as they are.
//
// That holds for a program into which this is linked. Under Clang's sanitizers, which start threads in their
// own way, nothing is done.
void EquipThreads();
