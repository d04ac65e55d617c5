#include "ui/picture.h"

#include "desktop/workerthread.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QPointer>
#include <QQuickWindow>
#include <QSGImageNode>

namespace ui {

Picture::Picture(QQuickItem *parent)
    : QQuickItem(parent), m_stopped(std::make_shared<std::atomic_bool>(false))
{
    setFlag(ItemHasContents);
}

Picture::~Picture()
{
    *m_stopped = true;
}

void Picture::setSource(const QUrl &source)
{
    if (source == m_source) {
        return;
    }
    m_source = source;
    m_image = {};
    m_imageIsNew = true;
    setStatus(source.isEmpty() ? Null : Loading);
    restart();
    Q_EMIT sourceChanged();
}

void Picture::setBox(QSizeF box)
{
    if (box == m_box) {
        return;
    }
    m_box = box;
    restart();
    Q_EMIT boxChanged();
}

void Picture::setFit(bool fit)
{
    if (fit == isFit()) {
        return;
    }
    m_framing = fit ? Framing::Fit : Framing::Cover;
    restart();
    Q_EMIT fitChanged();
}

void Picture::recheck()
{
    // A picture that was never decoded is looked at when it is.
    if (!m_decodeIsDue && stampOf(m_source) != m_stamp) {
        restart();
    }
}

Picture::Stamp Picture::stampOf(const QUrl &url)
{
    const QFileInfo file(url.toLocalFile());
    return file.exists() ? Stamp{file.lastModified(), file.size()} : Stamp{};
}

void Picture::restart()
{
    *m_stopped = true;
    m_decodeIsDue = true;
    // Several properties often change together; one frame asks for one decode.
    polish();
    update();
}

void Picture::updatePolish()
{
    if (!m_decodeIsDue || m_source.isEmpty() || m_box.isEmpty()) {
        return;
    }
    if (!m_placeIsSeen) {
        // Decoding takes every core, and the first frame of a new window would have to wait.
        connect(window(), &QQuickWindow::frameSwapped, this, &Picture::onPlaceSeen,
            Qt::ConnectionType(Qt::AutoConnection | Qt::UniqueConnection));
        return;
    }
    m_decodeIsDue = false;
    m_stamp = stampOf(m_source);
    decode();
}

void Picture::onPlaceSeen()
{
    disconnect(window(), &QQuickWindow::frameSwapped, this, &Picture::onPlaceSeen);
    m_placeIsSeen = true;
    polish();
}

QCoro::Task<> Picture::decode()
{
    const QPointer<Picture> self(this);
    const auto stopped = std::make_shared<std::atomic_bool>(false);
    m_stopped = stopped;
    const QFuture<QImage> reading = desktop::onWorkerThread(
        [file = m_source.toLocalFile(), box = m_box.toSize(), framing = m_framing, stopped] {
            return readPicture(file, box, framing, *stopped);
        });
    const QImage image = co_await reading;
    if (!self || *stopped) {
        co_return;
    }
    m_image = image;
    m_imageIsNew = true;
    setStatus(image.isNull() ? Unreadable : Ready);
    update();
}

void Picture::setStatus(Status status)
{
    if (status == m_status) {
        return;
    }
    m_status = status;
    Q_EMIT statusChanged();
}

void Picture::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    update();
}

QRectF Picture::visiblePart() const
{
    const QRectF whole(QPointF(), m_image.size());
    if (isFit()) {
        return whole;
    }
    QRectF part(QPointF(), size().scaled(whole.size(), Qt::KeepAspectRatio));
    part.moveCenter(whole.center());
    return part;
}

QRectF Picture::place() const
{
    if (!isFit()) {
        return boundingRect();
    }
    QRectF place(QPointF(), m_image.size().toSizeF().scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(boundingRect().center());
    return place;
}

QSGNode *Picture::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    if (m_image.isNull()) {
        delete node;
        return nullptr;
    }
    auto *imageNode = static_cast<QSGImageNode *>(node);
    if (!imageNode) {
        imageNode = window()->createImageNode();
        imageNode->setOwnsTexture(true);
        m_imageIsNew = true;
    }
    if (m_imageIsNew) {
        imageNode->setTexture(window()->createTextureFromImage(m_image));
        imageNode->setFiltering(QSGTexture::Linear);
        m_imageIsNew = false;
    }
    imageNode->setRect(place());
    imageNode->setSourceRect(visiblePart());
    return imageNode;
}

} // namespace ui
