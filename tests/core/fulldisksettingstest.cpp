#include "core/settings.h"
#include "home.h"
#include "tinydisk.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

/// QSettings may cut its file on a full disk and not tell. What it took must come back.
class FullDiskSettingsTest : public QObject
{
    Q_OBJECT

public:
    explicit FullDiskSettingsTest(const QString &refusal) : m_refusal(refusal) { }

private Q_SLOTS:
    void initTestCase();
    void withRoomAgainTheNextChangeWritesThemAll_data();
    void withRoomAgainTheNextChangeWritesThemAll();

private:
    const QString m_refusal;
};

void FullDiskSettingsTest::initTestCase()
{
    QVERIFY2(m_refusal.isEmpty(), qPrintable(m_refusal));
}

void FullDiskSettingsTest::withRoomAgainTheNextChangeWritesThemAll_data()
{
    QTest::addColumn<int>("freePages");
    QTest::addColumn<int>("size");
    for (int freePages = 0; freePages <= 16; ++freePages) {
        for (const int size : {100, 4'000, 20'000, 100'000}) {
            QTest::addRow("%d bytes into %d pages", size, freePages) << freePages << size;
        }
    }
}

void FullDiskSettingsTest::withRoomAgainTheNextChangeWritesThemAll()
{
    QFETCH(const int, freePages);
    QFETCH(const int, size);
    const TinyDisk disk;
    const QString path = disk.path() + "/Plenaura.conf"_L1;
    QVERIFY(put(path, "[General]\nfourKEnabled=true\nlastPrompt=old\n"));
    QSettings store(path, QSettings::IniFormat);
    core::Settings settings(store);
    QCOMPARE(settings.text(u"lastPrompt"_s), u"old"_s);
    QVERIFY(disk.leaveFree(freePages));
    const QString prompt(size, u'x');
    settings.setText(u"lastPrompt"_s, prompt);
    store.sync();
    QCOMPARE(settings.text(u"lastPrompt"_s), prompt);
    QVERIFY(settings.boolean(u"fourKEnabled"_s));

    QVERIFY(disk.leaveFree(100));
    settings.setInteger(u"intervalMinutes"_s, 60);
    store.sync();
    QCOMPARE(contents(path),
        "[General]\nfourKEnabled=true\nintervalMinutes=60\nlastPrompt=" + prompt.toLatin1() + "\n");
}

int main(int argc, char **argv)
{
    const QString refusal = TinyDisk::allowMounting();
    const QCoreApplication application(argc, argv);
    FullDiskSettingsTest test(refusal);
    return QTest::qExec(&test, argc, argv);
}

#include "fulldisksettingstest.moc"
