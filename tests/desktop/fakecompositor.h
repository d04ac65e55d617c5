#pragma once

#include <QByteArray>
#include <QRect>
#include <QTemporaryDir>

#include <thread>
#include <vector>

struct wl_display;

/// A Wayland compositor without a screen, as the session's one as long as it lives.
class FakeCompositor
{
public:
    struct Output
    {
        QByteArray name;
        QRect geometry = {};
    };
    struct Offer
    {
        bool layerShell = false;
        std::vector<Output> outputs;
        int xdgOutputVersion = 3; ///< 0: the compositor keeps names and places to itself.
    };

    explicit FakeCompositor(Offer offer);
    ~FakeCompositor();
    FakeCompositor(const FakeCompositor &) = delete;
    FakeCompositor &operator=(const FakeCompositor &) = delete;

private:
    QTemporaryDir m_folder;
    Offer m_offer;
    wl_display *m_display;
    std::thread m_thread;
};
