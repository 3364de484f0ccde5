// The print system's queries: how fast they are, and what they answer.
#pragma once

#include <string>

namespace bench {

// Prints the queries' costs for a printer of the driver; false when one is too slow, grows or is not
// measured.
bool time_queries(const std::wstring& printer, const std::wstring& module_path);

// Prints a table of the capability answers: what is expected, what the module's export answers, what the
// system's DeviceCapabilitiesW answers. False when they differ.
bool print_answers(const std::wstring& printer, const std::wstring& module_path);

}  // namespace bench
