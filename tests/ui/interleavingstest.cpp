#include "ui/picturereader.h"

#include "desktop/workerthread.h"
#include "providers/cannedanswers.h"
#include "providers/geminiprovider.h"
#include "providers/httpexchange.h"
#include "testlibs/belongings.h"
#include "testlibs/comestrue.h"
#include "testlibs/httpserver.h"

#include <QCoroFuture>
#include <QFile>
#include <QImage>
#include <QPointer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using providers::GeminiProvider;
using providers::HttpExchange;
using providers::HttpLimits;
using providers::HttpRequest;
using providers::ImageResult;
using testlibs::HttpAnswer;
using testlibs::HttpServer;
using Ending = HttpAnswer::Ending;

namespace {

using Stop = std::shared_ptr<std::atomic_bool>;

/// A picture to be read, and what comes of it where nobody stops that.
struct Reading
{
    QString file;
    ui::Framing framing;
    QImage whole;

    QImage read(const std::atomic_bool &stopped) const
    {
        return ui::readPicture(file, {90, 60}, framing, stopped);
    }
};

/// What was begun on other threads, and what came of it on this one.
struct Outcomes
{
    int begun = 0;
    int ended = 0;
    int abandoned = 0; ///< Ended too, without what was asked for.
    int wrong = 0;
    int answered = 0; ///< Of the requests, with a picture.

    void note(bool isAbandoned, bool isRight)
    {
        ++ended;
        abandoned += isAbandoned;
        wrong += !isRight;
    }
};

/// One who waits for what runs elsewhere, and may be gone before it ends.
class Asker : public QObject
{
public:
    explicit Asker(Outcomes &outcomes) : m_outcomes(outcomes) { }

    QCoro::Task<> awaitWork(QFuture<QByteArray> work, QByteArray expected)
    {
        const QPointer<Asker> self = this;
        Outcomes &outcomes = m_outcomes;
        ++outcomes.begun;
        const QByteArray result = co_await work;
        outcomes.note(false, result == expected);
        hear(self);
    }

    QCoro::Task<> awaitInTime(QFuture<std::optional<QByteArray>> work, QByteArray expected)
    {
        const QPointer<Asker> self = this;
        Outcomes &outcomes = m_outcomes;
        ++outcomes.begun;
        const std::optional<QByteArray> result = co_await work;
        outcomes.note(!result, !result || *result == expected);
        hear(self);
    }

    QCoro::Task<> awaitPicture(QFuture<QImage> picture, QImage expected, Stop stopped)
    {
        const QPointer<Asker> self = this;
        Outcomes &outcomes = m_outcomes;
        ++outcomes.begun;
        const QImage image = co_await picture;
        outcomes.note(image.isNull(), image.isNull() ? bool(*stopped) : image == expected);
        hear(self);
    }

    QCoro::Task<> awaitAnswer(QCoro::Task<ImageResult> call)
    {
        const QPointer<Asker> self = this;
        Outcomes &outcomes = m_outcomes;
        ++outcomes.begun;
        const ImageResult result = co_await call;
        outcomes.answered += bool(result);
        outcomes.note(!result,
            result ? canned::outcome(result) == "Man.png"_L1
                   : !result.error().errorDescription().isEmpty());
        hear(self);
    }

private:
    /// A write into one who is gone would be seen by a sanitizer.
    static void hear(const QPointer<Asker> &self)
    {
        if (self) {
            ++self->m_heard;
        }
    }

    Outcomes &m_outcomes;
    int m_heard = 0;
};

} // namespace

/// All that runs beside the main thread, begun, left, stopped and destroyed in random order, which
/// is another one each time, as what the threads make of it is anyway. What must not happen
/// meanwhile is for the thread sanitizer to see. PLENAURA_SOAK_CYCLES sets how often.
class InterleavingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingEndsOnceWhateverIsGivenUpMeanwhile();

private:
    void addReading(const QString &name, const char *format, ui::Framing framing);
    void goRound();

    // What may happen at any moment of a round.
    void open();
    void close();
    void post();
    void hear();
    void release() { m_server->release(); }
    void work();
    void workInTime();
    void read();
    void stopReading();
    void replaceAsker();
    static void turn() { QCoreApplication::processEvents(); }

    int chosen(qsizetype count) { return int(m_random.bounded(quint32(count))); }
    std::function<QByteArray()> someWork();
    void ask(const HttpServer &server);

    const QList<HttpAnswer> m_answers{
        {.body = canned::candidates("["_ba + canned::inlineData() + "]"_ba)},
        {.body = canned::candidates("["_ba + canned::inlineData() + "]"_ba), .chunked = true},
        {.body = canned::candidates("["_ba + canned::inlineData() + "]"_ba), .held = true},
        {.status = 500, .body = "{}"_ba},
        {.body = QByteArray(100000, 'x'), .ending = Ending::CutInBody},
        {.body = QByteArray(100000, 'x'), .ending = Ending::StallInBody},
        {.ending = Ending::Close},
        {.ending = Ending::Reset},
        {.ending = Ending::Silence},
    };
    QTemporaryDir m_folder;
    QList<Reading> m_readings;
    QRandomGenerator m_random{QRandomGenerator::global()->generate()};
    QByteArray m_text;
    Outcomes m_outcomes;
    HttpServer m_goodServer; ///< Gives good answers only.
    std::unique_ptr<HttpServer> m_server;
    std::vector<std::unique_ptr<HttpExchange>> m_exchanges;
    std::unique_ptr<Asker> m_asker;
    QList<Stop> m_stops;
};

