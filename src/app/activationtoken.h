#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace app {

/// By what a desktop knows that the person has just asked a launcher for this program, and lets its
/// window come to the front although another program has the keyboard. It is handed over in the
/// environment of a start, or with a call over the bus.
class ActivationToken
{
public:
    /// To be asked before there is an application, as Qt takes out of the environment what it finds
    /// there.
    static ActivationToken ofThisStart();
    static ActivationToken ofCall(const QVariantMap &platformData);

    QVariantMap platformData() const;

    /// The window that is shown next uses it: Qt looks for it in the environment, and so do ours.
    void adopt() const;
    /// One that no window has used would be too old for the next one.
    static void drop();

private:
    ActivationToken(QByteArray token, QByteArray startupId);

    QByteArray m_token;
    QByteArray m_startupId;
};

} // namespace app
