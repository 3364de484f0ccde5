// One test at a time at the printer, whose setting for the next job is taken back by whichever job ends.
#pragma once

#include <windows.h>

#include "common/qk/handle.h"

// Held also against tests in processes of their own.
class PrinterTurn {
public:
    PrinterTurn() : mutex_(CreateMutexW(nullptr, FALSE, L"zr_tests.HostProcess")) {
        WaitForSingleObject(mutex_.get(), INFINITE);
    }
    ~PrinterTurn() { ReleaseMutex(mutex_.get()); }
    PrinterTurn(const PrinterTurn&) = delete;
    PrinterTurn& operator=(const PrinterTurn&) = delete;

private:
    qk::HandleObj mutex_;
};
