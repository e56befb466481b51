// SPDX-License-Identifier: MIT
// Loading and unloading of the plug-in.
#include "driver_link.h"
#include "samples.h"

#include <QFile>
#include <QTemporaryDir>

#include <dlfcn.h>

namespace bench {
namespace {

constexpr int iterations = 200;

// A copy of the driver's file: the file itself stays loaded all the time.
QByteArray copiedDriver()
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("libkorvane_dx4.so"));
    if (!QFile::exists(path) && !QFile::copy(QString::fromLocal8Bit(KORVANE_PLUGIN_FILE), path))
        endWith("cannot copy the driver's file");
    return path.toLocal8Bit();
}

void loadAndUnload(benchmark::State &state, const QByteArray &file)
{
    for ([[maybe_unused]] auto step : state) {
        void *library = dlopen(file.constData(), RTLD_NOW | RTLD_LOCAL);
        if (!library)
            endWith(dlerror());
        dlclose(library);
    }
    if (dlopen(file.constData(), RTLD_NOW | RTLD_NOLOAD))
        endWith("a plug-in stays in memory after it was unloaded");
}

} // namespace

void addLoadBenchmarks()
{
    measure("load/driver", iterations,
            [](benchmark::State &state) { loadAndUnload(state, copiedDriver()); });
    measure("load/plugin", iterations,
            [](benchmark::State &state) { loadAndUnload(state, KORVANE_NEAR_EMPTY_FILE); });
}

} // namespace bench
