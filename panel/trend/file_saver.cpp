// SPDX-License-Identifier: MIT
// Writes files on a thread of its own.
#include "panel/trend/file_saver.h"

#include <QFileInfo>
#include <QSaveFile>

namespace dx4::panel {

FileSaver::FileSaver(QObject *parent)
    : QObject(parent)
{
    m_place.moveToThread(&m_thread);
    m_thread.start();
}

FileSaver::~FileSaver()
{
    m_thread.quit();
    m_thread.wait();
}

void FileSaver::save(const QString &path, Replace replace, const Writer &writer)
{
    QMetaObject::invokeMethod(
        &m_place, [this, path, replace, writer] { write(path, replace, writer); },
        Qt::QueuedConnection);
}

void FileSaver::write(const QString &path, Replace replace, const Writer &writer)
{
    const auto tell = [this](const std::function<void()> &what) {
        QMetaObject::invokeMethod(this, what, Qt::QueuedConnection);
    };
    if (replace == Replace::No && QFileInfo::exists(path))
        return tell([this, path] { Q_EMIT exists(path); });
    QSaveFile file(path);
    QString error;
    bool isWritten = file.open(QIODevice::WriteOnly);
    if (isWritten)
        isWritten = writer(file, &error) && file.commit();
    if (isWritten)
        return tell([this, path] { Q_EMIT saved(path); });
    const QString why = error.isEmpty() ? file.errorString() : error;
    tell([this, why] { Q_EMIT failed(why); });
}

} // namespace dx4::panel
