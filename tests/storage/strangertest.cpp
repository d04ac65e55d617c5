#include "home.h"
#include "storage/keychain.h"
#include "testlibs/belongings.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTest>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using storage::Keychain;

/// Another user who tries to open whatever turns up beside the key file, over and over, while it
/// is made. PLENAURA_SOAK_CYCLES sets how often it is made.
class StrangerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nobodyElseEverOpensAFileOfKeys_data();
    void nobodyElseEverOpensAFileOfKeys();
};

namespace {

struct Looks
{
    std::atomic<long> rounds;
    std::atomic<long> refused;
    std::atomic<long> opened;
};

bool becomeNobody()
{
    constexpr uid_t nobody = 65534;
    return ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
}

void lookOnce(const char *folder, Looks &looks)
{
    DIR *entries = ::opendir(folder);
    if (entries == nullptr) {
        return;
    }
    while (const dirent *entry = ::readdir(entries)) {
        if (entry->d_type == DT_DIR) {
            continue;
        }
        const int file = ::openat(::dirfd(entries), entry->d_name, O_RDONLY | O_CLOEXEC);
        if (file >= 0) {
            ::close(file);
            ++looks.opened;
        } else if (errno == EACCES) {
            ++looks.refused;
        }
    }
    ::closedir(entries);
    ++looks.rounds;
}

/// A process of another user that looks into the folder as long as this object lives.
class Stranger
{
public:
    explicit Stranger(const QString &folder)
        : m_looks(static_cast<Looks *>(::mmap(
            nullptr, sizeof(Looks), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        const QByteArray name = QFile::encodeName(folder);
        m_process = ::fork();
        if (m_process != 0) {
            return;
        }
        if (becomeNobody()) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            while (true) {
                lookOnce(name.constData(), *m_looks);
            }
        }
        ::_exit(EXIT_FAILURE);
    }
    ~Stranger()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        ::munmap(m_looks, sizeof(Looks));
    }
    Q_DISABLE_COPY_MOVE(Stranger)

    const Looks &looks() const { return *m_looks; }

    /// Waits until it has looked from beginning to end once more; false if it never does.
    bool looksAgain() const
    {
        const QDeadlineTimer deadline(std::chrono::seconds(30));
        const long before = m_looks->rounds;
        // The round that is under way may have begun before.
        while (m_looks->rounds < before + 2 && !deadline.hasExpired()) {
            ::sched_yield();
        }
        return m_looks->rounds >= before + 2;
    }

private:
    Looks *m_looks;
    pid_t m_process = -1;
};

} // namespace

void StrangerTest::initTestCase()
{
    if (::getuid() != 0) {
        // The modes that keep strangers out are traced for everybody in interruptedsavetest.
        QSKIP("Only root can become another user.");
    }
}

void StrangerTest::nobodyElseEverOpensAFileOfKeys_data()
{
    QTest::addColumn<uint>("folderMode");
    QTest::newRow("a folder that all may read") << 0755U;
    QTest::newRow("a folder that all may write") << 0777U;
}

void StrangerTest::nobodyElseEverOpensAFileOfKeys()
{
    QFETCH(const uint, folderMode);
    const Home home;
    const CreationMask none(0);
    home.makeFolders();
    QCOMPARE(::chmod(QFile::encodeName(home.path()).constData(), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(home.keyFolder()).constData(), folderMode), 0);
    const Stranger stranger(home.keyFolder());
    // What all may read, this one does read.
    QVERIFY(put(home.keyFolder() + "/open"_L1, "mine"));
    QVERIFY(stranger.looksAgain());
    QVERIFY(stranger.looks().opened > 0);
    QVERIFY(QFile::remove(home.keyFolder() + "/open"_L1));
    QVERIFY(stranger.looksAgain());

    const long openedBefore = stranger.looks().opened;
    const int saves = testlibs::soakCycles(200);
    for (int save = 0; save < saves; ++save) {
        Keychain::save(u"canary-key"_s, u"gemini"_s);
        QVERIFY(stranger.looksAgain());
        QVERIFY(QFile::remove(home.keyFile()));
    }
    const Looks &looks = stranger.looks();
    qInfo("%d first saves: %ld looks into the folder, %ld files refused, %ld opened.", saves,
        looks.rounds.load(), looks.refused.load(), looks.opened - openedBefore);
    QVERIFY(looks.refused >= saves);
    QCOMPARE(looks.opened.load(), openedBefore);
}

QTEST_GUILESS_MAIN(StrangerTest)
#include "strangertest.moc"
