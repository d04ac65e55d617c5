#include "providers/providererror.h"

#include <QTest>

using namespace Qt::StringLiterals;
using providers::ProviderError;

class ProviderErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesItselfInOneLine_data()
    {
        using Case = ProviderError::Case;
        QTest::addColumn<ProviderError>("error");
        QTest::addColumn<Case>("errorCase");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("description");
        QTest::newRow("invalidResponse")
            << ProviderError::invalidResponse(u"No image"_s) << Case::InvalidResponse
            << u"No image"_s << u"Invalid response: No image"_s;
        QTest::newRow("invalidResponse, an empty message leaves the trailing blank")
            << ProviderError::invalidResponse(u""_s) << Case::InvalidResponse << u""_s
            << u"Invalid response: "_s;
        QTest::newRow("apiError") << ProviderError::apiError(u"quota <b>\nexceeded"_s)
                                  << Case::ApiError << u"quota <b>\nexceeded"_s
                                  << u"API error: quota <b>\nexceeded"_s;
        QTest::newRow("apiError, empty")
            << ProviderError::apiError(u""_s) << Case::ApiError << u""_s << u"API error: "_s;
        QTest::newRow("networkError")
            << ProviderError::networkError(u"Connection refused"_s) << Case::NetworkError
            << u"Connection refused"_s << u"Network error: Connection refused"_s;
    }

    void describesItselfInOneLine()
    {
        QFETCH(ProviderError, error);
        QTEST(error.errorCase(), "errorCase");
        QTEST(error.message(), "message");
        QTEST(error.errorDescription(), "description");
    }

    void equalOnlyIfCaseAndMessageAre()
    {
        QCOMPARE(ProviderError::apiError(u"x"_s), ProviderError::apiError(u"x"_s));
        QVERIFY(ProviderError::apiError(u"x"_s) != ProviderError::apiError(u"y"_s));
        QVERIFY(ProviderError::apiError(u"x"_s) != ProviderError::networkError(u"x"_s));
    }
};

QTEST_GUILESS_MAIN(ProviderErrorTest)
#include "providererrortest.moc"
