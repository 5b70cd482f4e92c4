#pragma once

// Weak: their addresses are null in a program without the sanitizer.
extern "C" {
[[gnu::weak]] void __asan_init();
[[gnu::weak]] void __tsan_init();
}

namespace quillon {

/// Does this program run under a sanitizer? It keeps a heap of its own, needs much more memory and
/// is slow to start. Asked of the program and not of the compiler: tests and library may have been
/// compiled differently.
inline bool runsUnderSanitizer() {
  return __asan_init != nullptr || __tsan_init != nullptr;
}

}  // namespace quillon
