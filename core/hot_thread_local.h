// Thread-local data read on a hot path. In a shared library on Linux a
// thread_local normally costs a call to find the library's block on every
// access; the initial-exec model makes it one load from the thread pointer.
// The few bytes this takes come from the static block, where the C library
// keeps room for them also when the library is opened at run time. Windows
// has no such models.
#ifndef QUILTOOL_CORE_HOT_THREAD_LOCAL_H
#define QUILTOOL_CORE_HOT_THREAD_LOCAL_H

#if defined(__GNUC__) && !defined(_WIN32)
#define QT_HOT_THREAD_LOCAL __attribute__((tls_model("initial-exec"))) thread_local
#else
#define QT_HOT_THREAD_LOCAL thread_local
#endif

#endif
