#include "ui/x11front.h"

#include "desktop/xcbreply.h"

#include <QTest>
#include <QWindow>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

/// Hears what window managers and launchers hear, on a connection of its own.
class Listener
{
public:
    Listener() : m_connection(xcb_connect(nullptr, nullptr), &xcb_disconnect)
    {
        const uint32_t heard = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        const xcb_window_t root
            = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
        // Its answer tells that the server has heard of the wish to hear.
        xcb_request_check(m_connection.get(),
            xcb_change_window_attributes_checked(
                m_connection.get(), root, XCB_CW_EVENT_MASK, &heard));
    }

    /// All messages of a kind up to now, in their order.
    std::vector<xcb_client_message_event_t> messages(const QByteArray &kind)
    {
        read();
        std::vector<xcb_client_message_event_t> found;
        std::copy_if(m_messages.begin(), m_messages.end(), std::back_inserter(found),
            [type = atom(kind)](const auto &message) { return message.type == type; });
        return found;
    }

    /// What launchers are told of starts, as long as it is not at its end without one.
    QByteArray startupText()
    {
        QByteArray text;
        for (const QByteArray kind : {"_NET_STARTUP_INFO_BEGIN", "_NET_STARTUP_INFO"}) {
            for (const auto &part : messages(kind)) {
                text.append(reinterpret_cast<const char *>(part.data.data8), 20);
            }
        }
        const qsizetype end = text.indexOf('\0');
        return end < 0 ? QByteArray() : text.left(end);
    }

private:
    xcb_atom_t atom(const QByteArray &name) const
    {
        return desktop::atomNamed(m_connection.get(), name);
    }

    void read()
    {
        while (const desktop::XcbReply<xcb_generic_event_t> event{
            xcb_poll_for_event(m_connection.get())}) {
            if ((event->response_type & 0x7fU) == XCB_CLIENT_MESSAGE) {
                m_messages.push_back(
                    *reinterpret_cast<const xcb_client_message_event_t *>(event.get()));
            }
        }
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    std::vector<xcb_client_message_event_t> m_messages;
};

class X11FrontTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWindowManagerIsAsked_data()
    {
        QTest::addColumn<QByteArray>("startupId");
        QTest::addColumn<uint>("source");
        QTest::addColumn<uint>("time");
        QTest::newRow("by the time of the wish") << "panel-1_TIME42"_ba << 1U << 42U;
        QTest::newRow("by the last time that the id names") << "a_TIME1_TIME42"_ba << 1U << 42U;
        QTest::newRow("as by a tool, where the time is not told") << "panel-1"_ba << 2U << 0U;
        QTest::newRow("as by a tool, where the time is not known") << "panel_TIME0"_ba << 2U << 0U;
        QTest::newRow("as by a tool, where it is no time") << "panel_TIMES"_ba << 2U << 0U;
        QTest::newRow("as by a tool, where there is no id") << ""_ba << 2U << 0U;
    }
    void theWindowManagerIsAsked()
    {
        QFETCH(QByteArray, startupId);
        Listener listener;
        QWindow window;
        window.create();
        ui::putInFrontOnX11(window, startupId);
        QTRY_COMPARE(listener.messages("_NET_ACTIVE_WINDOW").size(), size_t(1));
        const auto message = listener.messages("_NET_ACTIVE_WINDOW").front();
        QCOMPARE(message.window, xcb_window_t(window.winId()));
        QCOMPARE(message.format, uint8_t(32));
        QTEST(uint(message.data.data32[0]), "source");
        QTEST(uint(message.data.data32[1]), "time");
    }

    void theLauncherIsToldThatItsStartIsOver_data()
    {
        QTest::addColumn<QByteArray>("startupId");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("in one part") << "a_TIME1"_ba
                                     << "remove: ID=\"a_TIME1\""_ba;
        QTest::newRow("in parts that are full, the end in the next one")
            << "0123456_"_ba
            << "remove: ID=\"0123456_\""_ba;
        QTest::newRow("in several parts")
            << "some-panel-4711-machine-of-mine-plenaura-0_TIME123456789"_ba
            << "remove: ID=\"some-panel-4711-machine-of-mine-plenaura-0_TIME123456789\""_ba;
        QTest::newRow("with what means something in it") << "a\\b \"c\""_ba
                                                         << "remove: ID=\"a\\\\b \\\"c\\\"\""_ba;
    }
    void theLauncherIsToldThatItsStartIsOver()
    {
        QFETCH(QByteArray, startupId);
        Listener listener;
        QWindow window;
        window.create();
        ui::putInFrontOnX11(window, startupId);
        QFETCH(QByteArray, text);
        QTRY_COMPARE(listener.startupText(), text);
        QCOMPARE(listener.messages("_NET_STARTUP_INFO_BEGIN").size(), size_t(1));
    }

    void withoutALauncherNobodyIsTold()
    {
        Listener listener;
        QWindow window;
        window.create();
        ui::putInFrontOnX11(window, {});
        QTRY_VERIFY(!listener.messages("_NET_ACTIVE_WINDOW").empty());
        ui::putInFrontOnX11(window, "the next one"_ba);
        QTRY_COMPARE(listener.startupText(), "remove: ID=\"the next one\""_ba);
    }
};

QTEST_MAIN(X11FrontTest)

#include "x11fronttest.moc"
