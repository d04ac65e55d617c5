// First, as Qt's macros would spoil its headers.
#include <gio/gio.h>

#include "desktop/gsettingskeys.h"

#include <algorithm>
#include <atomic>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

struct UnrefSchema
{
    void operator()(GSettingsSchema *schema) const { g_settings_schema_unref(schema); }
};
using Schema = std::unique_ptr<GSettingsSchema, UnrefSchema>;

struct UnrefKey
{
    void operator()(GSettingsSchemaKey *key) const { g_settings_schema_key_unref(key); }
};
using Key = std::unique_ptr<GSettingsSchemaKey, UnrefKey>;

struct Free
{
    void operator()(void *memory) const { g_free(memory); }
};

Schema lookUp(const QByteArray &name)
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    return Schema(source != nullptr
            ? g_settings_schema_source_lookup(source, name.constData(), TRUE)
            : nullptr);
}

// Without the module that speaks to the settings service, GLib keeps changes to itself and says
// that all is well.
bool reachesTheService(GSettings *settings)
{
    GObject *backend = nullptr;
    g_object_get(settings, "backend", &backend, nullptr);
    const bool reaches = QByteArrayView(G_OBJECT_TYPE_NAME(backend)) == "DConfSettingsBackend";
    g_object_unref(backend);
    return reaches;
}

// GLib's connection to the bus, which the settings share, ends the program when the bus ends. It is
// kept, as the one that follows one that nobody keeps would do so again.
void outliveTheBus()
{
    static std::atomic<GDBusConnection *> kept = nullptr;
    GDBusConnection *const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (bus != nullptr) {
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        if (GDBusConnection *const before = kept.exchange(bus)) {
            g_object_unref(before);
        }
    }
}

} // namespace

class GSettingsKeys::Library
{
public:
    explicit Library(GSettingsSchema *schema)
        : m_settings(g_settings_new_full(schema, nullptr, nullptr))
    {
    }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
    ~Library() { g_object_unref(m_settings); }

    GSettings *get() const { return m_settings; }

private:
    GSettings *const m_settings;
};

tl::expected<GSettingsKeys, QString> GSettingsKeys::open(const QByteArray &schema)
{
    // Asking for settings without a schema would end the program.
    const Schema found = lookUp(schema);
    if (!found) {
        return tl::make_unexpected(u"The desktop's settings are not installed"_s);
    }
    outliveTheBus();
    GSettingsKeys keys(std::make_shared<const Library>(found.get()));
    if (!reachesTheService(keys.m_library->get())) {
        return tl::make_unexpected(
            u"The desktop's settings cannot be reached: GLib's dconf module is missing"_s);
    }
    return keys;
}

bool GSettingsKeys::has(const QByteArray &key) const
{
    GSettingsSchema *found = nullptr;
    g_object_get(m_library->get(), "settings-schema", &found, nullptr);
    const Schema schema(found);
    if (g_settings_schema_has_key(schema.get(), key.constData()) == FALSE) {
        return false;
    }
    const Key described(g_settings_schema_get_key(schema.get(), key.constData()));
    return g_variant_type_equal(
               g_settings_schema_key_get_value_type(described.get()), G_VARIANT_TYPE_STRING)
        != FALSE;
}

QString GSettingsKeys::value(const QByteArray &key) const
{
    if (!has(key)) {
        return {};
    }
    const std::unique_ptr<char, Free> text(
        g_settings_get_string(m_library->get(), key.constData()));
    return QString::fromUtf8(text.get());
}

tl::expected<void, QString> GSettingsKeys::change(
    const QList<std::pair<QByteArray, QString>> &values) const
{
    // A change in two steps would be painted twice.
    g_settings_delay(m_library->get());
    for (const auto &[key, text] : values) {
        if (has(key)
            && g_settings_set_string(m_library->get(), key.constData(), text.toUtf8().constData())
                == FALSE) {
            g_settings_revert(m_library->get());
            return tl::make_unexpected(u"The desktop's settings are locked"_s);
        }
    }
    g_settings_apply(m_library->get());
    g_settings_sync();
    const bool kept = std::all_of(values.begin(), values.end(),
        [this](const auto &each) { return !has(each.first) || value(each.first) == each.second; });
    if (!kept) {
        return tl::make_unexpected(u"The desktop did not keep the picture"_s);
    }
    return {};
}

} // namespace desktop
