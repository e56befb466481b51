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

class WholeFile : public ::testing::Test {
protected:
    WholeFile() { fill("old"); }
    ~WholeFile() override { chmod(QFile::encodeName(folder.path()).constData(), 0700); }

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

    std::string named(const char *why) const { return path.toStdString() + ": " + why; }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("drive.txt"));
    QString error;
};

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

TEST_F(WholeFile, TheModeStays)
{
    chmod(QFile::encodeName(path).constData(), 0640);

    replaceFile(path, "new", &error);

    struct stat status { };
    stat(QFile::encodeName(path).constData(), &status);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
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
