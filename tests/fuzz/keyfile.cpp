#include "input.h"
#include "scratchfolder.h"
#include "storage/keychain.h"

#include <QDir>

#include <map>
#include <optional>
#include <simdjson.h>

using namespace Qt::StringLiterals;

namespace {

using Keys = std::map<std::string, std::string, std::less<>>;

/// The keys as another parser reads them; absent if that one finds a flaw, for the program's may be
/// more lenient. Nothing unless every member is a text.
std::optional<Keys> expectedKeys(const QByteArray &contents)
{
    static simdjson::dom::parser parser;
    simdjson::dom::object object;
    // Qt takes a byte mark at the start of a text for none of it.
    if (contents.contains("\xEF\xBB\xBF")
        || parser.parse(contents.constData(), size_t(contents.size())).get(object)
            != simdjson::SUCCESS) {
        return {};
    }
    // Where a name stands twice, the last one counts.
    std::map<std::string, simdjson::dom::element> members;
    for (const auto member : object) {
        members[std::string(member.key)] = member.value;
    }
    Keys keys;
    for (const auto &[name, value] : members) {
        std::string_view key;
        if (value.get(key) != simdjson::SUCCESS) {
            return Keys();
        }
        keys[name] = key;
    }
    return keys;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const fuzzing::ScratchFolder home;
    static const QString folder = u"Library/Application Support/Plenaura"_s;
    [[maybe_unused]] static const bool prepared
        = qputenv("HOME", QFile::encodeName(home.path(u""_s))) && QDir().mkpath(home.path(folder));
    const QByteArray contents = fuzzing::bytes(data, size);
    home.put(folder + "/keys.json"_L1, contents);
    const std::optional<Keys> expected = expectedKeys(contents);
    for (const std::string_view identifier : {"gemini", "grok", "openai", ""}) {
        const auto key = storage::Keychain::load(QString::fromUtf8(identifier));
        if (expected) {
            const auto found = expected->find(identifier);
            fuzzing::require(key.has_value() == (found != expected->end()));
            fuzzing::require(!key || key->toStdString() == found->second);
        }
    }
    return 0;
}
