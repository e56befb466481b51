// SPDX-License-Identifier: MIT
// Files of parameters, as dx4 params reads and writes them.
#pragma once

#include "host/parameters/parameter_set.h"
#include "panel/parameters/background.h"

#include <QCoreApplication>
#include <QObject>
#include <QStringList>

namespace dx4::panel {

/// What a folder offers.
struct FolderContent {
    QString path;
    QStringList folders; ///< names
    QStringList files; ///< names of files "*.txt"
    QString error; ///< why it cannot be read; empty: it can
};

/// What came of a save.
struct SaveResult {
    enum class Kind {
        Saved,
        OtherStation, ///< the file holds another station's set: ask first
        Failed,
    };
    Kind kind = Kind::Failed;
    QString text; ///< one line for people
};

/// Reads and writes files on a thread of its own; what comes of it is called on that of the window,
/// and never once this is gone.
class ParameterFiles : public QObject {
    Q_DECLARE_TR_FUNCTIONS(dx4::panel::ParameterFiles)

public:
    /// @param folder  where files are looked for first
    ParameterFiles(Runner runner, const QString &folder, QObject *parent = nullptr);

    /// The folder that was opened last.
    const QString &folder() const { return m_folder; }

    void open(const QString &folder, std::function<void(const FolderContent &)> then);
    void load(const QString &path,
              std::function<void(const std::optional<host::ParameterSet> &, const QString &)> then);

    /// Replaces the file as a whole or not at all. A file that holds something else than
    /// parameters, or a complete set where the new one is not, stays as it is.
    ///
    /// @param isAgreed  it may hold the set of another station
    void save(const QString &path, const host::ParameterSet &set, bool isAgreed,
              std::function<void(const SaveResult &)> then);

private:
    template <class Result>
    void run(std::function<Result()> work, std::function<void(const Result &)> then);

    const Runner m_runner;
    QString m_folder;
};

/// What ParameterFiles::save() does, on the thread that calls.
SaveResult saveParameters(const QString &path, const host::ParameterSet &set, bool isAgreed);

} // namespace dx4::panel
