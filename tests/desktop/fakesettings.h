#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// To be made before anything asks for settings: gives this process the schemas of GNOME's, MATE's
/// and Cinnamon's backgrounds, whichever are installed, and no others.
class FakeSettings
{
public:
    explicit FakeSettings()
    {
        QFile schemas(m_folder.filePath(QStringLiteral("test.gschema.xml")));
        if (!schemas.open(QIODevice::WriteOnly)) {
            qFatal("The schemas cannot be written.");
        }
        schemas.write("<schemalist>");
        schemas.write(background("org.gnome.desktop.background", "/org/gnome/desktop/background/",
            {"picture-uri", "picture-uri-dark"}));
        schemas.write(background("org.cinnamon.desktop.background",
            "/org/cinnamon/desktop/background/", {"picture-uri"}));
        schemas.write(
            background("org.mate.background", "/org/mate/background/", {"picture-filename"}));
        schemas.write(
            R"(<schema id="org.gnome.desktop.interface" path="/org/gnome/desktop/interface/">
            <key name="color-scheme" type="s"><default>'default'</default></key></schema>)");
        schemas.write("</schemalist>");
        schemas.close();
        if (QProcess::execute(QStringLiteral("glib-compile-schemas"), {m_folder.path()}) != 0) {
            qFatal("The schemas cannot be compiled.");
        }
        qputenv("GSETTINGS_SCHEMA_DIR", m_folder.path().toLocal8Bit());
        // Where schemas lie that happen to be installed.
        qputenv("XDG_DATA_DIRS", m_folder.path().toLocal8Bit());
    }

private:
    static QByteArray background(
        const QByteArray &id, const QByteArray &path, const QByteArrayList &pictures)
    {
        QByteArray schema = "<schema id=\"" + id + "\" path=\"" + path + "\">";
        for (const QByteArray &key : pictures) {
            schema += "<key name=\"" + key + "\" type=\"s\"><default>''</default></key>";
        }
        schema += R"(<key name="primary-color" type="s"><default>'#0000ff'</default></key>
            <key name="secondary-color" type="s"><default>'#000000'</default></key>
            <key name="color-shading-type" type="s"><default>'solid'</default></key>
            <key name="picture-opacity" type="i"><default>100</default></key>
            <key name="picture-options" type="s"><choices>)";
        for (const char *option :
            {"none", "wallpaper", "centered", "scaled", "stretched", "zoom", "spanned"}) {
            schema += QByteArrayLiteral("<choice value=\"") + option + "\"/>";
        }
        return schema + "</choices><default>'zoom'</default></key></schema>";
    }

    QTemporaryDir m_folder;
};
