#include "ui/accessiblesecret.h"

namespace ui {

SecretText *AccessibleSecret::secret() const
{
    return item()->property("secret").value<SecretText *>();
}

QString AccessibleSecret::masked() const
{
    const SecretText *text = secret();
    return text ? text->masked() : QString();
}

QAccessible::State AccessibleSecret::state() const
{
    QAccessible::State state = AccessibleItem::state();
    state.editable = item()->isEnabled();
    state.passwordEdit = true;
    return state;
}

QString AccessibleSecret::text(QAccessible::Text text) const
{
    switch (text) {
    case QAccessible::Name:
        // Qt Quick keeps the Accessible name of a password field to itself.
        return item()->property("placeholderText").toString();
    case QAccessible::Value:
        return masked();
    default:
        return {};
    }
}

void AccessibleSecret::setText(QAccessible::Text text, const QString &value)
{
    if (text == QAccessible::Value && secret()) {
        secret()->takeEdit(value);
    }
}

void *AccessibleSecret::interface_cast(QAccessible::InterfaceType type)
{
    switch (type) {
    case QAccessible::TextInterface:
        return static_cast<QAccessibleTextInterface *>(this);
    case QAccessible::EditableTextInterface:
        return static_cast<QAccessibleEditableTextInterface *>(this);
    default:
        return nullptr;
    }
}

QString AccessibleSecret::text(int startOffset, int endOffset) const
{
    const int end = endOffset < 0 ? characterCount() : endOffset;
    return masked().mid(startOffset, end - startOffset);
}

int AccessibleSecret::characterCount() const
{
    return int(masked().size());
}

int AccessibleSecret::cursorPosition() const
{
    return item()->property("cursorPosition").toInt();
}

void AccessibleSecret::setCursorPosition(int position)
{
    item()->setProperty("cursorPosition", position);
}

int AccessibleSecret::selectionCount() const
{
    int start = 0;
    int end = 0;
    selection(0, &start, &end);
    return start < end ? 1 : 0;
}

void AccessibleSecret::selection(int /*selectionIndex*/, int *startOffset, int *endOffset) const
{
    *startOffset = item()->property("selectionStart").toInt();
    *endOffset = item()->property("selectionEnd").toInt();
}

void AccessibleSecret::addSelection(int startOffset, int endOffset)
{
    setSelection(0, startOffset, endOffset);
}

void AccessibleSecret::removeSelection(int /*selectionIndex*/)
{
    QMetaObject::invokeMethod(item(), "deselect");
}

void AccessibleSecret::setSelection(int /*selectionIndex*/, int startOffset, int endOffset)
{
    QMetaObject::invokeMethod(item(), "select", Q_ARG(int, startOffset), Q_ARG(int, endOffset));
}

QRect AccessibleSecret::characterRect(int /*offset*/) const
{
    return rect();
}

int AccessibleSecret::offsetAtPoint(const QPoint & /*point*/) const
{
    return -1;
}

void AccessibleSecret::scrollToSubstring(int startIndex, int /*endIndex*/)
{
    setCursorPosition(startIndex);
}

QString AccessibleSecret::attributes(int /*offset*/, int *startOffset, int *endOffset) const
{
    *startOffset = 0;
    *endOffset = characterCount();
    return {};
}

void AccessibleSecret::deleteText(int startOffset, int endOffset)
{
    replaceText(startOffset, endOffset, {});
}

void AccessibleSecret::insertText(int offset, const QString &text)
{
    replaceText(offset, offset, text);
}

void AccessibleSecret::replaceText(int startOffset, int endOffset, const QString &text)
{
    if (secret()) {
        secret()->replace(startOffset, endOffset < 0 ? characterCount() : endOffset, text);
    }
}

} // namespace ui
