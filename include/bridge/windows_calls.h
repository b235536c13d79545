/**
 * @file windows_calls.h
 * @brief The Windows functions that preflight.h and the C++ headers call, with the declarations of
 *        windows.h. Not for hosts.
 *
 * Including windows.h in a public header would impose its options and macros (min, max, ERROR) on
 * every user. These declarations are compatible with windows.h, which may be included before or
 * after this header.
 */
#ifndef BRIDGE_WINDOWS_CALLS_H
#define BRIDGE_WINDOWS_CALLS_H

#include <stddef.h>

#if defined(_WIN32)

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreserved-identifier" /* Windows' names */
#endif
#if defined(_MSC_VER)
#pragma comment(lib, "advapi32")
#endif

#ifdef __cplusplus
extern "C" {
#endif

struct HKEY__;
struct _SECURITY_ATTRIBUTES;
struct _OVERLAPPED;

__declspec(dllimport) long __stdcall RegOpenKeyExW(struct HKEY__* key, const wchar_t* path,
                                                   unsigned long options, unsigned long access,
                                                   struct HKEY__** opened);
__declspec(dllimport) long __stdcall RegQueryValueExW(struct HKEY__* key, const wchar_t* name,
                                                      unsigned long* reserved, unsigned long* type,
                                                      unsigned char* data, unsigned long* size);
__declspec(dllimport) long __stdcall RegCloseKey(struct HKEY__* key);
__declspec(dllimport) long __stdcall RegCreateKeyExW(struct HKEY__* key, const wchar_t* path,
                                                     unsigned long reserved, wchar_t* keyClass,
                                                     unsigned long options, unsigned long access,
                                                     struct _SECURITY_ATTRIBUTES* attributes,
                                                     struct HKEY__** created,
                                                     unsigned long* disposition);
__declspec(dllimport) long __stdcall RegSetValueExW(struct HKEY__* key, const wchar_t* name,
                                                    unsigned long reserved, unsigned long type,
                                                    const unsigned char* data, unsigned long size);
__declspec(dllimport) long __stdcall RegDeleteTreeW(struct HKEY__* key, const wchar_t* path);
__declspec(dllimport) long __stdcall RegOverridePredefKey(struct HKEY__* key, struct HKEY__* other);

__declspec(dllimport) void* __stdcall CreateFileW(const wchar_t* path, unsigned long access,
                                                  unsigned long sharing,
                                                  struct _SECURITY_ATTRIBUTES* attributes,
                                                  unsigned long disposition, unsigned long flags,
                                                  void* likeThis);
__declspec(dllimport) int __stdcall ReadFile(void* file, void* buffer, unsigned long size,
                                             unsigned long* done, struct _OVERLAPPED* overlapped);
__declspec(dllimport) int __stdcall CloseHandle(void* handle);
__declspec(dllimport) unsigned long __stdcall GetFileAttributesW(const wchar_t* path);
__declspec(dllimport) unsigned long __stdcall GetLastError(void);
__declspec(dllimport) unsigned long __stdcall GetCurrentProcessId(void);

__declspec(dllimport) int __stdcall MultiByteToWideChar(unsigned int codePage, unsigned long flags,
                                                        const char* text, int size, wchar_t* wide,
                                                        int wideSize);
__declspec(dllimport) int __stdcall WideCharToMultiByte(unsigned int codePage, unsigned long flags,
                                                        const wchar_t* wide, int wideSize,
                                                        char* text, int size, const char* unknown,
                                                        int* usedUnknown);

__declspec(dllimport) int __stdcall WaitNamedPipeW(const wchar_t* name, unsigned long milliseconds);
__declspec(dllimport) int __stdcall GetNamedPipeServerProcessId(void* pipe,
                                                                unsigned long* processId);

#ifdef __cplusplus
}
#endif

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#endif /* _WIN32 */

#endif
