// The checks tried on templates with known faults.
#pragma once

namespace template_check {

// Whether every fault is found, and a template that ends too early is refused; tells what is not.
[[nodiscard]] bool run_self_test();

}  // namespace template_check
