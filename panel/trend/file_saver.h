// SPDX-License-Identifier: MIT
// Writes files on a thread of its own.
#pragma once

#include <QObject>
#include <QThread>

#include <functional>

class QIODevice;

namespace dx4::panel {

/// A file is there as a whole or not at all, and no other one is replaced unasked. The window waits
/// for no disk.
class FileSaver : public QObject {
    Q_OBJECT

public:
    enum class Replace { No, Yes };

    /// Writes the content; called on the thread of the saver.
    ///
    /// @param error  out: why not
    using Writer = std::function<bool(QIODevice &to, QString *error)>;

    explicit FileSaver(QObject *parent = nullptr);

    /// Waits for the file that is being written.
    ~FileSaver() override;

    /// Writes a file; saved(), exists() or failed() tells the end.
    void save(const QString &path, Replace replace, const Writer &writer);

Q_SIGNALS:
    void saved(const QString &path);
    /// There is a file of this name already, and it is as it was.
    void exists(const QString &path);
    /// @param why  one line; what was there is as it was
    void failed(const QString &why);

private:
    void write(const QString &path, Replace replace, const Writer &writer);

    QThread m_thread;
    QObject m_place; // lives on that thread
};

} // namespace dx4::panel
