#pragma once

#include "core/wallpapermanager.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QtQmlIntegration>

namespace ui {

/// The gallery as rows. A picture keeps its row's identity by its URL: when pictures come or go,
/// only their rows are inserted or removed and all others stay.
class GalleryModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(core::WallpaperManager *manager READ manager WRITE setManager NOTIFY managerChanged
            REQUIRED)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { UrlRole = Qt::UserRole, FileNameRole, TimestampRole };

    explicit GalleryModel(QObject *parent = nullptr);

    core::WallpaperManager *manager() const { return m_manager; }
    void setManager(core::WallpaperManager *manager);
    int count() const { return int(m_rows.size()); }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// When the file came into being, as a tile shows it; empty when that is not known.
    static QString timestamp(const QUrl &url);

Q_SIGNALS:
    void managerChanged();
    void countChanged();

private:
    void readHistory();
    void removeRowsNotIn(const QList<QUrl> &wanted);
    void insertMissingRows(const QList<QUrl> &wanted);
    qsizetype runOfNewRows(
        const QList<QUrl> &wanted, qsizetype from, const QSet<QUrl> &present) const;

    QPointer<core::WallpaperManager> m_manager;
    QList<QUrl> m_rows;
};

} // namespace ui
