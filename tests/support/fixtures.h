// What nearly every test uses, read once for all of them: no test names it, the build puts it before each.
#pragma once

#include "support/gtest_notification.h"

#include <gtest/gtest.h>

#include <shlobj.h>
#include <winspool.h>

#include "common/qk/registry.h"
#include "common/qk/resource_dll.h"
#include "companions/thread.h"
#include "print_settings/PSAdmin.h"
#include "support/child_process.h"
#include "support/guarded_buffer.h"
#include "support/handle_count.h"
#include "support/intercept.h"
#include "support/profile_folder.h"
#include "support/trace_capture.h"
#include "support/variable.h"
