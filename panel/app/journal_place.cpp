// SPDX-License-Identifier: MIT
// Where the panel keeps its journal.
#include "panel/app/journal_place.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace dx4::panel {

QString JournalPlace::snapshotFolder() const
{
    if (path.isEmpty())
        return {};
    return QFileInfo(path).absoluteDir().filePath(QStringLiteral("snapshots"));
}

JournalPlace journalPlaceOf(const Options &options)
{
    if (options.noJournal)
        return {};
    if (!options.journal.isEmpty())
        return { options.journal, nullptr };
    const QString name = QStringLiteral("journal.sqlite");
    if (options.demo) {
        auto folder = std::make_shared<QTemporaryDir>();
        return { folder->filePath(name), folder };
    }
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    // Where that cannot be done the journal says so when it is opened.
    static_cast<void>(folder.mkpath(QStringLiteral(".")));
    return { folder.filePath(name), nullptr };
}

QString journalLineOf(const Options &options, const host::Config &config)
{
    return options.demo ? QStringLiteral("demo") : config.line.port;
}

} // namespace dx4::panel
