// The machine's hive, replaced by an empty key of the test's own.
#pragma once

#include "support/user_registry.h"

class MachineRegistry : public RegistryOverride {
public:
    MachineRegistry() : RegistryOverride(HKEY_LOCAL_MACHINE, L"Software\\zr_test_") {}
};
