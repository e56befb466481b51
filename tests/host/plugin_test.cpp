// SPDX-License-Identifier: MIT
// Finding, loading, copying and unloading the driver's file.
#include "host/link/plugin.h"

#include "full_disk.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <regex>

using dx4::host::DriverFile;
using dx4::host::locateDriver;
using dx4::host::Plugin;

namespace {

const QString driverPath = QStringLiteral(KORVANE_PLUGIN_FILE);

/// Sets a variable of the environment for one test.
class Variable {
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_before(qgetenv(name))
        , m_wasSet(qEnvironmentVariableIsSet(name))
    {
        qputenv(name, value);
    }
    ~Variable()
    {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    const char *m_name;
    QByteArray m_before;
    bool m_wasSet;
};

class DriverVariable : public Variable {
public:
    explicit DriverVariable(const QString &path)
        : Variable("KORVANE_DRIVER", path.toLocal8Bit())
    {
    }
};

QByteArray driverBytes()
{
    QFile file(driverPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// A file that begins as the driver does and has so many bytes.
class CutFile {
public:
    explicit CutFile(int bytes)
        : path(m_folder.filePath(QStringLiteral("cut.so")))
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(driverBytes().left(bytes)), bytes);
    }

private:
    QTemporaryDir m_folder;

public:
    const QString path;
};

/// The file that a loaded driver came from, as the loader knows it.
std::string loadedFrom(const Plugin &plugin)
{
    Dl_info info = {};
    EXPECT_NE(dladdr(plugin.api().state, &info), 0);
    return info.dli_fname;
}

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
}

/// Standard input, closed for one test: the next file that is opened has its number.
class NoStandardInput {
public:
    NoStandardInput()
        : m_kept(fcntl(0, F_DUPFD_CLOEXEC, 3))
    {
        close(0);
    }
    ~NoStandardInput()
    {
        if (m_kept >= 0) {
            dup2(m_kept, 0);
            close(m_kept);
        }
    }
    NoStandardInput(const NoStandardInput &) = delete;
    NoStandardInput &operator=(const NoStandardInput &) = delete;

private:
    int m_kept;
};

/// The head of the driver's file with one byte altered, and no tables.
class AlteredHead {
public:
    AlteredHead(int place, char value)
        : path(m_folder.filePath(QStringLiteral("altered.so")))
    {
        QByteArray bytes = driverBytes().left(sizeof(ElfW(Ehdr)));
        ElfW(Ehdr) head;
        std::memcpy(&head, bytes.constData(), sizeof head);
        head.e_phoff = head.e_shoff = 0;
        head.e_phnum = head.e_shnum = head.e_shstrndx = 0;
        std::memcpy(bytes.data(), &head, sizeof head);
        bytes[place] = value;
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes + QByteArray(1000, '\0')), bytes.size() + 1000);
    }

private:
    QTemporaryDir m_folder;

public:
    const QString path;
};

constexpr int noNamespaces = 77;

/// Loads two copies with a small file system of its own as the folder for temporary files, and
/// gives what came of it as an exit code.
int loadOn(const char *mountOptions, unsigned long flags, const QString &folder)
{
    const QByteArray place = QFile::encodeName(folder);
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0
        || mount("none", place.constData(), "tmpfs", flags, mountOptions) != 0)
        return noNamespaces;
    qputenv("TMPDIR", place);
    qunsetenv("XDG_RUNTIME_DIR");
    const auto first = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const auto second = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const bool bothWork = first && second && first->api().state != second->api().state;
    return bothWork && QDir(folder).isEmpty() ? 0 : 1;
}