void InterleavingsTest::addReading(const QString &name, const char *format, ui::Framing framing)
{
    QImage image(320, 200, QImage::Format_RGB32);
    m_random.fillRange(reinterpret_cast<quint32 *>(image.bits()),
        image.sizeInBytes() / qsizetype(sizeof(quint32)));
    const QString file = m_folder.filePath(name);
    QVERIFY(image.save(file, format));
    Reading reading{file, framing, {}};
    reading.whole = reading.read(false);
    QVERIFY(!reading.whole.isNull());
    m_readings += reading;
}

void InterleavingsTest::initTestCase()
{
    addReading(u"cover.png"_s, "png", ui::Framing::Cover);
    addReading(u"fit.jpg"_s, "jpg", ui::Framing::Fit);
}

void InterleavingsTest::open()
{
    // Some give up by themselves, at about the time when the answer comes.
    const std::chrono::milliseconds silence = chosen(2) == 0 ? 1ms + chosen(20) * 1ms : 120s;
    m_exchanges.push_back(std::make_unique<HttpExchange>(HttpLimits{.silence = silence}));
}

void InterleavingsTest::close()
{
    if (!m_exchanges.empty()) {
        m_exchanges.erase(m_exchanges.begin() + chosen(qsizetype(m_exchanges.size())));
    }
}

void InterleavingsTest::post()
{
    m_server->enqueue(m_answers[chosen(m_answers.size())]);
    ask(*m_server);
}

/// Waits until something has ended, if only a request that is answered well.
void InterleavingsTest::hear()
{
    m_goodServer.enqueue(m_answers.first());
    const int before = m_outcomes.ended;
    ask(m_goodServer);
    QVERIFY(testlibs::comesTrue([this, before] { return m_outcomes.ended > before; }));
}

void InterleavingsTest::ask(const HttpServer &server)
{
    if (m_exchanges.empty()) {
        open();
    }
    HttpExchange &exchange = *m_exchanges[size_t(chosen(qsizetype(m_exchanges.size())))];
    m_text += 'p';
    const HttpRequest request{
        .url = server.url(), .headers = {}, .body = [text = m_text] { return text + "body"; }};
    m_asker->awaitAnswer(exchange.post(request, GeminiProvider::readAnswer));
}

/// Its result is what m_text is now, with one letter more. The text is shared between the threads.
std::function<QByteArray()> InterleavingsTest::someWork()
{
    return [text = m_text, turns = chosen(50)] {
        for (int i = 0; i < turns; ++i) {
            std::this_thread::yield();
        }
        QByteArray own = text;
        own += 'w';
        return own;
    };
}

void InterleavingsTest::work()
{
    m_asker->awaitWork(desktop::onWorkerThread(someWork()), m_text + 'w');
    m_text += 'm';
}

void InterleavingsTest::workInTime()
{
    m_asker->awaitInTime(
        desktop::onWorkerThread(someWork(), QDeadlineTimer(chosen(3))), m_text + 'w');
    m_text.clear();
}

void InterleavingsTest::read()
{
    const Reading reading = m_readings[chosen(m_readings.size())];
    const auto stopped = std::make_shared<std::atomic_bool>(false);
    m_stops += stopped;
    m_asker->awaitPicture(
        desktop::onWorkerThread([reading, stopped] { return reading.read(*stopped); }),
        reading.whole, stopped);
}

void InterleavingsTest::stopReading()
{
    if (!m_stops.isEmpty()) {
        *m_stops.takeAt(chosen(m_stops.size())) = true;
    }
}

void InterleavingsTest::replaceAsker()
{
    m_asker = std::make_unique<Asker>(m_outcomes);
}

void InterleavingsTest::goRound()
{
    using Step = void (*)(InterleavingsTest &);
    static constexpr Step steps[] = {
        [](auto &test) { test.open(); },
        [](auto &test) { test.close(); },
        [](auto &test) { test.post(); },
        [](auto &test) { test.post(); },
        [](auto &test) { test.hear(); },
        [](auto &test) { test.release(); },
        [](auto &test) { test.work(); },
        [](auto &test) { test.workInTime(); },
        [](auto &test) { test.read(); },
        [](auto &test) { test.stopReading(); },
        [](auto &test) { test.replaceAsker(); },
        [](auto &) { turn(); },
        [](auto &) { turn(); },
        [](auto &) { std::this_thread::yield(); },
    };
    m_server = std::make_unique<HttpServer>();
    replaceAsker();
    for (int left = 5 + chosen(20); left > 0; --left) {
        steps[chosen(std::size(steps))](*this);
    }
    if (chosen(2) == 0) {
        m_server.reset();
    }
    if (chosen(2) == 0) {
        m_asker.reset();
    }
    m_exchanges.clear();
    m_stops.clear();
    QVERIFY(testlibs::comesTrue([this] { return m_outcomes.ended == m_outcomes.begun; }));
}

void InterleavingsTest::everythingEndsOnceWhateverIsGivenUpMeanwhile()
{
    const int rounds = testlibs::soakCycles(200);
    for (int round = 0; round < rounds && !QTest::currentTestFailed(); ++round) {
        goRound();
    }
    QCoreApplication::processEvents();
    qInfo("%d rounds: %d begun, %d ended, %d of these without a result, %d with an answer", rounds,
        m_outcomes.begun, m_outcomes.ended, m_outcomes.abandoned, m_outcomes.answered);
    QCOMPARE(m_outcomes.ended, m_outcomes.begun);
    QCOMPARE(m_outcomes.wrong, 0);
    // Both ways were gone.
    QVERIFY(m_outcomes.abandoned > 0);
    QVERIFY(m_outcomes.answered > 0);
}

QTEST_GUILESS_MAIN(InterleavingsTest)
#include "interleavingstest.moc"
