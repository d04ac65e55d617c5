#include "fakebus.h"

#include "giopointers.h"
#include "input.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QFile>

#include <algorithm>
#include <array>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace fuzzing {

namespace {

constexpr auto busName = "org.freedesktop.DBus";

/// What the program calls its request to a portal, which is where the response goes.
QByteArray requestPath(GDBusMessage *call)
{
    GVariant *const body = g_dbus_message_get_body(call);
    if (body == nullptr || g_variant_is_of_type(body, G_VARIANT_TYPE("(sha{sv})")) == FALSE) {
        return {};
    }
    const Value options(g_variant_get_child_value(body, 2));
    const char *token = "";
    g_variant_lookup(options.get(), "handle_token", "&s", &token);
    return QByteArray("/org/freedesktop/portal/desktop/request/1_1/") + token;
}

/// What the bus itself says; its answers are not what is tried.
QByteArray answerOfTheBus(const QByteArray &member)
{
    const QList<std::pair<QByteArray, QByteArray>> answers{{"Hello", "(':1.1',)"},
        {"GetNameOwner", "(':1.2',)"}, {"NameHasOwner", "(true,)"}, {"RequestName", "(uint32 1,)"},
        {"ReleaseName", "(uint32 1,)"}};
    const auto found = std::find_if(
        answers.begin(), answers.end(), [&](const auto &answer) { return answer.first == member; });
    return found == answers.end() ? "()" : found->second;
}

} // namespace

FakeBus::FakeBus()
{
    const QByteArray path = QFile::encodeName(m_folder.filePath(QStringLiteral("bus")));
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    require(size_t(path.size()) < sizeof(name.sun_path));
    std::copy(path.begin(), path.end(), std::begin(name.sun_path));
    m_door = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    require(bind(m_door, reinterpret_cast<const sockaddr *>(&name), sizeof(name)) == 0);
    require(listen(m_door, 8) == 0);
    m_thread = std::thread([this] { serve(); });
}

FakeBus::~FakeBus()
{
    shutdown(m_door, SHUT_RDWR);
    hangUp();
    m_thread.join();
    close(m_door);
}

QByteArray FakeBus::address() const
{
    return "unix:path=" + QFile::encodeName(m_folder.filePath(QStringLiteral("bus")));
}

void FakeBus::play(const QList<BusAct> &script)
{
    const std::lock_guard lock(m_mutex);
    m_script = script;
    goOn();
}

void FakeBus::settle(const QDBusConnection &bus) const
{
    const auto question = QDBusMessage::createMethodCall(QString::fromLatin1(busName),
        QStringLiteral("/"), QString::fromLatin1(busName), QStringLiteral("IsAllThere"));
    int heard = 0;
    do {
        heard = m_heard;
        // The bus answers after all that it sent before, and what comes of that is sent before the
        // next question.
        bus.call(question);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        bus.call(question);
    } while (m_heard != heard);
}

void FakeBus::hangUp()
{
    const std::lock_guard lock(m_mutex);
    shutdown(m_program, SHUT_RDWR);
}

void FakeBus::serve()
{
    int program = -1;
    while ((program = accept4(m_door, nullptr, nullptr, SOCK_CLOEXEC)) >= 0) {
        {
            const std::lock_guard lock(m_mutex);
            m_program = program;
        }
        letIn(program);
        for (QByteArray message = readMessage(program); !message.isEmpty();
             message = readMessage(program)) {
            hear(message);
        }
        const std::lock_guard lock(m_mutex);
        m_program = -1;
        close(program);
    }
}

/// The way in is not what is tried, either.
void FakeBus::letIn(int program)
{
    QByteArray line;
    char byte = 0;
    while (line != "BEGIN\r\n" && read(program, &byte, 1) == 1) {
        // The first byte of all is a null.
        line += byte == 0 ? QByteArray() : QByteArray(1, byte);
        if (line.startsWith("AUTH") && line.endsWith("\r\n")) {
            write("OK 0123456789abcdef0123456789abcdef\r\n");
            line.clear();
        } else if (line == "NEGOTIATE_UNIX_FD\r\n") {
            write("AGREE_UNIX_FD\r\n");
            line.clear();
        }
    }
}

/// Empty at the end. Files that are sent along are left to the kernel, which closes them.
QByteArray FakeBus::readMessage(int program)
{
    constexpr size_t headerSize = 16;
    const auto readOn = [program](QByteArray &into, size_t size) {
        const qsizetype before = into.size();
        into.resize(qsizetype(size));
        return recv(program, into.data() + before, size - size_t(before), MSG_WAITALL)
            == ssize_t(size) - before;
    };
    QByteArray message;
    if (!readOn(message, headerSize)) {
        return {};
    }
    const gssize size = g_dbus_message_bytes_needed(
        reinterpret_cast<guchar *>(message.data()), headerSize, nullptr);
    return size > 0 && readOn(message, size_t(size)) ? message : QByteArray();
}

void FakeBus::hear(QByteArray bytes)
{
    const Message message(g_dbus_message_new_from_blob(reinterpret_cast<guchar *>(bytes.data()),
        gsize(bytes.size()), G_DBUS_CAPABILITY_FLAGS_UNIX_FD_PASSING, nullptr));
    require(message != nullptr);
    const GDBusMessageType type = g_dbus_message_get_message_type(message.get());
    const QByteArray member = g_dbus_message_get_member(message.get());
    const uint serial = g_dbus_message_get_serial(message.get());
    const std::lock_guard lock(m_mutex);
    if (type != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        m_answers += type != G_DBUS_MESSAGE_TYPE_SIGNAL;
        ++m_heard;
    } else if (QByteArrayView(g_dbus_message_get_destination(message.get())) == busName
        && member != "ListNames") {
        send({.text = answerOfTheBus(member)}, serial);
        m_heard += member != "IsAllThere";
    } else {
        ++m_heard;
        m_request = requestPath(message.get());
        const bool isOver = m_script.isEmpty();
        send(isOver ? BusAct{BusAct::Error, {}, "org.freedesktop.DBus.Error.NoReply"}
                    : m_script.takeFirst(),
            serial);
        goOn();
    }
}

void FakeBus::goOn()
{
    while (!m_script.isEmpty() && !m_script.first().isReply()) {
        BusAct act = m_script.takeFirst();
        if (act.path == "/request") {
            act.path = m_request;
        }
        send(act, 0);
    }
}

void FakeBus::send(const BusAct &act, uint serial)
{
    QByteArray message = onTheWire(act, serial);
    if (message.isEmpty() && act.isReply()) {
        // Whoever waits for an answer that cannot be sent gets another one.
        message = onTheWire({.text = "()"}, serial);
    }
    m_calls += act.kind == BusAct::Call && !message.isEmpty();
    write(message);
    if (act.kind == BusAct::Bytes) {
        shutdown(m_program, SHUT_RDWR);
    }
}

void FakeBus::write(const QByteArray &bytes)
{
    // It may be gone.
    (void)::send(m_program, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
}

} // namespace fuzzing
