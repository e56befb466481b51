// SPDX-License-Identifier: MIT
// The driver's file, loaded, with each of its names as a typed pointer.
#include "host/link/plugin.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>
#include <link.h>

#include <stdexcept>
#include <utility>

namespace dx4::host {
namespace {

const QString driverFileName = QStringLiteral("libkorvane_dx4.so");

/// Looks names up and remembers those that the file does not have.
class Resolver {
public:
    explicit Resolver(void *library)
        : m_library(library)
    {
    }

    template <typename Pointer> void operator()(const char *name, Pointer &pointer)
    {
        pointer = reinterpret_cast<Pointer>(dlsym(m_library, name));
        if (!pointer)
            m_missing.append(QString::fromLatin1(name));
    }

    QStringList missing() const { return m_missing; }

private:
    void *m_library;
    QStringList m_missing;
};

QStringList resolveAll(void *library, DriverApi &api)
{
    Resolver resolve(library);
    resolve("intf_getProtocolType", api.getProtocolType);
    resolve("intf_getDriverParameter", api.getDriverParameter);
    resolve("intf_getDriverPropertyPage", api.getDriverPropertyPage);
    resolve("intf_SetDriverPropertyPage", api.setDriverPropertyPage);
    resolve("intf_setAddrValueChangeCallBack", api.setAddrValueChangeCallBack);
    resolve("intf_initProperty", api.initProperty);
    resolve("intf_getRegListByType", api.getRegListByType);
    resolve("intf_getRegDiscription", api.getRegDiscription);
    resolve("intf_checkAddrValidity", api.checkAddrValidity);
    resolve("intf_checkAddr", api.checkAddr);
    resolve("intf_multiCopy", api.multiCopy);
    resolve("intf_setRcpAddress", api.setRcpAddress);
    resolve("intf_addrMerge", api.addrMerge);
    resolve("intf_getSendFrame", api.getSendFrame);
    resolve("intf_addConditionRead", api.addConditionRead);
    resolve("intf_dealRcvFrame", api.dealRcvFrame);
    resolve("intf_getData", api.getData);
    resolve("intf_setData", api.setData);
    resolve("driver", api.state);
    return resolve.missing();
}

/// The folder of the shared library that holds this code; empty where the program itself does.
QString libraryFolder()
{
    Dl_info info = {};
    link_map *file = nullptr;
    const bool isKnown = dladdr1(reinterpret_cast<void *>(&locateDriver), &info,
                                 reinterpret_cast<void **>(&file), RTLD_DL_LINKMAP)
        != 0;
    // The program has no name among the loaded files.
    const bool isLibrary = isKnown && file->l_name[0] != '\0';
    return isLibrary ? QFileInfo(QFile::decodeName(file->l_name)).absolutePath() : QString();
}

/// Where the driver's file may lie: for a build tree, for an installed program, and beside the
/// installed library of a program that lies elsewhere.
QStringList driverFolders()
{
    const QString program =
        QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath();
    QStringList folders = { program, program + QStringLiteral("/../lib"),
                            program + QStringLiteral("/" KORVANE_PLUGINDIR_FROM_BINDIR) };
    const QString library = libraryFolder();
    if (!library.isEmpty())
        folders.append(library + QStringLiteral("/korvane_dx4/" KORVANE_QT_FOLDER));
    return folders;
}

} // namespace

DriverFile locateDriver(const QString &explicitPath)
{
    const QString asked =
        explicitPath.isEmpty() ? qEnvironmentVariable("KORVANE_DRIVER") : explicitPath;
    if (!asked.isEmpty()) {
        const QFileInfo file(asked);
        return { file.exists() ? file.absoluteFilePath() : QString(), { asked } };
    }

    DriverFile found;
    for (const QString &folder : driverFolders()) {
        found.tried.append(QDir::cleanPath(folder + QLatin1Char('/') + driverFileName));
        if (QFileInfo::exists(found.tried.constLast())) {
            found.path = found.tried.constLast();
            break;
        }
    }
    return found;
}

Plugin::Plugin(QString file, LibraryFile library)
    : m_file(std::move(file))
    , m_library(std::move(library))
{
}

Plugin::~Plugin() = default;

std::unique_ptr<Plugin> Plugin::load(const QString &file, Instance instance, QString *error)
{
    // A name without a slash would be searched for in the system's library folders.
    const QString path = QFileInfo(file).absoluteFilePath();
    LibraryFile library = instance == Instance::PrivateCopy ? LibraryFile::openCopy(path, error)
                                                            : LibraryFile::open(path, error);
    if (!library.handle())
        return nullptr;

    std::unique_ptr<Plugin> plugin(new Plugin(path, std::move(library)));
    const QStringList missing = resolveAll(plugin->m_library.handle(), plugin->m_api);
    if (missing.isEmpty())
        return plugin;
    if (error) {
        *error = QStringLiteral("%1 is not this driver; it lacks: %2")
                     .arg(path, missing.join(QStringLiteral(", ")));
    }
    return nullptr;
}

std::unique_ptr<Plugin> notNull(std::unique_ptr<Plugin> plugin)
{
    if (!plugin)
        throw std::invalid_argument("no driver: the plug-in is null; hand over one that "
                                    "Plugin::load() gave, which says why where it gives none");
    return plugin;
}

} // namespace dx4::host
