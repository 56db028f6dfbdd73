// The library's one exception boundary. Every function that include/
// exports runs its body through NoThrow, so that no exception, out of
// memory above all, ever reaches a caller built with another runtime or
// none at all. The fallback is the function's documented failure result.
#ifndef QUILTOOL_CORE_BOUNDARY_H
#define QUILTOOL_CORE_BOUNDARY_H

#include <new>
#include <utility>

namespace qt {

// Called with the exported function's name when its body threw; leaves a
// line in the debug trace so that a swallowed failure can still be found.
void NoteEscapedException(const char* where, bool outOfMemory) noexcept;

template <class R, class F>
R NoThrow(const char* where, R fallback, F&& body) noexcept {
  try {
    return std::forward<F>(body)();
  } catch (const std::bad_alloc&) {
    NoteEscapedException(where, true);
  } catch (...) {
    NoteEscapedException(where, false);
  }
  return fallback;
}

// For functions whose failure result depends on the kind of failure
// (an engine status, a registry error): onFailure gets whether memory ran
// out and answers the result.
template <class R, class F, class G>
R NoThrowWith(const char* where, G&& onFailure, F&& body) noexcept {
  try {
    return std::forward<F>(body)();
  } catch (const std::bad_alloc&) {
    NoteEscapedException(where, true);
    return onFailure(true);
  } catch (...) {
    NoteEscapedException(where, false);
    return onFailure(false);
  }
}

template <class F>
void NoThrowVoid(const char* where, F&& body) noexcept {
  try {
    std::forward<F>(body)();
  } catch (const std::bad_alloc&) {
    NoteEscapedException(where, true);
  } catch (...) {
    NoteEscapedException(where, false);
  }
}

}  // namespace qt

#endif
