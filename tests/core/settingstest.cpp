#include "core/settings.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;

class SettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handEditedValuesAreReadAsTheirKind_data();
    void handEditedValuesAreReadAsTheirKind();
    void readingWritesNothingBack();
    void everyTextComesBack_data();
    void everyTextComesBack();

private:
    QString path() const { return m_folder.filePath(u"settings.conf"_s); }
    void write(const QByteArray &lines) const
    {
        QFile file(path());
        QVERIFY(file.open(QFile::WriteOnly | QFile::Truncate));
        QCOMPARE(file.write("[General]\n" + lines), qint64(10 + lines.size()));
    }

    QTemporaryDir m_folder;
};

void SettingsTest::handEditedValuesAreReadAsTheirKind_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<std::optional<QString>>("text");
    QTest::addColumn<bool>("boolean");
    QTest::addColumn<qint64>("integer");
    const auto row = [](const char *name, const QByteArray &line,
                         const std::optional<QString> &text, bool boolean, qint64 integer) {
        QTest::newRow(name) << line << text << boolean << integer;
    };
    row("absent", "", std::nullopt, false, 0);
    row("empty", "x=", u""_s, false, 0);
    row("true", "x=true", u"true"_s, true, 0);
    row("yes", "x=YES", u"YES"_s, true, 0);
    row("false", "x=false", u"false"_s, false, 0);
    row("one", "x=1", u"1"_s, true, 1);
    row("zero", "x=0", u"0"_s, false, 0);
    row("text where a number belongs", "x=often", u"often"_s, false, 0);
    row("negative", "x=-5", u"-5"_s, true, -5);
    row("huge", "x=99999999999999999999", u"99999999999999999999"_s, false, 0);
    row("longest", "x=9223372036854775807", u"9223372036854775807"_s, true,
        std::numeric_limits<qint64>::max());
    row("fraction", "x=7.5", u"7.5"_s, false, 0);
    row("commas without quotes", "x=a sky, a sea", u"a sky, a sea"_s, false, 0);
    row("another type of value", "x=@Rect(1 2 3 4)", std::nullopt, false, 0);
}

void SettingsTest::handEditedValuesAreReadAsTheirKind()
{
    QFETCH(QByteArray, line);
    write(line);
    QSettings store(path(), QSettings::IniFormat);
    const Settings settings(store);
    QTEST(settings.text(u"x"_s), "text");
    QTEST(settings.boolean(u"x"_s), "boolean");
    QTEST(settings.integer(u"x"_s), "integer");
}

void SettingsTest::readingWritesNothingBack()
{
    write("intervalMinutes=-3\n");
    {
        QSettings store(path(), QSettings::IniFormat);
        QCOMPARE(Settings(store).integer(u"intervalMinutes"_s), -3);
        store.sync();
    }
    QFile file(path());
    QVERIFY(file.open(QFile::ReadOnly));
    QCOMPARE(file.readAll(), "[General]\nintervalMinutes=-3\n"_ba);
}

void SettingsTest::everyTextComesBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("comma") << u"a, b"_s;
    QTest::newRow("quotes and backslashes") << u"\"a\\b\";c=d%20"_s;
    QTest::newRow("at sign") << u"@Invalid()"_s;
    QTest::newRow("control characters") << u"a\nb\tc\r\u0001\u007f"_s;
    QTest::newRow("emoji") << QString::fromUtf8(
        "\xF0\x9F\x8C\x85\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x9A\x80");
    QTest::newRow("right to left")
        << QString::fromUtf8("\xD7\xA9\xD7\xA7\xD7\x99\xD7\xA2\xD7\x94 \xD8\xA8\xD8\xAD\xD8\xB1");
    QTest::newRow("blanks at the ends") << u"  a  "_s;
    QTest::newRow("long") << QString(100'000, u'x');
}

void SettingsTest::everyTextComesBack()
{
    QFETCH(QString, text);
    QFile::remove(path());
    {
        QSettings store(path(), QSettings::IniFormat);
        Settings(store).setText(u"lastPrompt"_s, text);
    }
    QSettings store(path(), QSettings::IniFormat);
    QCOMPARE(Settings(store).text(u"lastPrompt"_s), std::optional(text));
}

QTEST_GUILESS_MAIN(SettingsTest)
#include "settingstest.moc"
