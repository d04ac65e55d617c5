// As much of Security as the program calls; keychainitems.h is the tests' side of it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassGenericPassword;
extern const CFStringRef kSecAttrService;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecReturnData;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;

constexpr OSStatus errSecSuccess = 0;

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef *result);
OSStatus SecItemDelete(CFDictionaryRef query);
}
