#include "storage/legacykeychainitems.h"

#include <array>
#include <memory>
#include <type_traits>

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Security.h>

namespace storage {
namespace {

using Query = LegacyKeychainItems::Query;

struct Release
{
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// For what a function with "Create" or "Copy" in its name gave.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

Owned<CFStringRef> ownedString(const QString &text)
{
    return Owned<CFStringRef>(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar *>(text.utf16()), text.size()));
}

Owned<CFDictionaryRef> ownedQuery(const QString &service, const QString &account, Query query)
{
    const auto serviceName = ownedString(service);
    const auto accountName = ownedString(account);
    // The short query is the beginning of the full one.
    std::array<const void *, 5> keys{
        kSecClass, kSecAttrService, kSecAttrAccount, kSecReturnData, kSecMatchLimit};
    std::array<const void *, 5> values{kSecClassGenericPassword, serviceName.get(),
        accountName.get(), kCFBooleanTrue, kSecMatchLimitOne};
    return Owned<CFDictionaryRef>(CFDictionaryCreate(kCFAllocatorDefault, keys.data(),
        values.data(), query == Query::Full ? 5 : 3, &kCFTypeDictionaryKeyCallBacks,
        &kCFTypeDictionaryValueCallBacks));
}

class MacKeychainItems : public LegacyKeychainItems
{
public:
    std::optional<QByteArray> copyData(const QString &service, const QString &account) override
    {
        CFTypeRef found = nullptr;
        const OSStatus status
            = SecItemCopyMatching(ownedQuery(service, account, Query::Full).get(), &found);
        const Owned<CFTypeRef> item(found);
        if (status != errSecSuccess || !item || CFGetTypeID(item.get()) != CFDataGetTypeID()) {
            return {};
        }
        const auto data = static_cast<CFDataRef>(item.get());
        return QByteArray(
            reinterpret_cast<const char *>(CFDataGetBytePtr(data)), CFDataGetLength(data));
    }

    void remove(const QString &service, const QString &account, Query query) override
    {
        SecItemDelete(ownedQuery(service, account, query).get());
    }
};

} // namespace

LegacyKeychainItems &LegacyKeychainItems::system()
{
    static MacKeychainItems items;
    return items;
}

} // namespace storage
