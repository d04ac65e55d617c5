#include "ui/picture.h"

#include <QCoroFuture>
#include <QPointer>
#include <QPromise>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QThreadPool>

namespace ui {

namespace {

struct Order
{
    QString file;
    QSize box;
    Framing framing;
    std::shared_ptr<std::atomic_bool> stopped;
};

QFuture<QImage> readInPool(const Order &order)
{
    const auto promise = std::make_shared<QPromise<QImage>>();
    promise->start();
    QThreadPool::globalInstance()->start([promise, order] {
        const bool wanted = !*order.stopped;
        promise->addResult(
            wanted ? readPicture(order.file, order.box, order.framing, *order.stopped) : QImage());
        promise->finish();
    });
    return promise->future();
}

} // namespace

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

void Picture::restart()
{
    *m_stopped = true;
    setStatus(m_source.isEmpty() ? Null : Loading);
    // Several properties often change together; one frame asks for one decode.
    polish();
    update();
}

void Picture::updatePolish()
{
    if (m_status == Loading && *m_stopped && !m_box.isEmpty()) {
        decode();
    }
}

QCoro::Task<> Picture::decode()
{
    const QPointer<Picture> self(this);
    const auto stopped = std::make_shared<std::atomic_bool>(false);
    m_stopped = stopped;
    // Made before the await: GCC 12 destroys braced temporaries of an awaited call twice.
    const Order order{m_source.toLocalFile(), m_box.toSize(), m_framing, stopped};
    const QImage image = co_await readInPool(order);
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
    if (m_image.isNull() || size().isEmpty()) {
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