/// The same in a process of its own.
int codeOfLoadOn(const char *mountOptions, unsigned long flags)
{
    const QTemporaryDir folder;
    const pid_t child = fork();
    if (child == 0)
        _exit(loadOn(mountOptions, flags, folder.path()));
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace

TEST(Plugin, ResolvesEveryName)
{
    QString error;

    const auto plugin = Plugin::load(driverPath, Plugin::Instance::Shared, &error);

    ASSERT_TRUE(plugin) << error.toStdString();
    EXPECT_EQ(error, QString());
    QString page;
    plugin->api().getDriverPropertyPage(page);
    EXPECT_EQ(page, QStringLiteral("0_0"));
    const dx4::host::DriverApi &api = plugin->api();
    EXPECT_NE(api.getProtocolType, nullptr);
    EXPECT_NE(api.getDriverParameter, nullptr);
    EXPECT_NE(api.setDriverPropertyPage, nullptr);
    EXPECT_NE(api.setAddrValueChangeCallBack, nullptr);
    EXPECT_NE(api.initProperty, nullptr);
    EXPECT_NE(api.getRegListByType, nullptr);
    EXPECT_NE(api.getRegDiscription, nullptr);
    EXPECT_NE(api.checkAddrValidity, nullptr);
    EXPECT_NE(api.checkAddr, nullptr);
    EXPECT_NE(api.multiCopy, nullptr);
    EXPECT_NE(api.setRcpAddress, nullptr);
    EXPECT_NE(api.addrMerge, nullptr);
    EXPECT_NE(api.getSendFrame, nullptr);
    EXPECT_NE(api.addConditionRead, nullptr);
    EXPECT_NE(api.dealRcvFrame, nullptr);
    EXPECT_NE(api.getData, nullptr);
    EXPECT_NE(api.setData, nullptr);
    EXPECT_NE(api.state, nullptr);
}

TEST(Plugin, ListsAllMissingNamesAtOnce)
{
    const QString file = QStringLiteral(KORVANE_INCOMPLETE_PLUGIN_FILE);
    QString error;

    const auto plugin = Plugin::load(file, Plugin::Instance::Shared, &error);

    EXPECT_FALSE(plugin);
    EXPECT_EQ(error.toStdString(),
              file.toStdString()
                  + " is not this driver; it lacks: intf_multiCopy, intf_getData, driver");
}

TEST(Plugin, SaysWhichFileCannotBeLoaded)
{
    QString error;

    const auto plugin =
        Plugin::load(QStringLiteral("/no/such/driver.so"), Plugin::Instance::Shared, &error);

    EXPECT_FALSE(plugin);
    EXPECT_EQ(error.toStdString(),
              "cannot load the driver: /no/such/driver.so: No such file or directory");
}

TEST(Plugin, SaysWhichFileCannotBeCopied)
{
    QString error;

    const auto plugin =
        Plugin::load(QStringLiteral("/no/such/driver.so"), Plugin::Instance::PrivateCopy, &error);

    EXPECT_FALSE(plugin);
    EXPECT_EQ(error.toStdString(),
              "cannot copy the driver /no/such/driver.so: No such file or directory");
}

TEST(Plugin, WhyItIsNotLoadedNeedNotBeAskedFor)
{
    EXPECT_FALSE(Plugin::load(QStringLiteral("/no/such/driver.so")));
    EXPECT_FALSE(Plugin::load(QStringLiteral("/no/such/driver.so"), Plugin::Instance::PrivateCopy));
    EXPECT_FALSE(Plugin::load(QStringLiteral(KORVANE_INCOMPLETE_PLUGIN_FILE)));
}

TEST(Plugin, WhatTheLoaderSaysIsPassedOn)
{
    const AlteredHead unknownVersion(EI_VERSION, '\7');
    QString shared;
    QString copied;

    EXPECT_FALSE(Plugin::load(unknownVersion.path, Plugin::Instance::Shared, &shared));
    EXPECT_FALSE(Plugin::load(unknownVersion.path, Plugin::Instance::PrivateCopy, &copied));

    const QString path = unknownVersion.path;
    const QString reason = QStringLiteral(": ELF file version ident does not match current one");
    EXPECT_EQ(shared, QStringLiteral("cannot load the driver: %1%2").arg(path, reason));
    EXPECT_TRUE(copied.startsWith(QStringLiteral("cannot load the driver %1: ").arg(path)))
        << copied.toStdString();
    EXPECT_TRUE(copied.endsWith(reason)) << copied.toStdString();
}

TEST(Plugin, ALibraryOfAnotherMachineIsRefusedBeforeItIsLoaded)
{
    const AlteredHead foreign(EI_CLASS, sizeof(void *) == 8 ? ELFCLASS32 : ELFCLASS64);
    QString shared;
    QString copied;

    EXPECT_FALSE(Plugin::load(foreign.path, Plugin::Instance::Shared, &shared));
    EXPECT_FALSE(Plugin::load(foreign.path, Plugin::Instance::PrivateCopy, &copied));

    const QString reason =
        QStringLiteral("%1: the file is for another machine (").arg(foreign.path);
    EXPECT_TRUE(shared.startsWith(QStringLiteral("cannot load the driver: ") + reason))
        << shared.toStdString();
    EXPECT_TRUE(copied.startsWith(QStringLiteral("cannot copy the driver ") + reason))
        << copied.toStdString();
}

TEST(Plugin, ALibraryOfTheOtherQtIsRefusedBeforeAnyOfItRuns)
{
    const QString file = QStringLiteral(KORVANE_OTHER_QT_PLUGIN_FILE);
    QString shared;
    QString copied;

    EXPECT_FALSE(Plugin::load(file, Plugin::Instance::Shared, &shared));
    EXPECT_FALSE(Plugin::load(file, Plugin::Instance::PrivateCopy, &copied));

    const QString reason = QT_VERSION_MAJOR == 5
        ? QStringLiteral(": the file is built for Qt 6, this program for Qt 5; expected the file "
                         "of the folder korvane_dx4/qt5")
        : QStringLiteral(": the file is built for Qt 5, this program for Qt 6; expected the file "
                         "of the folder korvane_dx4/qt6");
    EXPECT_EQ(shared, QStringLiteral("cannot load the driver: ") + file + reason);
    EXPECT_EQ(copied, QStringLiteral("cannot copy the driver ") + file + reason);
}

TEST(Plugin, LoadedTwiceSharesOneState)
{
    const auto first = Plugin::load(driverPath);
    const auto second = Plugin::load(driverPath);

    EXPECT_EQ(first->api().state, second->api().state);
}

TEST(Plugin, APrivateCopyHasAStateOfItsOwn)
{
    const auto shared = Plugin::load(driverPath);
    const auto first = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const auto second = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    first->api().state->retryLimit = 7;

    EXPECT_EQ(first->api().state->retryLimit, 7);
    EXPECT_EQ(second->api().state->retryLimit, 0);
    EXPECT_EQ(shared->api().state->retryLimit, 0);
}

TEST(Plugin, APrivateCopyLeavesNoFileBehind)
{
    const QTemporaryDir folder; // its own: other tests make copies in the common one meanwhile
    const Variable temporary("TMPDIR", QFile::encodeName(folder.path()));

    const auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    ASSERT_TRUE(copy);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(Plugin, APrivateCopyIsLoadedFromTheFolderForTemporaryFilesUnderANewName)
{
    const QTemporaryDir folder;
    const Variable temporary("TMPDIR", QFile::encodeName(folder.path()));

    const auto first = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const auto second = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    ASSERT_TRUE(first && second);
    const std::regex name(folder.path().toStdString() + "/korvane_dx4-" + std::to_string(getpid())
                          + "-([0-9]+)-[A-Za-z0-9]{6}\\.so");
    std::smatch found;
    const std::string firstFile = loadedFrom(*first);
    ASSERT_TRUE(std::regex_match(firstFile, found, name)) << firstFile;
    const int number = std::stoi(found[1]);
    const std::string secondFile = loadedFrom(*second);
    ASSERT_TRUE(std::regex_match(secondFile, found, name)) << secondFile;
    EXPECT_EQ(std::stoi(found[1]), number + 1);
}

TEST(Plugin, APrivateCopyKeepsADescriptorOnlyWhereItIsInMemory)
{
    const QTemporaryDir folder;
    const Variable runtime("XDG_RUNTIME_DIR", "");
    const int before = openDescriptors();
    for (const QByteArray &place : { QFile::encodeName(folder.path()), QByteArray("/no/such") }) {
        const Variable temporary("TMPDIR", place);
        const bool isInMemory = place == "/no/such";

        QString error;
        auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy, &error);

        ASSERT_TRUE(copy);
        EXPECT_EQ(error, QString());
        EXPECT_EQ(openDescriptors(), before + (isInMemory ? 1 : 0)) << place.constData();
        copy.reset();
        EXPECT_EQ(openDescriptors(), before) << place.constData();
    }
}

TEST(Plugin, APrivateCopyIsLoadedWithoutStandardInputToo)
{
    const QTemporaryDir folder;
    const Variable runtime("XDG_RUNTIME_DIR", "");
    std::string fromFolder;
    std::string fromMemory;
    int afterwards = 0;
    {
        const NoStandardInput closed;
        const Variable temporary("TMPDIR", QFile::encodeName(folder.path()));
        if (const auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy))
            fromFolder = loadedFrom(*copy);
        qputenv("TMPDIR", "/no/such");
        if (const auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy))
            fromMemory = loadedFrom(*copy);
        afterwards = fcntl(0, F_GETFD);
    }

    EXPECT_EQ(fromFolder.find(folder.path().toStdString()), 0U) << fromFolder;
    EXPECT_EQ(fromMemory, "/proc/self/fd/0");
    EXPECT_EQ(afterwards, -1) << "the one of the copy in memory stayed open";
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(Plugin, ACopyThatNoFolderTakesIsLoadedFromMemory)
{
    const Variable temporary("TMPDIR", "/no/such/folder");
    const Variable runtime("XDG_RUNTIME_DIR", "/no/such/folder/either");
    const auto shared = Plugin::load(driverPath);
    auto first = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    const auto second = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);
    ASSERT_TRUE(first && second);
    first->api().state->retryLimit = 7;
    second->api().state->retryLimit = 8;

    first.reset();
    const auto third = Plugin::load(driverPath, Plugin::Instance::PrivateCopy);

    ASSERT_TRUE(third);
    EXPECT_EQ(second->api().state->retryLimit, 8);
    EXPECT_EQ(third->api().state->retryLimit, 0);
    EXPECT_EQ(shared->api().state->retryLimit, 0);
}

