// Formatting internals that tests look at.
#ifndef QUILTOOL_CORE_FORMAT_H
#define QUILTOOL_CORE_FORMAT_H

// How many times this thread has called the C runtime's formatter. Each
// numeric directive costs one call (two when its text is very long);
// strings, characters and broken formats cost none, so a test can tell
// that a format was never retried.
unsigned long qt_format_runtime_calls();

#endif
