// One test at a time at the printer, whose setting for the next job is taken back by whichever job ends.
#pragma once

#include "companions/host/turn.h"

// Held also against tests in processes of their own.
class PrinterTurn : public host::Turn {
public:
    PrinterTurn() : Turn(L"zr_tests.HostProcess", INFINITE) {}
};
