#include "ui/secrettext.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace ui {

namespace {
constexpr char16_t bullet = u'\u2022';

QString onOneLine(QString text)
{
    return text.removeIf([](QChar c) { return c < u' ' || c == QChar::LineSeparator; });
}

using Range = std::pair<int, int>;

/// What @p event deletes. Words are not told apart: their ends would show through the bullets.
std::optional<Range> deleted(const QKeyEvent &event, Range selection, int cursor)
{
    constexpr int end = std::numeric_limits<int>::max();
    const bool selected = selection.first < selection.second;
    if (event.key() == Qt::Key_Backspace && event.modifiers() == Qt::NoModifier) {
        return selected ? selection : Range(std::max(0, cursor - 1), cursor);
    }
    if (event.matches(QKeySequence::Delete)) {
        return selected ? selection : Range(cursor, cursor + 1);
    }
    if (event.matches(QKeySequence::Cut)) {
        return selection;
    }
    if (event.matches(QKeySequence::DeleteStartOfWord)) {
        return Range(0, selection.second);
    }
    if (event.matches(QKeySequence::DeleteEndOfWord)
        || event.matches(QKeySequence::DeleteEndOfLine)) {
        return Range(selection.first, end);
    }
    return {};
}
} // namespace

QString SecretText::masked() const
{
    return {m_text.size(), bullet};
}

void SecretText::setText(const QString &text)
{
    if (text == m_text) {
        return;
    }
    m_text = text;
    Q_EMIT changed();
}

int SecretText::edit(int key, int modifiers, const QString &typed, int start, int end, int cursor)
{
    const QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers::fromInt(modifiers), typed);
    if (event.matches(QKeySequence::Paste)) {
        return replace(start, end, QGuiApplication::clipboard()->text());
    }
    if (const auto range = deleted(event, {start, end}, cursor)) {
        return replace(range->first, range->second, {});
    }
    if (event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo)) {
        return cursor; // The field would undo bullets.
    }
    const bool command
        = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool printable = !typed.isEmpty() && typed.front().isPrint();
    return printable && !command ? replace(start, end, typed) : -1;
}

int SecretText::pasteSelection(int position)
{
    return replace(position, position, QGuiApplication::clipboard()->text(QClipboard::Selection));
}

int SecretText::replace(qsizetype start, qsizetype end, const QString &text)
{
    const auto from = std::clamp<qsizetype>(start, 0, m_text.size());
    const auto to = std::clamp<qsizetype>(end, from, m_text.size());
    const QString inserted = onOneLine(text);
    setText(m_text.first(from) + inserted + m_text.sliced(to));
    return int(from + inserted.size());
}

void SecretText::takeEdit(const QString &edited)
{
    const qsizetype shorter = std::min(edited.size(), m_text.size());
    qsizetype head = 0;
    while (head < shorter && edited[head] == bullet) {
        ++head;
    }
    qsizetype tail = 0;
    while (tail < shorter - head && edited[edited.size() - 1 - tail] == bullet) {
        ++tail;
    }
    replace(head, m_text.size() - tail, edited.sliced(head, edited.size() - head - tail));
}

} // namespace ui
