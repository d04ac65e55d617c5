#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// To be made before the application: on the offscreen platform there then are two screens, "left"
/// with 80 x 60 pixels, which is the main one, and "right" with 100 x 60. With a higher density, as
/// many pixels lie in each of these, as Wayland has it.
class TwoScreens
{
public:
    explicit TwoScreens(int density = 1)
    {
        const QString file = m_folder.filePath(QStringLiteral("screens.json"));
        QFile description(file);
        if (!description.open(QIODevice::WriteOnly)) {
            qFatal("The description of the screens cannot be written.");
        }
        const QByteArray dpr = QByteArray::number(density);
        description.write(R"({"screens": [
            {"name": "left", "x": 0, "y": 0, "width": 80, "height": 60, "dpr": )"
            + dpr + R"(},
            {"name": "right", "x": 80, "y": 0, "width": 100, "height": 60, "dpr": )"
            + dpr + "}]}");
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.toLocal8Bit());
    }

private:
    QTemporaryDir m_folder;
};
