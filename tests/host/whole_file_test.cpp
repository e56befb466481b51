// SPDX-License-Identifier: MIT
// Files that are replaced as a whole or not at all.
#include "host/base/whole_file.h"
#include "host/parameters/parameter_set.h"
#include "host/recording/pcap_file.h"

#include "full_disk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace dx4::host;

namespace {

/// Root may write everywhere: while this lives the process is nobody.
class WithoutRights {
public:
    WithoutRights()
    {
        if (geteuid() == 0) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~WithoutRights()
    {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    WithoutRights(const WithoutRights &) = delete;
    WithoutRights &operator=(const WithoutRights &) = delete;
};

/// While this lives nothing is taken away from the mode of a new file.
class WithoutMask {
public:
    WithoutMask() = default;
    ~WithoutMask() { umask(m_before); }
    WithoutMask(const WithoutMask &) = delete;
    WithoutMask &operator=(const WithoutMask &) = delete;

private:
    const mode_t m_before = umask(0);
};

/// While this lives the next file that is opened has the number 0, as in a service.
class WithoutInput {
public:
    WithoutInput() { ::close(STDIN_FILENO); }
    ~WithoutInput()
    {
        dup2(m_kept, STDIN_FILENO);
        ::close(m_kept);
    }
    WithoutInput(const WithoutInput &) = delete;
    WithoutInput &operator=(const WithoutInput &) = delete;

private:
    const int m_kept = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
};

void refuseWarnings(QtMsgType, const QMessageLogContext &, const QString &text)
{
    ADD_FAILURE() << text.toStdString();
}

mode_t modeOf(const QString &path)
{
    struct stat status { };
    EXPECT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
    return status.st_mode & 07777U;
}

class WholeFile : public ::testing::Test {
protected:
    WholeFile() { fill("old"); }
    ~WholeFile() override
    {
        chmod(QFile::encodeName(folder.path()).constData(), 0700);
        qInstallMessageHandler(m_handler);
    }

    void fill(const QByteArray &content) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QByteArray content() const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::System | QDir::Hidden);
    }

    /// Links, each to the one before; the first leads to the file. @return the last one
    QString linkedThrough(int links) const
    {
        QString last = path;
        for (int i = 1; i <= links; ++i) {
            const QString next = folder.filePath(QStringLiteral("link%1").arg(i));
            EXPECT_TRUE(QFile::link(last, next));
            last = next;
        }
        return last;
    }

    std::string named(const char *why) const { return path.toStdString() + ": " + why; }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("drive.txt"));
    QString error;

private:
    const QtMessageHandler m_handler = qInstallMessageHandler(refuseWarnings);
};

int openFiles()
{
    const QDir::Filters all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    return static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).entryList(all).size());
}

ParameterSet allZero()
{
    ParameterSet set;
    for (int address : allParameters())
        set.values.insert(address, 0);
    return set;
}

} // namespace

TEST_F(WholeFile, TheNewContentTakesThePlaceOfTheOld)
{
    const bool replaced = replaceFile(path, "new", &error);

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_EQ(content(), "new");
    EXPECT_EQ(files(), QStringList { QStringLiteral("drive.txt") });
}

TEST_F(WholeFile, AFileThatIsNotThereIsMade)
{
    QFile::remove(path);

    const bool replaced = replaceFile(path, "new", &error);

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_EQ(content(), "new");
}

TEST_F(WholeFile, AFullDiskLeavesTheOldFileAndIsNamed)
{
    bool replaced = true;
    {
        const FullDisk disk(3);
        replaced = replaceFile(path, "longer", &error);
    }

    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(), named("File too large; the file is as it was"));
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(files(), QStringList { QStringLiteral("drive.txt") });
}

TEST_F(WholeFile, AParameterSetOnAFullDiskLeavesTheOldOne)
{
    bool saved = true;
    {
        const FullDisk disk(1024); // less than half of the set
        saved = saveParameterSet(path, allZero(), &error);
    }

    EXPECT_FALSE(saved);
    EXPECT_EQ(error.toStdString(), named("File too large; the file is as it was"));
    EXPECT_EQ(content(), "old");
}

TEST_F(WholeFile, ACaptureOnAFullDiskLeavesTheOldOne)
{
    bool written = true;
    {
        const FullDisk disk(10);
        written = writePcap(path, { { Duration(0), true, "request" } }, Duration(0), &error);
    }

    EXPECT_FALSE(written);
    EXPECT_EQ(error.toStdString(), named("File too large; the file is as it was"));
    EXPECT_EQ(content(), "old");
}

