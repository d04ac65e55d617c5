#pragma once

#include "ui/picturereader.h"

#include <QCoroTask>
#include <QDateTime>
#include <QImage>
#include <QQuickItem>
#include <QUrl>

#include <atomic>
#include <memory>

namespace ui {

/// A picture file on screen. Each one decodes its file for itself, on another thread and only as
/// large as it is told; nothing is shared or kept.
class Picture : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(QSizeF box READ box WRITE setBox NOTIFY boxChanged)
    Q_PROPERTY(bool fit READ isFit WRITE setFit NOTIFY fitChanged)
    Q_PROPERTY(Status status READ status NOTIFY statusChanged)

public:
    /// Loading is only the first time: a picture that is decoded anew, for a larger box for
    /// instance, stays Ready and on screen until the new one is there.
    enum Status { Null, Loading, Ready, Unreadable };
    Q_ENUM(Status)

    explicit Picture(QQuickItem *parent = nullptr);
    ~Picture() override;

    QUrl source() const { return m_source; }
    void setSource(const QUrl &source);
    /// What the picture is decoded for, in device pixels. Nothing is decoded while it is empty.
    /// Kept apart from the item's size, so that a layout that settles does not decode again.
    QSizeF box() const { return m_box; }
    void setBox(QSizeF box);
    /// Whole within the item instead of filling it.
    bool isFit() const { return m_framing == Framing::Fit; }
    void setFit(bool fit);
    Status status() const { return m_status; }
    QSize decodedSize() const { return m_image.size(); }

    /// Decodes anew if the file is no longer the one that was decoded: overwritten, or gone.
    Q_INVOKABLE void recheck();

Q_SIGNALS:
    void sourceChanged();
    void boxChanged();
    void fitChanged();
    void statusChanged();

protected:
    void updatePolish() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    /// What tells one content of a file from the next.
    struct Stamp
    {
        QDateTime modified;
        qint64 size = -1;

        friend bool operator==(const Stamp &, const Stamp &) = default;
    };

    static Stamp stampOf(const QUrl &url);
    void restart();
    void onPlaceSeen();
    QCoro::Task<> decode();
    void setStatus(Status status);
    QRectF visiblePart() const;
    QRectF place() const;

    QUrl m_source;
    QSizeF m_box;
    Framing m_framing = Framing::Cover;
    Status m_status = Null;
    QImage m_image;
    bool m_imageIsNew = false;
    bool m_decodeIsDue = false;
    bool m_placeIsSeen = false; ///< Once a frame with the item in it was on screen.
    Stamp m_stamp;
    std::shared_ptr<std::atomic_bool> m_stopped;
};

} // namespace ui
