#pragma once

#include <QObject>

#include <memory>

namespace desktop {

/// Tells that the computer woke from sleep, as macOS tells its programs. Main thread only.
class MacWake : public QObject
{
    Q_OBJECT

public:
    explicit MacWake(QObject *parent = nullptr);
    ~MacWake() override;

Q_SIGNALS:
    void woke();

private:
    struct Observer;
    std::unique_ptr<Observer> m_observer;
};

} // namespace desktop