TEST_F(WholeFile, AFolderThatTakesNoFileIsNamed)
{
    chmod(QFile::encodeName(folder.path()).constData(), 0555);
    chmod(QFile::encodeName(path).constData(), 0666);
    bool possible = true;
    bool replaced = true;
    {
        const WithoutRights nobody;
        possible = canReplaceFile(path, nullptr);
        replaced = replaceFile(path, "new", &error);
    }

    EXPECT_FALSE(possible);
    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(),
              named("its folder ") + folder.path().toStdString()
                  + " takes no new file: Permission denied; the file is as it was");
    EXPECT_EQ(content(), "old");
}

TEST_F(WholeFile, AFileThatMayOnlyBeReadStays)
{
    chmod(QFile::encodeName(folder.path()).constData(), 0777);
    chmod(QFile::encodeName(path).constData(), 0444);
    bool replaced = true;
    {
        const WithoutRights nobody;
        replaced = replaceFile(path, "new", &error);
    }

    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(), named("Permission denied; the file is as it was"));
    EXPECT_EQ(content(), "old");
}

TEST_F(WholeFile, AFolderThatIsGoneIsNamed)
{
    const QString elsewhere = folder.filePath(QStringLiteral("gone/drive.txt"));

    const bool replaced = replaceFile(elsewhere, "new", &error);

    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(), elsewhere.toStdString() + ": No such file or directory");
}

TEST_F(WholeFile, AFolderThatGoesMeanwhileIsNamed)
{
    const QString gone = folder.filePath(QStringLiteral("gone"));
    ASSERT_TRUE(QDir().mkdir(gone));
    FileReplacement file(gone + QStringLiteral("/drive.txt"));
    ASSERT_TRUE(file.open() && file.write("new"));
    ASSERT_TRUE(QDir(gone).removeRecursively());

    const bool replaced = file.putInPlace();

    EXPECT_FALSE(replaced);
    EXPECT_EQ(file.error().toStdString(),
              gone.toStdString() + "/drive.txt: No such file or directory");
}

TEST_F(WholeFile, ALinkStaysAndItsFileIsReplaced)
{
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));

    const bool replaced = replaceFile(link, "new", &error);

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_EQ(QFile::symLinkTarget(link), path);
    EXPECT_EQ(content(), "new");
}

TEST_F(WholeFile, AsManyLinksAsTheSystemFollowsAllStay)
{
    const QString link = linkedThrough(40);

    const bool replaced = replaceFile(link, "new", &error);

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_EQ(QFile::symLinkTarget(folder.filePath(QStringLiteral("link1"))), path);
    EXPECT_EQ(content(), "new");
}

TEST_F(WholeFile, MoreLinksThanTheSystemFollowsAreNamedAndStay)
{
    const QString link = linkedThrough(41);

    const bool replaced = replaceFile(link, "new", &error);

    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(), link.toStdString() + ": Too many levels of symbolic links");
    EXPECT_EQ(QFile::symLinkTarget(folder.filePath(QStringLiteral("link1"))), path);
    EXPECT_EQ(content(), "old");
}

TEST_F(WholeFile, ALinkToItselfIsNamed)
{
    const QString ring = folder.filePath(QStringLiteral("ring"));
    ASSERT_TRUE(QFile::link(ring, ring));

    const bool possible = canReplaceFile(ring, &error);

    EXPECT_FALSE(possible);
    EXPECT_EQ(error.toStdString(), ring.toStdString() + ": Too many levels of symbolic links");
}

TEST_F(WholeFile, TheModeStays)
{
    chmod(QFile::encodeName(path).constData(), 0641);

    replaceFile(path, "new", &error);

    EXPECT_EQ(modeOf(path), 0641U);
}

TEST_F(WholeFile, ANewFileHasTheModeThatTheMaskLeaves)
{
    QFile::remove(path);
    {
        const WithoutMask mask;
        replaceFile(path, "new", &error);
    }

    EXPECT_EQ(modeOf(path), 0666U);
}

TEST_F(WholeFile, AFileThatHasTheNewOnesNameStays)
{
    const QString taken = QStringLiteral(".dx4-%1-%2.new").arg(getpid());
    FileReplacement before(folder.filePath(QStringLiteral("other.txt")));
    ASSERT_TRUE(before.open());
    const int number =
        files().constFirst().section(QLatin1Char('-'), 2).section(QLatin1Char('.'), 0, 0).toInt();
    QFile neighbour(folder.filePath(taken.arg(number + 1)));
    ASSERT_TRUE(neighbour.open(QIODevice::ReadWrite) && neighbour.write("mine") == 4
                && neighbour.flush());

    bool replaced = false;
    {
        const WithoutInput service; // the file that takes its place has the number 0
        replaced = replaceFile(path, "new", &error);
    }

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_EQ(content(), "new");
    EXPECT_TRUE(neighbour.seek(0));
    EXPECT_EQ(neighbour.readAll(), "mine");
    EXPECT_EQ(
        files(),
        (QStringList { taken.arg(number), taken.arg(number + 1), QStringLiteral("drive.txt") }));
}

