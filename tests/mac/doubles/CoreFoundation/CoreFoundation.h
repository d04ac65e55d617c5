// As much of CoreFoundation as the program calls; keychainitems.h is the tests' side of it.
#pragma once

#include <cstdint>

using CFTypeRef = const void *;
using CFStringRef = const struct OpaqueString *;
using CFDataRef = const struct OpaqueData *;
using CFBooleanRef = const struct OpaqueBoolean *;
using CFDictionaryRef = const struct OpaqueDictionary *;
using CFAllocatorRef = const struct OpaqueAllocator *;
using CFIndex = long;
using CFTypeID = unsigned long;
using UniChar = uint16_t;
using UInt8 = uint8_t;
using OSStatus = int32_t;

struct CFDictionaryKeyCallBacks
{
};
struct CFDictionaryValueCallBacks
{
};

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFStringRef CFStringCreateWithCharacters(
    CFAllocatorRef allocator, const UniChar *characters, CFIndex length);
CFTypeID CFDataGetTypeID();
const UInt8 *CFDataGetBytePtr(CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void **keys, const void **values,
    CFIndex count, const CFDictionaryKeyCallBacks *keyCallBacks,
    const CFDictionaryValueCallBacks *valueCallBacks);
}
