// SPDX-License-Identifier: MIT
// The driver's file, loaded, with each of its names as a typed pointer.
#include "host/plugin.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
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

void *openFile(const QString &path, QString *error)
{
    void *library = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library && error)
        *error =
            QStringLiteral("cannot load the driver: %1").arg(QString::fromLocal8Bit(dlerror()));
    return library;
}

/// The loader takes two files for one when their names or their inodes are equal, so each copy gets
/// a name that this process never used before. The file may go at once: the mapping stays.
void *openCopy(const QString &path, QString *error)
{
    static std::atomic<int> copies { 0 };
    QFile original(path);
    QTemporaryFile copy(QDir::temp().filePath(
        QStringLiteral("korvane_dx4-%1-%2-XXXXXX.so").arg(getpid()).arg(++copies)));
    const bool copied = original.open(QIODevice::ReadOnly) && copy.open()
        && copy.write(original.readAll()) > 0 && copy.flush();
    if (copied)
        return openFile(copy.fileName(), error);
    if (error) {
        const QString reason = original.isOpen() ? copy.errorString() : original.errorString();
        *error = QStringLiteral("cannot copy the driver %1: %2").arg(path, reason);
    }
    return nullptr;
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

    const QDir program =
        QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absoluteDir();
    const QString installed = QStringLiteral("../" KORVANE_INSTALL_LIBDIR "/korvane_dx4/");
    DriverFile found;
    for (const QString &folder : { QString(), QStringLiteral("../lib/"), installed }) {
        found.tried.append(QDir::cleanPath(program.filePath(folder + driverFileName)));
        if (QFileInfo::exists(found.tried.constLast())) {
            found.path = found.tried.constLast();
            break;
        }
    }
    return found;
}

Plugin::Plugin(QString file, void *library)
    : m_file(std::move(file))
    , m_library(library)
{
}

Plugin::~Plugin()
{
    dlclose(m_library);
}

std::unique_ptr<Plugin> Plugin::load(const QString &file, Instance instance, QString *error)
{
    // A name without a slash would be searched for in the system's library folders.
    const QString path = QFileInfo(file).absoluteFilePath();
    void *library =
        instance == Instance::PrivateCopy ? openCopy(path, error) : openFile(path, error);
    if (!library)
        return nullptr;

    std::unique_ptr<Plugin> plugin(new Plugin(path, library));
    const QStringList missing = resolveAll(library, plugin->m_api);
    if (missing.isEmpty())
        return plugin;
    if (error) {
        *error = QStringLiteral("%1 is not this driver; it lacks: %2")
                     .arg(path, missing.join(QStringLiteral(", ")));
    }
    return nullptr;
}

} // namespace dx4::host
