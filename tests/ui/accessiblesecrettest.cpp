#include "stage.h"

#include "storage/keychain.h"
#include "ui/secrettext.h"

#include <QAccessible>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using namespace ui::fakes;
using storage::Keychain;

namespace {

const auto storedKey = u"abcdef"_s;

QString bullets(qsizetype count)
{
    return {count, u'\u2022'};
}

/// The field of a stored key, as assistive technology has it.
class KeyField
{
public:
    KeyField()
    {
        Keychain::save(storedKey, u"gemini"_s);
        m_item = control(m_stage.openSettings(), u"Gemini API Key"_s);
        m_field = QAccessible::queryAccessibleInterface(m_item);
    }

    bool isThere() const { return m_field && text() && editing(); }
    QAccessibleInterface *operator->() const { return m_field; }
    QAccessibleTextInterface *text() const { return m_field->textInterface(); }
    QAccessibleEditableTextInterface *editing() const { return m_field->editableTextInterface(); }
    QQuickItem *item() const { return m_item; }
    /// What stands in the field, which nobody is told.
    QString secret() const { return m_item->property("secret").value<ui::SecretText *>()->text(); }

private:
    Stage m_stage;
    QQuickItem *m_item = nullptr;
    QAccessibleInterface *m_field = nullptr;
};

} // namespace

/// The field of a key, read and written by assistive technology.
class AccessibleSecretTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itReadsAsAFieldOfBullets();
    void partsReadAsBullets_data();
    void partsReadAsBullets();
    void whatIsWrittenIsTaken_data();
    void whatIsWrittenIsTaken();
    void onlyTheValueCanBeWritten();
    void selectingAndDeselecting();
    void theCursorGoesWhereItIsPut();
    void disabledItCannotBeEdited();
    void withoutItsSecretItIsEmpty();
};

void AccessibleSecretTest::itReadsAsAFieldOfBullets()
{
    const KeyField field;
    QVERIFY(field.isThere());
    QCOMPARE(field->role(), QAccessible::EditableText);
    QVERIFY(field->state().passwordEdit && field->state().editable);
    QCOMPARE(field->text(QAccessible::Name), u"Gemini API Key"_s);
    QCOMPARE(field->text(QAccessible::Value), bullets(6));
    QCOMPARE(field->text(QAccessible::Help), QString());
    QVERIFY(!field->actionInterface());
}

void AccessibleSecretTest::partsReadAsBullets_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("expected");
    QTest::newRow("all of it") << 0 << 6 << bullets(6);
    QTest::newRow("some in between") << 2 << 4 << bullets(2);
    QTest::newRow("up to the end") << 4 << -1 << bullets(2);
}

void AccessibleSecretTest::partsReadAsBullets()
{
    QFETCH(const int, start);
    QFETCH(const int, end);
    const KeyField field;
    QTEST(field.text()->text(start, end), "expected");
    QCOMPARE(field.text()->characterCount(), 6);
}

void AccessibleSecretTest::whatIsWrittenIsTaken_data()
{
    using Write = std::function<void(const KeyField &)>;
    QTest::addColumn<Write>("write");
    QTest::addColumn<QString>("expected");
    QTest::newRow("as a value") << Write([](const KeyField &field) {
        field->setText(QAccessible::Value, bullets(3) + u"x"_s + bullets(3));
    }) << u"abcxdef"_s;
    QTest::newRow("inserted") << Write([](const KeyField &field) {
        field.editing()->insertText(2, u"xy"_s);
    }) << u"abxycdef"_s;
    QTest::newRow("deleted") << Write([](const KeyField &field) {
        field.editing()->deleteText(2, 4);
    }) << u"abef"_s;
    QTest::newRow("deleted up to the end")
        << Write([](const KeyField &field) { field.editing()->deleteText(2, -1); }) << u"ab"_s;
    QTest::newRow("replaced") << Write([](const KeyField &field) {
        field.editing()->replaceText(0, 2, u"xyz"_s);
    }) << u"xyzcdef"_s;
}

void AccessibleSecretTest::whatIsWrittenIsTaken()
{
    QFETCH(const std::function<void(const KeyField &)>, write);
    const KeyField field;
    write(field);
    QTEST(field.secret(), "expected");
    QCOMPARE(field.item()->property("text").toString(), bullets(field.secret().size()));
}

void AccessibleSecretTest::onlyTheValueCanBeWritten()
{
    const KeyField field;
    field->setText(QAccessible::Name, u"something else"_s);
    QCOMPARE(field.secret(), storedKey);
}

void AccessibleSecretTest::selectingAndDeselecting()
{
    const KeyField field;
    QCOMPARE(field.text()->selectionCount(), 0);
    field.text()->addSelection(1, 3);
    QCOMPARE(field.text()->selectionCount(), 1);
    int start = 0;
    int end = 0;
    field.text()->selection(0, &start, &end);
    QCOMPARE(start, 1);
    QCOMPARE(end, 3);
    field.text()->removeSelection(0);
    QCOMPARE(field.text()->selectionCount(), 0);
}

void AccessibleSecretTest::theCursorGoesWhereItIsPut()
{
    const KeyField field;
    field.text()->setCursorPosition(2);
    QCOMPARE(field.text()->cursorPosition(), 2);
    field.text()->scrollToSubstring(5, 6);
    QCOMPARE(field.text()->cursorPosition(), 5);
}

void AccessibleSecretTest::disabledItCannotBeEdited()
{
    const KeyField field;
    field.item()->setEnabled(false);
    QVERIFY(!field->state().editable);
    QVERIFY(field->state().disabled);
}

// Assistive technology hears of a field that is still being made.
void AccessibleSecretTest::withoutItsSecretItIsEmpty()
{
    const KeyField field;
    QPointer<ui::SecretText> secret = field.item()->property("secret").value<ui::SecretText *>();
    field.item()->setProperty("secret", QVariant::fromValue<ui::SecretText *>(nullptr));
    QCOMPARE(field->text(QAccessible::Value), QString());
    QCOMPARE(field.text()->characterCount(), 0);
    field->setText(QAccessible::Value, u"new"_s);
    field.editing()->insertText(0, u"new"_s);
    QCOMPARE(secret->text(), storedKey);
}

QTEST_MAIN(AccessibleSecretTest)
#include "accessiblesecrettest.moc"
