#include "doubles/keychainitems.h"

#include <memory>
#include <utility>
#include <vector>

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Security.h>

namespace {

enum class Type : CFTypeID { String = 7, Boolean = 21, Dictionary = 18, Data = 20 };

/// An object of CoreFoundation, counted like one. Constants are born with one reference that nobody
/// may release.
struct Object
{
    Type type;
    QByteArray bytes; ///< Of data; of text, as UTF-8.
    std::vector<std::pair<const Object *, const Object *>> members;
    bool isConstant = false;
    mutable int references = 1;
};

int living = 0;

const Object *created(Object object)
{
    ++living;
    return new Object(std::move(object));
}

const Object *constant(Type type, const char *name)
{
    return new Object{.type = type, .bytes = name, .members = {}, .isConstant = true};
}

const Object *asObject(CFTypeRef reference)
{
    if (reference == nullptr) {
        qFatal("CoreFoundation was handed a null reference.");
    }
    return static_cast<const Object *>(reference);
}

const Object *retained(CFTypeRef reference)
{
    const Object *object = asObject(reference);
    ++object->references;
    return object;
}

void release(const Object *object)
{
    if (--object->references > 0) {
        return;
    }
    if (object->isConstant) {
        qFatal("A constant was released.");
    }
    for (const auto &[key, value] : object->members) {
        release(key);
        release(value);
    }
    --living;
    delete object;
}

QMap<QString, QString> textOf(const Object *query)
{
    QMap<QString, QString> members;
    for (const auto &[key, value] : query->members) {
        members.insert(QString::fromUtf8(key->bytes), QString::fromUtf8(value->bytes));
    }
    return members;
}

template <typename Reference>
Reference asReference(const Object *object)
{
    return reinterpret_cast<Reference>(object);
}

CFStringRef constantString(const char *name)
{
    return asReference<CFStringRef>(constant(Type::String, name));
}

/// Notes the call; answers the account that the query asks for.
QString note(const char *function, CFDictionaryRef query)
{
    const QMap<QString, QString> members = textOf(asObject(query));
    doubles::keychainItems().calls.append({QString::fromUtf8(function), members});
    return members.value(QStringLiteral("kSecAttrAccount"));
}

} // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue
    = asReference<CFBooleanRef>(constant(Type::Boolean, "kCFBooleanTrue"));
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

const CFStringRef kSecClass = constantString("kSecClass");
const CFStringRef kSecClassGenericPassword = constantString("kSecClassGenericPassword");
const CFStringRef kSecAttrService = constantString("kSecAttrService");
const CFStringRef kSecAttrAccount = constantString("kSecAttrAccount");
const CFStringRef kSecReturnData = constantString("kSecReturnData");
const CFStringRef kSecMatchLimit = constantString("kSecMatchLimit");
const CFStringRef kSecMatchLimitOne = constantString("kSecMatchLimitOne");

void CFRelease(CFTypeRef object)
{
    release(asObject(object));
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return static_cast<CFTypeID>(asObject(object)->type);
}

CFStringRef CFStringCreateWithCharacters(
    CFAllocatorRef /*allocator*/, const UniChar *characters, CFIndex length)
{
    const auto text = QString::fromUtf16(reinterpret_cast<const char16_t *>(characters), length);
    return asReference<CFStringRef>(
        created({.type = Type::String, .bytes = text.toUtf8(), .members = {}}));
}

CFTypeID CFDataGetTypeID()
{
    return static_cast<CFTypeID>(Type::Data);
}

// Nothing tells data from other objects but their type, so a wrong cast is caught here.
const UInt8 *CFDataGetBytePtr(CFDataRef data)
{
    const Object *object = asObject(data);
    if (object->type != Type::Data) {
        qFatal("The bytes of something that is no data were asked for.");
    }
    return object->bytes.isEmpty() ? nullptr
                                   : reinterpret_cast<const UInt8 *>(object->bytes.constData());
}

CFIndex CFDataGetLength(CFDataRef data)
{
    return asObject(data)->bytes.size();
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef /*allocator*/, const void **keys,
    const void **values, CFIndex count, const CFDictionaryKeyCallBacks *keyCallBacks,
    const CFDictionaryValueCallBacks *valueCallBacks)
{
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks
        || valueCallBacks != &kCFTypeDictionaryValueCallBacks) {
        qFatal("A dictionary that does not keep its members was asked for.");
    }
    Object dictionary{.type = Type::Dictionary, .bytes = {}, .members = {}};
    for (CFIndex i = 0; i < count; ++i) {
        dictionary.members.emplace_back(retained(keys[i]), retained(values[i]));
    }
    return asReference<CFDictionaryRef>(created(std::move(dictionary)));
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef *result)
{
    constexpr OSStatus itemNotFound = -25300;
    using Kind = doubles::KeychainItem::Kind;
    const auto &items = doubles::keychainItems().items;
    const auto item = items.constFind(note("SecItemCopyMatching", query));
    if (item == items.cend()) {
        return itemNotFound;
    }
    if (item->kind != Kind::Nothing) {
        *result = created({.type = item->kind == Kind::Data ? Type::Data : Type::String,
            .bytes = item->bytes,
            .members = {}});
    }
    return item->status;
}

OSStatus SecItemDelete(CFDictionaryRef query)
{
    doubles::keychainItems().items.remove(note("SecItemDelete", query));
    return errSecSuccess;
}

namespace doubles {

KeychainItems &keychainItems()
{
    static KeychainItems items;
    return items;
}

int livingObjects()
{
    return living;
}

} // namespace doubles
