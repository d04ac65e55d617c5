#include "core/settings.h"
#include "input.h"
#include "scratchfolder.h"

#include <QSettings>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    fuzzing::silenceQt();
    return 0;
}

/// Every setting of a file is read as every kind there is.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const fuzzing::ScratchFolder folder;
    // QSettings keeps what it read of the last files; a name that comes back would not be read.
    static int number = 0;
    const QString name = u"%1.conf"_s.arg(++number);
    const QByteArray contents = fuzzing::bytes(data, size);
    folder.put(name, contents);
    {
        QSettings store(folder.path(name), QSettings::IniFormat);
        const core::Settings settings(store);
        for (const QString &key : store.allKeys() + QStringList{u"missing"_s}) {
            (void)settings.text(key);
            (void)settings.boolean(key);
            (void)settings.integer(key);
        }
        fuzzing::require(!settings.text(u"no such setting"_s) || contents.contains('='));
    }
    QFile file(folder.path(name));
    // Reading writes nothing back.
    fuzzing::require(file.open(QIODevice::ReadOnly) && file.readAll() == contents);
    fuzzing::require(file.remove());
    return 0;
}