TEST_F(WholeFile, NoFileIsLeftOpen)
{
    const int before = openFiles();

    replaceFile(path, "new", &error);
    canReplaceFile(path, &error);

    EXPECT_EQ(openFiles(), before);
}

TEST_F(WholeFile, AServiceWithoutStandardInputReplacesAFileAsWell)
{
    bool replaced = false;
    bool isLeftOpen = true;
    {
        const WithoutInput service;
        replaced = replaceFile(path, "new", &error);
        isLeftOpen = fcntl(STDIN_FILENO, F_GETFD) >= 0;
    }

    EXPECT_TRUE(replaced) << error.toStdString();
    EXPECT_FALSE(isLeftOpen);
    EXPECT_EQ(content(), "new");
}

TEST_F(WholeFile, WhatCannotReachTheDiskIsNotPutInPlace)
{
    bool replaced = true;
    {
        FileReplacement file(path);
        ASSERT_TRUE(file.open() && file.write("new"));
        ::close(file.takeDescriptor());

        replaced = file.putInPlace();

        error = file.error();
    }

    EXPECT_FALSE(replaced);
    EXPECT_EQ(error.toStdString(), named("Bad file descriptor"));
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(files(), QStringList { QStringLiteral("drive.txt") });
}

TEST_F(WholeFile, WhatIsNoFileIsNotReplaced)
{
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const std::pair<QString, const char *> rows[] = {
        { pipe, ": is a device or a pipe; name a file" },
        { QStringLiteral("/dev/full"), ": is a device or a pipe; name a file" },
        { folder.path(), ": is a folder; name a file" },
    };
    for (const auto &[other, why] : rows) {
        EXPECT_FALSE(canReplaceFile(other, &error));
        EXPECT_EQ(error.toStdString(), other.toStdString() + why);
    }
}

TEST_F(WholeFile, AskingLeavesEverythingAsItIs)
{
    const QString other = folder.filePath(QStringLiteral("other.txt"));

    EXPECT_TRUE(canReplaceFile(path, nullptr));
    EXPECT_TRUE(canReplaceFile(other, nullptr));

    EXPECT_EQ(content(), "old");
    EXPECT_EQ(files(), QStringList { QStringLiteral("drive.txt") });
}

TEST_F(WholeFile, AFileWithoutEndIsNotRead)
{
    QString why;

    EXPECT_EQ(readWholeFile(QStringLiteral("/dev/zero"), &why), std::nullopt);
    EXPECT_EQ(why.toStdString(), "longer than 16 MiB; no such file is");
    EXPECT_EQ(readWholeFile(path, &why), QByteArray("old"));
}

TEST_F(WholeFile, SixteenMebibytesAreReadAndNotOneByteMore)
{
    QString why;
    QFile file(path);

    ASSERT_TRUE(file.resize(16'777'216));
    const auto most = readWholeFile(path, &why);
    ASSERT_TRUE(file.resize(16'777'217));
    const auto more = readWholeFile(path, &why);

    ASSERT_TRUE(most.has_value()) << why.toStdString();
    EXPECT_EQ(most->size(), 16'777'216);
    EXPECT_FALSE(more.has_value());
}

TEST_F(WholeFile, AnEmptyFileIsReadAsOne)
{
    fill("");

    EXPECT_EQ(readWholeFile(path, &error), QByteArray());
    EXPECT_EQ(error.toStdString(), "");
}

TEST_F(WholeFile, APipeIsReadToItsEnd)
{
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const std::string sent(200'000, 'x'); // more than a pipe holds
    std::thread writer([&] {
        const int descriptor = ::open(QFile::encodeName(pipe).constData(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(::write(descriptor, sent.data(), sent.size()), 200'000);
        ::close(descriptor);
    });

    const auto bytes = readWholeFile(pipe, &error);

    writer.join();
    ASSERT_TRUE(bytes.has_value()) << error.toStdString();
    EXPECT_EQ(bytes->size(), 200'000);
}

TEST_F(WholeFile, AFileThatIsNotThereIsNotRead)
{
    QFile::remove(path);

    EXPECT_EQ(readWholeFile(path, &error), std::nullopt);
    EXPECT_EQ(error.toStdString(), "No such file or directory");
}
