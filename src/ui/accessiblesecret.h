#pragma once

#include "ui/accessibleitem.h"
#include "ui/secrettext.h"

namespace ui {

/// What assistive technology learns of a field for a secret: that it is one, its name, and bullets.
/// It may write into the field, but never reads back what stands in it.
class AccessibleSecret : public AccessibleItem,
                         public QAccessibleTextInterface,
                         public QAccessibleEditableTextInterface
{
public:
    using AccessibleItem::AccessibleItem;

    QAccessible::Role role() const override { return QAccessible::EditableText; }
    QAccessible::State state() const override;
    QString text(QAccessible::Text text) const override;
    void setText(QAccessible::Text text, const QString &value) override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    // Reading: bullets only.
    QString text(int startOffset, int endOffset) const override;
    int characterCount() const override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    int selectionCount() const override;
    void selection(int selectionIndex, int *startOffset, int *endOffset) const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int *startOffset, int *endOffset) const override;

    // Writing.
    void deleteText(int startOffset, int endOffset) override;
    void insertText(int offset, const QString &text) override;
    void replaceText(int startOffset, int endOffset, const QString &text) override;

private:
    /// Absent while the field is being made: assistive technology is told of it before it is ready.
    SecretText *secret() const;
    QString masked() const;
};

} // namespace ui
