#pragma once

// Macros for the declarations beside this file. Those stand in for the system's headers and declare
// only what platform/macos uses, as documented: type, nullability, value, and the first version of
// macOS that has it.

#ifdef __OBJC__
// NOLINTNEXTLINE(bugprone-macro-parentheses): an attribute takes none.
#define QV_AVAILABLE(version) __attribute__((availability(macos, introduced = version)))
#define QV_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define QV_NONNULL_END _Pragma("clang assume_nonnull end")
#define QV_NULLABLE _Nullable
#define QV_NULL_UNSPECIFIED _Null_unspecified
#else
#define QV_AVAILABLE(version)
#define QV_NONNULL_BEGIN
#define QV_NONNULL_END
#define QV_NULLABLE
#define QV_NULL_UNSPECIFIED
#endif

#ifdef __cplusplus
#define QV_EXTERN extern "C"
#else
#define QV_EXTERN extern
#endif

#ifdef __OBJC__
// How the frameworks declare enumerations, and sets of bits, to C++: the latter are plain numbers.
#define QV_ENUM(type, name) enum __attribute__((enum_extensibility(open))) name : type
#define QV_OPTIONS(type, name)                                                                     \
    typedef type name;                                                                             \
    enum __attribute__((flag_enum, enum_extensibility(open))) : type
#endif