TEST(Plugin, ACopyGoesToTheNextFolderWhereOneIsMissing)
{
    const QTemporaryDir folder;
    const Variable temporary("TMPDIR", "/no/such/folder");
    const Variable runtime("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    QString error;

    const auto copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy, &error);

    ASSERT_TRUE(copy) << error.toStdString();
    EXPECT_EQ(loadedFrom(*copy).find(folder.path().toStdString()), 0U) << loadedFrom(*copy);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(Plugin, ASecondFolderIsTriedOnlyWhereItIsAnotherOneWithAFullPath)
{
    const Variable temporary("TMPDIR", "/no/such");
    const auto placesTried = [](const char *runtimeFolder) {
        const Variable runtime("XDG_RUNTIME_DIR", runtimeFolder);
        const FullDisk disk(100'000); // no room in memory either
        QString error;
        EXPECT_FALSE(Plugin::load(driverPath, Plugin::Instance::PrivateCopy, &error));
        return error.section(QStringLiteral("; "), 0, 0).section(driverPath, 1).toStdString();
    };
    const std::string memory = ", memory: File too large";

    EXPECT_EQ(placesTried("/no/such"), ": /no/such: No such file or directory" + memory);
    EXPECT_EQ(placesTried("no/such"), ": /no/such: No such file or directory" + memory);
    EXPECT_EQ(placesTried("/none"),
              ": /no/such: No such file or directory, /none: No such file or directory" + memory);
}

TEST(Plugin, ACopyThatFitsNowhereIsNotLoaded)
{
    const QTemporaryDir folder;
    const Variable temporary("TMPDIR", QFile::encodeName(folder.path()));
    const Variable runtime("XDG_RUNTIME_DIR", "");
    QString error;
    std::unique_ptr<Plugin> copy;
    {
        const FullDisk disk(100'000);
        copy = Plugin::load(driverPath, Plugin::Instance::PrivateCopy, &error);
    }

    EXPECT_FALSE(copy);
    EXPECT_EQ(error,
              QStringLiteral("cannot copy the driver %1: %2: File too large, memory: File too "
                             "large; set TMPDIR to a folder with room for %3 bytes that may hold "
                             "programs")
                  .arg(driverPath, folder.path())
                  .arg(driverBytes().size()));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(Plugin, ACopyIsLoadedWhereTheTemporaryFolderIsFull)
{
    const int code = codeOfLoadOn("size=64k", 0);

    if (code == noNamespaces)
        GTEST_SKIP() << "this system lets no test mount anything";
    EXPECT_EQ(code, 0);
}

TEST(Plugin, ACopyIsLoadedWhereTheTemporaryFolderHoldsNoPrograms)
{
    const int code = codeOfLoadOn("size=64m", MS_NOEXEC);

    if (code == noNamespaces)
        GTEST_SKIP() << "this system lets no test mount anything";
    EXPECT_EQ(code, 0);
}

TEST(Plugin, AFileThatIsCutShortIsRefusedBeforeItIsMapped)
{
    const int whole = static_cast<int>(driverBytes().size());
    for (int bytes : { 0, 3, 63, 64, 4096, whole / 2, whole - 1 }) {
        const CutFile cut(bytes);
        for (auto instance : { Plugin::Instance::Shared, Plugin::Instance::PrivateCopy }) {
            QString error;

            EXPECT_FALSE(Plugin::load(cut.path, instance, &error)) << bytes;
            EXPECT_TRUE(error.contains(cut.path + QStringLiteral(": the file is")))
                << error.toStdString();
        }
    }
}

TEST(Plugin, ACutFileIsNamedWithItsLengths)
{
    const auto whole = driverBytes().size();
    const CutFile cut(4096);
    QString error;

    Plugin::load(cut.path, Plugin::Instance::Shared, &error);

    EXPECT_EQ(error,
              QStringLiteral("cannot load the driver: %1: the file is cut short: it has 4096 of %2 "
                             "bytes; copy it anew")
                  .arg(cut.path)
                  .arg(whole));
}

TEST(Plugin, WhatIsNoLibraryIsRefusedUnopened)
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe.so"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QString error;

    EXPECT_FALSE(Plugin::load(folder.path(), Plugin::Instance::Shared, &error));
    EXPECT_EQ(error.toStdString(),
              "cannot load the driver: " + folder.path().toStdString()
                  + ": it is a folder, a device or a pipe");
    EXPECT_FALSE(Plugin::load(pipe, Plugin::Instance::PrivateCopy, &error));
    EXPECT_EQ(error.toStdString(),
              "cannot copy the driver " + pipe.toStdString()
                  + ": it is a folder, a device or a pipe");
    EXPECT_FALSE(
        Plugin::load(QStringLiteral("/proc/self/status"), Plugin::Instance::Shared, &error));
    EXPECT_EQ(error.toStdString(),
              "cannot load the driver: /proc/self/status: the file is no library; expected an ELF "
              "file");
}

TEST(Plugin, ForgetsItsStateWhenUnloaded)
{
    auto plugin = Plugin::load(driverPath);
    plugin->api().state->retryLimit = 7;

    plugin.reset();
    plugin = Plugin::load(driverPath);

    EXPECT_EQ(plugin->api().state->retryLimit, 0);
}

TEST(LocateDriver, TakesTheExplicitPathBeforeTheVariable)
{
    const DriverVariable variable(QStringLiteral("/no/such/driver.so"));

    const DriverFile found = locateDriver(driverPath);

    EXPECT_EQ(found.path, driverPath);
}

TEST(LocateDriver, TakesTheVariableWhenNothingIsExplicit)
{
    const DriverVariable variable(driverPath);

    const DriverFile found = locateDriver();

    EXPECT_EQ(found.path, driverPath);
}

TEST(LocateDriver, LooksNowhereElseWhenAPathIsNamed)
{
    const DriverFile found = locateDriver(QStringLiteral("/no/such/driver.so"));

    EXPECT_EQ(found.path, QString());
    EXPECT_EQ(found.tried, QStringList { QStringLiteral("/no/such/driver.so") });
}

TEST(LocateDriver, LooksBesideTheProgramThenInTheLibraryFolders)
{
    qunsetenv("KORVANE_DRIVER");
    const QDir program =
        QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absoluteDir();
    const QString beside = program.filePath(QStringLiteral("libkorvane_dx4.so"));

    const DriverFile none = locateDriver();
    ASSERT_TRUE(QFile::link(driverPath, beside));
    const DriverFile found = locateDriver();
    QFile::remove(beside);

    EXPECT_EQ(none.path, QString());
    ASSERT_EQ(none.tried.size(), 3);
    EXPECT_EQ(none.tried.at(0), beside);
    EXPECT_EQ(none.tried.at(1),
              QDir::cleanPath(program.filePath(QStringLiteral("../lib/libkorvane_dx4.so"))));
    const QString installed =
        QStringLiteral("/korvane_dx4/qt%1/libkorvane_dx4.so").arg(QT_VERSION >> 16);
    EXPECT_TRUE(none.tried.at(2).endsWith(installed)) << qPrintable(none.tried.at(2));
    EXPECT_EQ(none.tried.size(), 3) << "this program has the host's code in itself";
    EXPECT_EQ(found.path, beside);
    EXPECT_EQ(found.tried, QStringList { beside });
}
