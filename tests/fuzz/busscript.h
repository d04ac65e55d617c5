#pragma once

#include <QByteArray>
#include <QList>

namespace fuzzing {

/// One thing that somebody on a bus does, as a line of an input says it:
///
///     answer ('text', uint32 7)
///     error org.freedesktop.DBus.Error.AccessDenied Why it was refused
///     signal /path org.example.Interface.Member ('text',)
///     call /path org.example.Interface.Member ('text',)
///     bytes Anything at all, on the wire as it is; with it the connection ends
///
/// Values are written as GLib's gdbus prints them. What cannot be read as a value is a text.
struct BusAct
{
    enum Kind { Answer, Error, Signal, Call, Bytes };

    Kind kind = Answer;
    QByteArray path = {};
    QByteArray interface = {}; ///< Of errors, the whole name.
    QByteArray member = {};
    QByteArray text = {}; ///< The values, or what else is at the end of the line.

    /// Whether it waits for somebody to call.
    bool isReply() const { return kind == Answer || kind == Error; }
};

/// Every text is a script; a line that begins in no known way is an answer.
QList<BusAct> busScript(const QByteArray &text);

/// The message on the wire. A reply goes to the call with the number @p serial. Empty where no
/// message can be made of the act, as where the bus has no such type.
QByteArray onTheWire(const BusAct &act, uint serial);

} // namespace fuzzing
