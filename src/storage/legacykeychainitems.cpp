#include "storage/legacykeychainitems.h"

namespace storage {
namespace {

class NoKeychainItems : public LegacyKeychainItems
{
public:
    std::optional<QByteArray> copyData(const QString &, const QString &) override { return {}; }
    void remove(const QString &, const QString &, Query) override { }
};

} // namespace

LegacyKeychainItems &LegacyKeychainItems::system()
{
    static NoKeychainItems items;
    return items;
}

} // namespace storage
