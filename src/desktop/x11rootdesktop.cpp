#include "desktop/x11rootdesktop.h"

#include "desktop/composition.h"
#include "desktop/workerthread.h"
#include "desktop/x11display.h"

#include <QCoroFuture>
#include <QSysInfo>

#include <algorithm>
#include <array>
#include <mutex>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

// The two properties by which programs find the root window's picture. A picture that both name
// was left behind by a program like ours, for the next one to remove.
constexpr std::array pictureProperties{"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"};
// Half of what a server must take in one request, and more than its longest possible row.
constexpr int stripeBytes = 128 * 1024;

const QString notKept = u"The X server did not keep the picture"_s;

QRect rootRect(const X11Display &display)
{
    return {0, 0, display.screen().width_in_pixels, display.screen().height_in_pixels};
}

// A name in a property outlives what it names, and may by then name something else.
bool isPixmapForRoot(const X11Display &display, xcb_pixmap_t id)
{
    xcb_connection_t *connection = display.connection();
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, id), nullptr));
    const XcbReply<xcb_get_window_attributes_reply_t> window(xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, id), nullptr));
    return geometry && !window && geometry->depth == display.screen().root_depth;
}

/// Absent where the property is missing or names nothing that is there.
std::optional<xcb_pixmap_t> pictureNamedBy(const X11Display &display, const char *property)
{
    const std::vector<uint32_t> ids
        = display.property(display.root(), display.atom(property), XCB_ATOM_PIXMAP);
    if (ids.size() != 1 || !isPixmapForRoot(display, ids.front())) {
        return {};
    }
    return ids.front();
}

/// How the server keeps pixels of the root window; absent where we know no such format.
std::optional<QImage::Format> pixelFormat(const X11Display &display)
{
    const xcb_setup_t *setup = xcb_get_setup(display.connection());
    const bool sameByteOrder = (setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST)
        == (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    if (!sameByteOrder) {
        return {};
    }
    const int depth = display.screen().root_depth;
    return depth == 24 || depth == 32 ? std::optional(QImage::Format_RGB32)
        : depth == 16                 ? std::optional(QImage::Format_RGB16)
                                      : std::nullopt;
}

/// Calls @p handle with each part of @p image that fits into one request, and where it is.
template <typename Handle>
bool everyStripe(const QImage &image, Handle handle)
{
    const int rows = std::max<int>(1, stripeBytes / image.bytesPerLine());
    for (int y = 0; y < image.height(); y += rows) {
        if (!handle(y, std::min(rows, image.height() - y))) {
            return false;
        }
    }
    return true;
}

/// One change of the root window's picture. Unless kept, it is gone with the connection.
class RootPicture
{
public:
    explicit RootPicture(const X11Display &display)
        : m_display(display), m_pixmap(xcb_generate_id(display.connection()))
    {
    }

    xcb_pixmap_t pixmap() const { return m_pixmap; }

    [[nodiscard]] bool create() const
    {
        const QSize size = rootRect(m_display).size();
        return succeeds(xcb_create_pixmap_checked(connection(), m_display.screen().root_depth,
            m_pixmap, m_display.root(), size.width(), size.height()));
    }

    /// What all screens show now; black where nobody ever set anything.
    [[nodiscard]] bool fillWithPresentPicture() const
    {
        const auto present = presentPicture(pictureProperties.front());
        const xcb_gcontext_t brush = xcb_generate_id(connection());
        if (present) {
            const std::array<uint32_t, 2> values{XCB_FILL_STYLE_TILED, *present};
            xcb_create_gc(
                connection(), brush, m_pixmap, XCB_GC_FILL_STYLE | XCB_GC_TILE, values.data());
        } else {
            const uint32_t black = m_display.screen().black_pixel;
            xcb_create_gc(connection(), brush, m_pixmap, XCB_GC_FOREGROUND, &black);
        }
        const QSize size = rootRect(m_display).size();
        const xcb_rectangle_t all{0, 0, uint16_t(size.width()), uint16_t(size.height())};
        return succeeds(xcb_poly_fill_rectangle_checked(connection(), m_pixmap, brush, 1, &all));
    }

    [[nodiscard]] bool draw(const QImage &image, QPoint topLeft) const
    {
        const xcb_gcontext_t brush = xcb_generate_id(connection());
        xcb_create_gc(connection(), brush, m_pixmap, 0, nullptr);
        return everyStripe(image, [&](int y, int rows) {
            return succeeds(xcb_put_image_checked(connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_pixmap,
                brush, image.width(), rows, topLeft.x(), topLeft.y() + y, 0,
                m_display.screen().root_depth, rows * image.bytesPerLine(),
                image.constScanLine(y)));
        });
    }

    /// Puts the picture in the place of the present one, for good.
    [[nodiscard]] bool keep() const
    {
        // Nobody else may come between looking for the old picture and removing it.
        xcb_grab_server(connection());
        const auto first = presentPicture(pictureProperties.front());
        const auto second = presentPicture(pictureProperties.back());
        // First of all: were the connection to end in between, what is named would be gone.
        xcb_set_close_down_mode(connection(), XCB_CLOSE_DOWN_RETAIN_PERMANENT);
        for (const char *property : pictureProperties) {
            xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, m_display.root(),
                m_display.atom(property), XCB_ATOM_PIXMAP, 32, 1, &m_pixmap);
        }
        const auto background = xcb_change_window_attributes_checked(
            connection(), m_display.root(), XCB_CW_BACK_PIXMAP, &m_pixmap);
        const auto shown = xcb_clear_area_checked(connection(), 0, m_display.root(), 0, 0, 0, 0);
        if (first && first == second) {
            xcb_kill_client(connection(), *first);
        }
        // When the last one is answered, all of it is done.
        const auto end = xcb_ungrab_server_checked(connection());
        return succeeds(background) && succeeds(shown) && succeeds(end);
    }

private:
    xcb_connection_t *connection() const { return m_display.connection(); }

    /// Servers give the numbers of clients that are gone to new ones, and what is named may be the
    /// new picture itself.
    std::optional<xcb_pixmap_t> presentPicture(const char *property) const
    {
        const auto named = pictureNamedBy(m_display, property);
        return named == m_pixmap ? std::nullopt : named;
    }

    bool succeeds(xcb_void_cookie_t request) const
    {
        return !XcbReply<xcb_generic_error_t>(xcb_request_check(connection(), request))
            && xcb_connection_has_error(connection()) == 0;
    }

    const X11Display &m_display;
    const xcb_pixmap_t m_pixmap;
};

