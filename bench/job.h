// A print job: what its events cost beside the look-ups and calls that they must make.
#pragma once

#include "tests/support/temp_folder.h"

namespace bench {

// Prints the cost of a job whose setting lies in `folder`; false when it is too slow.
bool time_job(const TempFolder& folder);

}  // namespace bench
