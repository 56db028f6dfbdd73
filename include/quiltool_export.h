// Export macro of the QuilTool library.
#ifndef QUILTOOL_EXPORT_H
#define QUILTOOL_EXPORT_H

#if defined(_WIN32)
#  if defined(QUILTOOL_BUILDING)
#    define QT_API __declspec(dllexport)
#  else
#    define QT_API __declspec(dllimport)
#  endif
#else
#  define QT_API __attribute__((visibility("default")))
#endif

#if defined(_MSC_VER)
// Exported classes hold standard-library members; every module of the suite
// is built with the same compiler and runtime, so their layouts agree.
#  pragma warning(disable : 4251)
#endif

#endif
