// What stands behind the compiler's thread-local variables, the C++ run-time library's own among them.
#pragma once

namespace qk {

// Frees the calling thread's variables; they begin anew if they are used again. The loader calls it as a
// thread ends, before DllMain, which has to call it last of all.
void release_thread_storage() noexcept;

// For a module that refuses to be loaded: the run-time library then destroys its variables before the loader
// says that the module goes, and what it has set aside for exceptions would stay behind.
void module_is_refused() noexcept;

}  // namespace qk
