#include "ui/gallerymodel.h"

#include "storage/imagestore.h"

#include <QLocale>
#include <QSet>

namespace ui {

using namespace Qt::StringLiterals;

GalleryModel::GalleryModel(QObject *parent) : QAbstractListModel(parent) { }

void GalleryModel::setManager(core::WallpaperManager *manager)
{
    if (manager == m_manager) {
        return;
    }
    if (m_manager) {
        m_manager->disconnect(this);
    }
    m_manager = manager;
    connect(m_manager, &core::WallpaperManager::historyChanged, this, &GalleryModel::readHistory);
    readHistory();
    Q_EMIT managerChanged();
}

int GalleryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant GalleryModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const QUrl &url = m_rows[index.row()];
    switch (role) {
    case UrlRole:
        return url;
    case FileNameRole:
        return url.fileName(QUrl::FullyDecoded);
    case TimestampRole:
        return timestamp(url);
    default:
        return {};
    }
}

QHash<int, QByteArray> GalleryModel::roleNames() const
{
    return {{UrlRole, "url"_ba}, {FileNameRole, "fileName"_ba}, {TimestampRole, "timestamp"_ba}};
}

QString GalleryModel::timestamp(const QUrl &url)
{
    return QLocale().toString(storage::ImageStore::creationDate(url), u"MMM d, HH:mm");
}

void GalleryModel::readHistory()
{
    const auto before = count();
    const QList<QUrl> wanted = m_manager->history();
    removeRowsNotIn(wanted);
    insertMissingRows(wanted);
    if (count() != before) {
        Q_EMIT countChanged();
    }
}

void GalleryModel::removeRowsNotIn(const QList<QUrl> &wanted)
{
    const QSet<QUrl> kept(wanted.cbegin(), wanted.cend());
    for (auto last = m_rows.size() - 1; last >= 0; --last) {
        if (kept.contains(m_rows[last])) {
            continue;
        }
        auto first = last;
        while (first > 0 && !kept.contains(m_rows[first - 1])) {
            --first;
        }
        beginRemoveRows({}, int(first), int(last));
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
        last = first;
    }
}

void GalleryModel::insertMissingRows(const QList<QUrl> &wanted)
{
    const QSet<QUrl> present(m_rows.cbegin(), m_rows.cend());
    for (qsizetype row = 0; row < wanted.size(); ++row) {
        if (row < m_rows.size() && m_rows[row] == wanted[row]) {
            continue;
        }
        if (const auto run = runOfNewRows(wanted, row, present); run > 0) {
            beginInsertRows({}, int(row), int(row + run - 1));
            m_rows = m_rows.first(row) + wanted.sliced(row, run) + m_rows.sliced(row);
            endInsertRows();
            row += run - 1;
        } else {
            const auto from = m_rows.indexOf(wanted[row], row);
            beginMoveRows({}, int(from), int(from), {}, int(row));
            m_rows.move(from, row);
            endMoveRows();
        }
    }
}

qsizetype GalleryModel::runOfNewRows(
    const QList<QUrl> &wanted, qsizetype from, const QSet<QUrl> &present) const
{
    auto end = from;
    while (end < wanted.size() && !present.contains(wanted[end])) {
        ++end;
    }
    return end - from;
}

} // namespace ui
