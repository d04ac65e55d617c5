#include "ui/apikey.h"

#include "storage/keychain.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using storage::Keychain;
using ui::APIKey;

/// A key while it is edited.
class APIKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void anEmptyFieldIsNeverStored();
    void whereNothingIsStoredTheFieldStays();
    void itTellsOfAnotherServiceOnly();

private:
    std::unique_ptr<QTemporaryDir> m_home;
};

void APIKeyTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    qputenv("HOME", QFile::encodeName(m_home->path()));
}

void APIKeyTest::anEmptyFieldIsNeverStored()
{
    Keychain::save(u"stored"_s, u"grok"_s);
    APIKey apiKey;
    apiKey.setProviderId(u"grok"_s);
    apiKey.save();
    QCOMPARE(Keychain::load(u"grok"_s), u"stored"_s);
    QVERIFY(!apiKey.isSaved());
}

void APIKeyTest::whereNothingIsStoredTheFieldStays()
{
    APIKey apiKey;
    apiKey.setProviderId(u"grok"_s);
    apiKey.field()->setText(u"typed"_s);
    apiKey.load();
    QCOMPARE(apiKey.field()->text(), u"typed"_s);
    QVERIFY(!apiKey.isSaved());
}

void APIKeyTest::itTellsOfAnotherServiceOnly()
{
    APIKey apiKey;
    const QSignalSpy changed(&apiKey, &APIKey::providerIdChanged);
    apiKey.setProviderId(u"grok"_s);
    apiKey.setProviderId(u"grok"_s);
    QCOMPARE(changed.count(), 1);
}

QTEST_GUILESS_MAIN(APIKeyTest)
#include "apikeytest.moc"
