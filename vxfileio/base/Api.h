#pragma once

/// @file
/// The one place that knows how a symbol leaves the library.
///
/// `VXFILEIO_API` marks a class or function that callers may link to. The build defines `VXFILEIO_BUILDING` while it
/// makes the shared library and `VXFILEIO_STATIC` for everybody who uses the static one.

#if defined(VXFILEIO_STATIC)
#define VXFILEIO_API
#elif defined(_WIN32)
#if defined(VXFILEIO_BUILDING)
#define VXFILEIO_API __declspec(dllexport)
#else
#define VXFILEIO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define VXFILEIO_API __attribute__((visibility("default")))
#else
#define VXFILEIO_API
#endif
