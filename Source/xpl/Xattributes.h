#ifndef XPL_XATTRIBUTES_H
#define XPL_XATTRIBUTES_H

// Attributes that only clang has, or that compilers spell differently.

#if defined(__clang__)
#define XTS_ATTRIBUTE(x) __attribute__((x))
#else
#define XTS_ATTRIBUTE(x)
#endif

// Checks a printf-like format at compile time: `format` and `first` are parameter numbers.
#define XPRINTF_LIKE(format_number, first) XTS_ATTRIBUTE(format(printf, format_number, first))

// Thread safety annotations, which the compiler checks.

#define XTS_CAPABILITY(name) XTS_ATTRIBUTE(capability(name))
#define XTS_SCOPED_CAPABILITY XTS_ATTRIBUTE(scoped_lockable)
#define XTS_GUARDED_BY(lock) XTS_ATTRIBUTE(guarded_by(lock))
#define XTS_REQUIRES(...) XTS_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define XTS_REQUIRES_SHARED(...) XTS_ATTRIBUTE(requires_shared_capability(__VA_ARGS__))
#define XTS_ACQUIRE(...) XTS_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define XTS_ACQUIRE_SHARED(...) XTS_ATTRIBUTE(acquire_shared_capability(__VA_ARGS__))
#define XTS_TRY_ACQUIRE(...) XTS_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define XTS_RELEASE(...) XTS_ATTRIBUTE(release_capability(__VA_ARGS__))
#define XTS_RELEASE_SHARED(...) XTS_ATTRIBUTE(release_shared_capability(__VA_ARGS__))

#endif
