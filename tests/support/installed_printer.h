// The printer of the real spooler, with the module that lies beside the test program as its driver.
#pragma once

#include <gtest/gtest.h>

#include <process.h>

#include "common/printer_handle.h"
#include "common/qk/module.h"
#include "support/installation.h"

struct InstalledPrinter {
    InstalledPrinter() {
        const std::wstring host = Installation::built(L"zr_print.exe");
        EXPECT_EQ(_wspawnl(_P_WAIT, host.c_str(), L"zr_print", L"install", nullptr), 0);
        EXPECT_TRUE(OpenPrinterW(name.data(), handle.put(), nullptr));
    }

    std::wstring name = qk::kProductName;
    qk::PrinterHandleObj handle;
};
