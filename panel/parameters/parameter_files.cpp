// SPDX-License-Identifier: MIT
// Files of parameters, as dx4 params reads and writes them.
#include "panel/parameters/parameter_files.h"

#include <QDir>
#include <QPointer>

#include <utility>

namespace dx4::panel {
namespace {

FolderContent contentOf(const QString &path)
{
    const QDir folder(path);
    FolderContent content;
    content.path = QDir::cleanPath(folder.absolutePath());
    if (!folder.exists() || !folder.isReadable()) {
        content.error = ParameterFiles::tr("%1 cannot be read.").arg(content.path);
        return content;
    }
    content.folders = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    content.files = folder.entryList({ QStringLiteral("*.txt") }, QDir::Files, QDir::Name);
    return content;
}

struct Loaded {
    std::optional<host::ParameterSet> set;
    QString error;
};

} // namespace

SaveResult saveParameters(const QString &path, const host::ParameterSet &set, bool isAgreed)
{
    using Kind = SaveResult::Kind;
    QString error;
    if (QFileInfo::exists(path)) {
        const auto held = host::loadParameterSet(path, &error);
        if (!held)
            return {
                Kind::Failed,
                ParameterFiles::tr("Not saved. The file holds something else: %1").arg(error)
            };
        if (held->station != set.station && !isAgreed)
            return { Kind::OtherStation,
                     ParameterFiles::tr("%1 holds the parameters of station %2. They would be "
                                        "replaced by those of station %3.")
                         .arg(QFileInfo(path).fileName())
                         .arg(held->station)
                         .arg(set.station) };
        if (host::isComplete(*held) && !host::isComplete(set))
            return { Kind::Failed,
                     ParameterFiles::tr("Not saved. %1 stays as it was, a complete set; what was "
                                        "read is not complete.")
                         .arg(QFileInfo(path).fileName()) };
    }
    if (!host::saveParameterSet(path, set, &error))
        return { Kind::Failed, ParameterFiles::tr("Not saved. %1").arg(error) };
    return { Kind::Saved,
             ParameterFiles::tr("%1 parameters in %2").arg(set.values.size()).arg(path) };
}

ParameterFiles::ParameterFiles(Runner runner, const QString &folder, QObject *parent)
    : QObject(parent)
    , m_runner(std::move(runner))
    , m_folder(folder)
{
}

template <class Result>
void ParameterFiles::run(std::function<Result()> work, std::function<void(const Result &)> then)
{
    const QPointer<ParameterFiles> self(this);
    m_runner([self, work = std::move(work), then = std::move(then)]() -> std::function<void()> {
        return [self, then, result = work()] {
            if (self)
                then(result);
        };
    });
}

void ParameterFiles::open(const QString &folder, std::function<void(const FolderContent &)> then)
{
    run<FolderContent>([folder] { return contentOf(folder); },
                       [this, then = std::move(then)](const FolderContent &content) {
                           if (content.error.isEmpty())
                               m_folder = content.path;
                           then(content);
                       });
}

void ParameterFiles::load(
    const QString &path,
    std::function<void(const std::optional<host::ParameterSet> &, const QString &)> then)
{
    const auto work = [path] {
        Loaded loaded;
        loaded.set = host::loadParameterSet(path, &loaded.error);
        return loaded;
    };
    run<Loaded>(work,
                [then = std::move(then)](const Loaded &loaded) { then(loaded.set, loaded.error); });
}

void ParameterFiles::save(const QString &path, const host::ParameterSet &set, bool isAgreed,
                          std::function<void(const SaveResult &)> then)
{
    run<SaveResult>([path, set, isAgreed] { return saveParameters(path, set, isAgreed); },
                    std::move(then));
}

} // namespace dx4::panel
