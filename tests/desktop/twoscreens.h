#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// To be made before the application: on the offscreen platform there then are two screens, "left"
/// with 80 x 60 pixels, which is the main one, and "right" with 100 x 60.
class TwoScreens
{
public:
    explicit TwoScreens()
    {
        const QString file = m_folder.filePath(QStringLiteral("screens.json"));
        QFile description(file);
        if (!description.open(QIODevice::WriteOnly)) {
            qFatal("The description of the screens cannot be written.");
        }
        description.write(R"({"screens": [
            {"name": "left", "x": 0, "y": 0, "width": 80, "height": 60},
            {"name": "right", "x": 80, "y": 0, "width": 100, "height": 60}]})");
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.toLocal8Bit());
    }

private:
    QTemporaryDir m_folder;
};
