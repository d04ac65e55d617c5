#include "stage.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

/// Controls as assistive technology has them.
class AccessibleControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void actionsWork();
    void disabledItDoesNothing();
    void anUnknownActionDoesNothing();
    void onlyItsNameAndDescriptionAreTold();
    void itsParentIsTheWindow();
    void itsParentIsTheNextThatIsNotIgnored();
    void withoutAWindowItIsNowhere();
    void withoutASizeItIsInvisible();

private:
    std::unique_ptr<QQuickItem> made(const QByteArray &qml);
    static QAccessibleInterface *answer(const QObject *within, const QString &name);

    Stage m_stage;
    QQmlEngine m_engine;
};

void AccessibleControlTest::initTestCase()
{
    m_stage.windows(); // They bring the module and its answers along.
    m_engine.addImportPath(u"qrc:/"_s);
}

std::unique_ptr<QQuickItem> AccessibleControlTest::made(const QByteArray &qml)
{
    QQmlComponent component(&m_engine);
    component.setData("import QtQuick\nimport Plenaura\n" + qml, {});
    std::unique_ptr<QQuickItem> item(qobject_cast<QQuickItem *>(component.create()));
    if (!item) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    return item;
}

QAccessibleInterface *AccessibleControlTest::answer(const QObject *within, const QString &name)
{
    return QAccessible::queryAccessibleInterface(within->findChild<QQuickItem *>(name));
}

void AccessibleControlTest::actionsWork()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *fourK = control(window, u"4K resolution"_s);
    QAccessibleActionInterface *actions
        = QAccessible::queryAccessibleInterface(fourK)->actionInterface();
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(focused(window), fourK);
    actions->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(stage.manager().fourKEnabled());
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QVERIFY(!stage.manager().fourKEnabled());
}

void AccessibleControlTest::disabledItDoesNothing()
{
    const auto root = made(R"(Item { PushButton {
        objectName: "button"; property int presses: 0; Accessible.onPressAction: ++presses } })");
    QAccessibleInterface *button = answer(root.get(), u"button"_s);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(button->object()->property("presses").toInt(), 1);
    button->object()->setProperty("enabled", false);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(button->object()->property("presses").toInt(), 1);
    QVERIFY(button->state().disabled);
}

void AccessibleControlTest::anUnknownActionDoesNothing()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QQuickItem *fourK = control(window, u"4K resolution"_s);
    QAccessible::queryAccessibleInterface(fourK)->actionInterface()->doAction(u"increase"_s);
    QVERIFY(!stage.manager().fourKEnabled());
    QVERIFY(focused(window) != fourK);
}

void AccessibleControlTest::onlyItsNameAndDescriptionAreTold()
{
    const auto root = made(R"(Item { PushButton {
        objectName: "button"; title: "Go"; Accessible.description: "Leaves" } })");
    QAccessibleInterface *button = answer(root.get(), u"button"_s);
    QCOMPARE(button->text(QAccessible::Name), u"Go"_s);
    QCOMPARE(button->text(QAccessible::Description), u"Leaves"_s);
    QCOMPARE(button->text(QAccessible::Value), QString());
}

void AccessibleControlTest::itsParentIsTheWindow()
{
    QQuickWindow window;
    const auto root = made(R"(Item { PushButton { objectName: "button" } })");
    root->setParentItem(window.contentItem());
    QCOMPARE(answer(root.get(), u"button"_s)->parent()->object(), &window);
}

void AccessibleControlTest::itsParentIsTheNextThatIsNotIgnored()
{
    QQuickWindow window;
    const auto root = made(R"(Item {
        objectName: "group"; Accessible.role: Accessible.Grouping
        Item {
            Accessible.role: Accessible.Pane; Accessible.ignored: true
            PushButton { objectName: "button" }
        } })");
    root->setParentItem(window.contentItem());
    QCOMPARE(answer(root.get(), u"button"_s)->parent()->object(), root.get());
}

void AccessibleControlTest::withoutAWindowItIsNowhere()
{
    const auto root
        = made(R"(Item { PushButton { objectName: "button"; width: 90; height: 30 } })");
    const QAccessibleInterface *button = answer(root.get(), u"button"_s);
    QVERIFY(!button->parent());
    QVERIFY(button->rect().isEmpty());
    QVERIFY(button->state().invisible && button->state().offscreen);
}

void AccessibleControlTest::withoutASizeItIsInvisible()
{
    QQuickWindow window;
    window.resize(200, 100);
    const auto root
        = made(R"(Item { PushButton { objectName: "button"; width: 90; height: 30 } })");
    root->setParentItem(window.contentItem());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QAccessibleInterface *button = answer(root.get(), u"button"_s);
    QVERIFY(!button->state().invisible);
    root->findChild<QQuickItem *>(u"button"_s)->setWidth(0);
    QVERIFY(button->state().invisible);
}

QTEST_MAIN(AccessibleControlTest)
#include "accessiblecontroltest.moc"
