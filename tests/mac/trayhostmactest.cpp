#include "app/trayhost.h"

#include <QSignalSpy>
#include <QTest>

using app::TrayHost;

/// The tray of macOS, which is the menu bar.
class TrayHostMacTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theMenuBarIsThereAtOnceAndIsToldOnce();
};

void TrayHostMacTest::theMenuBarIsThereAtOnceAndIsToldOnce()
{
    TrayHost host;
    QSignalSpy available(&host, &TrayHost::available);
    QVERIFY(!host.isAvailable());
    host.watch();
    QVERIFY(host.isAvailable());
    host.watch();
    QCOMPARE(available.count(), 1);
}

QTEST_GUILESS_MAIN(TrayHostMacTest)
#include "trayhostmactest.moc"