bool shows(const X11Display &display, xcb_pixmap_t pixmap, const QImage &image, QPoint topLeft)
{
    return everyStripe(image, [&](int y, int rows) {
        const auto request = xcb_get_image(display.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap,
            topLeft.x(), topLeft.y() + y, image.width(), rows, UINT32_MAX);
        const XcbReply<xcb_get_image_reply_t> reply(
            xcb_get_image_reply(display.connection(), request, nullptr));
        if (!reply || xcb_get_image_data_length(reply.get()) < rows * image.bytesPerLine()) {
            return false;
        }
        const QImage kept(xcb_get_image_data(reply.get()), image.width(), rows,
            image.bytesPerLine(), image.format());
        const QImage wanted(
            image.constScanLine(y), image.width(), rows, image.bytesPerLine(), image.format());
        return kept == wanted;
    });
}

/// Asks over a connection of its own, which also shows that the picture outlived the one that made
/// it.
SetResult readBack(xcb_pixmap_t pixmap, const QImage &image, QPoint topLeft)
{
    const auto display = X11Display::open();
    if (!display || pictureNamedBy(*display, pictureProperties.front()) != pixmap
        || !shows(*display, pixmap, image, topLeft)) {
        return tl::make_unexpected(notKept);
    }
    return {};
}

SetResult paint(const QImage &image, const QRect &screen)
{
    // When changes overlap, each must start from what the one before has left.
    static std::mutex oneAtATime;
    const std::lock_guard turn(oneAtATime);
    auto display = X11Display::open();
    if (!display) {
        return tl::make_unexpected(u"The X server cannot be reached"_s);
    }
    const auto format = pixelFormat(*display);
    if (!format) {
        return tl::make_unexpected(u"The screen's colour depth is not supported"_s);
    }
    const QRect area = screen & rootRect(*display);
    if (area.isEmpty()) {
        return tl::make_unexpected(u"The screen is no longer there"_s);
    }
    const QImage picture = compose({{area, area, image}}).convertToFormat(*format);
    const RootPicture root(*display);
    if (!root.create() || !root.fillWithPresentPicture() || !root.draw(picture, area.topLeft())) {
        return tl::make_unexpected(u"The X server refused the picture"_s);
    }
    const bool isKept = root.keep();
    display.reset();
    if (!isKept) {
        return tl::make_unexpected(notKept);
    }
    return readBack(root.pixmap(), picture, area.topLeft());
}

} // namespace

QCoro::Task<SetResult> X11RootDesktop::setPicture(Picture picture, Screen screen)
{
    const QFuture<SetResult> painted = onWorkerThread(
        [image = picture.image, geometry = screen.geometry] { return paint(image, geometry); });
    co_return co_await painted;
}

} // namespace desktop
