#include "busscript.h"

#include "giopointers.h"

namespace fuzzing {

namespace {

QByteArray takeWord(QByteArray &line)
{
    const qsizetype end = line.indexOf(' ');
    const QByteArray word = line.left(end);
    line = end < 0 ? QByteArray() : line.mid(end + 1);
    return word;
}

bool takeKind(QByteArray &line, BusAct::Kind &kind)
{
    static const QList<std::pair<QByteArray, BusAct::Kind>> kinds{{"answer ", BusAct::Answer},
        {"error ", BusAct::Error}, {"signal ", BusAct::Signal}, {"call ", BusAct::Call},
        {"bytes ", BusAct::Bytes}};
    for (const auto &[word, found] : kinds) {
        if (line.startsWith(word)) {
            line.remove(0, word.size());
            kind = found;
            return true;
        }
    }
    return false;
}

BusAct actOf(QByteArray line)
{
    BusAct act;
    takeKind(line, act.kind);
    if (act.kind == BusAct::Error) {
        act.interface = takeWord(line);
    } else if (act.kind == BusAct::Signal || act.kind == BusAct::Call) {
        act.path = takeWord(line);
        const QByteArray name = takeWord(line);
        const qsizetype point = name.lastIndexOf('.');
        act.interface = name.left(point);
        act.member = name.mid(point + 1);
    }
    act.text = line;
    return act;
}

Value asTuple(Value value)
{
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_TUPLE) != FALSE) {
        return value;
    }
    GVariant *const only = value.get();
    return Value(g_variant_ref_sink(g_variant_new_tuple(&only, 1)));
}

Value plainText(const QByteArray &text)
{
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.constData(), text.size()), &g_free);
    return Value(g_variant_ref_sink(g_variant_new_string(valid.get())));
}

Value valuesOf(const QByteArray &text)
{
    if (g_utf8_validate(text.constData(), text.size(), nullptr) != FALSE) {
        Value parsed(
            g_variant_parse(nullptr, text.constBegin(), text.constEnd(), nullptr, nullptr));
        if (parsed) {
            return asTuple(std::move(parsed));
        }
    }
    return asTuple(plainText(text));
}

bool isWellNamed(const BusAct &act)
{
    return g_variant_is_object_path(act.path.constData()) != FALSE
        && g_dbus_is_interface_name(act.interface.constData()) != FALSE
        && g_dbus_is_member_name(act.member.constData()) != FALSE;
}

Message reply(const BusAct &act, uint serial)
{
    Message message(g_dbus_message_new());
    g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
    g_dbus_message_set_reply_serial(message.get(), serial);
    const bool isError
        = act.kind == BusAct::Error && g_dbus_is_interface_name(act.interface.constData()) != FALSE;
    g_dbus_message_set_message_type(
        message.get(), isError ? G_DBUS_MESSAGE_TYPE_ERROR : G_DBUS_MESSAGE_TYPE_METHOD_RETURN);
    if (isError) {
        g_dbus_message_set_error_name(message.get(), act.interface.constData());
    }
    return message;
}

Message withoutValues(const BusAct &act, uint serial)
{
    if (act.isReply()) {
        return reply(act, serial);
    }
    if (!isWellNamed(act)) {
        return {};
    }
    if (act.kind == BusAct::Signal) {
        return Message(g_dbus_message_new_signal(
            act.path.constData(), act.interface.constData(), act.member.constData()));
    }
    return Message(g_dbus_message_new_method_call(
        nullptr, act.path.constData(), act.interface.constData(), act.member.constData()));
}

} // namespace

QList<BusAct> busScript(const QByteArray &text)
{
    QList<BusAct> script;
    for (const QByteArray &line : text.split('\n')) {
        if (!line.isEmpty()) {
            script.append(actOf(line));
        }
    }
    return script;
}

QByteArray onTheWire(const BusAct &act, uint serial)
{
    if (act.kind == BusAct::Bytes) {
        return act.text;
    }
    static uint lastSerial = 0;
    const Message message = withoutValues(act, serial);
    if (!message) {
        return {};
    }
    const bool isFromTheBus = act.kind == BusAct::Error && act.interface.endsWith("NoReply");
    g_dbus_message_set_sender(message.get(), isFromTheBus ? "org.freedesktop.DBus" : ":1.2");
    g_dbus_message_set_destination(message.get(), ":1.1");
    g_dbus_message_set_serial(message.get(), ++lastSerial);
    const bool isPlain = act.kind == BusAct::Error;
    const Value values = isPlain ? asTuple(plainText(act.text)) : valuesOf(act.text);
    if (g_variant_n_children(values.get()) > 0) {
        g_dbus_message_set_body(message.get(), values.get());
    }
    gsize size = 0;
    const std::unique_ptr<guchar, decltype(&g_free)> blob(
        g_dbus_message_to_blob(
            message.get(), &size, G_DBUS_CAPABILITY_FLAGS_UNIX_FD_PASSING, nullptr),
        &g_free);
    return blob ? QByteArray(reinterpret_cast<const char *>(blob.get()), qsizetype(size))
                : QByteArray();
}

} // namespace fuzzing
