#pragma once

#include "home.h"

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QStringList>

/// A program whose calls to the system about files are written down, and where the test says so
/// fail or are cut off by a kill. It tells where its save begins and ends by asking for the files
/// "/the save begins" and "/the save ends".
struct Trace
{
    QProcess::ExitStatus end = QProcess::CrashExit;
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
    /// What the save called, a line each.
    QList<QByteArray> save;
    bool isInjected = false;
};

/// One call of a save, and which one of its name it is, counted from the start of the program.
struct Call
{
    QByteArray name;
    int number;
};

/// Runs the command in the home; @p options are strace's.
Trace traced(
    const Home &home, const QStringList &command, const QStringList &options, mode_t mask = 0022);
/// Every call that the command's save makes in this home.
QList<Call> callsOf(const Home &home, const QStringList &command);
/// strace's options to have something happen at a call: "error=EIO" or "signal=SIGKILL", there
/// only, or from there on with "+".
QStringList inject(const Call &call, const QByteArray &what, const QByteArray &repeat = {});

QByteArray nameOf(const QByteArray &line);
bool makesAFile(const QByteArray &line);
bool setsPermissions(const QByteArray &line);
/// The mode that the line of such a call names.
int modeOf(const QByteArray &line);
/// Where in the save the first call of this name stands that mentions the text, or -1.
qsizetype indexOf(const Trace &trace, const QByteArray &name, const QByteArray &text);
