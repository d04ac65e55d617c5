#include "providers/service.h"

#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;
using providers::ModelOption;
using providers::Service;

class ServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableHoldsTheKnownServices_data()
    {
        QTest::addColumn<Service>("service");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<ModelOption>>("models");
        QTest::newRow("Gemini") << providers::services().gemini << u"gemini"_s << u"Gemini"_s
                                << QList<ModelOption>{
                                       {u"gemini-2.5-flash-image"_s, u"2.5 Flash Image"_s},
                                       {u"gemini-3-pro-image-preview"_s, u"3 Pro Image"_s}};
        QTest::newRow("Grok") << providers::services().grok << u"grok"_s << u"Grok"_s
                              << QList<ModelOption>{{u"grok-imagine-image"_s, u"Imagine"_s},
                                     {u"grok-imagine-image-pro"_s, u"Imagine Pro"_s}};
        QTest::newRow("OpenAI") << providers::services().openai << u"openai"_s << u"OpenAI"_s
                                << QList<ModelOption>{{u"gpt-image-1"_s, u"GPT Image 1"_s},
                                       {u"gpt-image-1.5"_s, u"GPT Image 1.5"_s},
                                       {u"gpt-image-1-mini"_s, u"GPT Image 1 Mini"_s}};
    }

    void theTableHoldsTheKnownServices()
    {
        QFETCH(Service, service);
        QTEST(service.id, "id");
        QTEST(service.name, "name");
        QTEST(service.models, "models");
        const QUrl url(service.baseUrl, QUrl::StrictMode);
        QVERIFY2(url.isValid() && !url.host().isEmpty(), qPrintable(service.baseUrl));
        QVERIFY2(url.path().isEmpty(), "paths follow directly");
        // Who builds for a service of their own has it on their own machine.
        QVERIFY2(url.scheme() == "https"_L1 || url.host() == "127.0.0.1"_L1,
            qPrintable(service.baseUrl));
    }
};

QTEST_GUILESS_MAIN(ServicesTest)
#include "servicestest.moc"
