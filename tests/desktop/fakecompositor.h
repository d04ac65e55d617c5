#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <thread>
#include <vector>

struct wl_display;

/// A Wayland compositor without a screen, as the session's one as long as it lives.
class FakeCompositor
{
public:
    struct Offer
    {
        bool layerShell = false;
        std::vector<QByteArray> outputs;
        int outputVersion = 4;
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
