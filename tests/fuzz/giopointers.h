#pragma once

#include <gio/gio.h>

#include <memory>

namespace fuzzing {

struct Unref
{
    void operator()(GVariant *value) const { g_variant_unref(value); }
    void operator()(GDBusMessage *message) const { g_object_unref(message); }
};

using Value = std::unique_ptr<GVariant, Unref>;
using Message = std::unique_ptr<GDBusMessage, Unref>;

} // namespace fuzzing
