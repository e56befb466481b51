// SPDX-License-Identifier: MIT
// Files of parameters: what is replaced, what stays.
#include "parameters_fixture.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

using namespace dx4::panel;
using namespace dx4::host;

namespace {

class ParameterFilesTest : public ::testing::Test {
protected:
    static std::string content(const QString &file)
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll().toStdString() : "none";
    }

    static void put(const QString &file, const char *bytes)
    {
        QFile opened(file);
        ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
        opened.write(bytes);
    }

    QTemporaryDir folder;
    QString path { folder.filePath(QStringLiteral("drive.txt")) };
};

/// No file takes more bytes than these, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit tight { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before {};
    void (*m_handler)(int) = SIG_DFL;
};

} // namespace

TEST_F(ParameterFilesTest, ASetIsSavedAsTheToolWritesIt)
{
    const SaveResult result = saveParameters(path, tunedSet(3), false);

    EXPECT_EQ(result.kind, SaveResult::Kind::Saved);
    EXPECT_EQ(result.text.toStdString(), "201 parameters in " + path.toStdString());
    EXPECT_EQ(content(path), toText(tunedSet(3)).toStdString());
}

TEST_F(ParameterFilesTest, TheOldFileStaysWholeWhereTheDiskIsFull)
{
    saveParameters(path, factorySet(3), false);
    const FullDisk disk(100);

    const SaveResult result = saveParameters(path, tunedSet(3), false);

    EXPECT_EQ(result.kind, SaveResult::Kind::Failed);
    EXPECT_EQ(result.text.toStdString(),
              "Not saved. " + path.toStdString() + ": File too large; the file is as it was");
    EXPECT_EQ(content(path), toText(factorySet(3)).toStdString());
}

TEST_F(ParameterFilesTest, AnotherStationsFileIsReplacedWithAnAgreementAlone)
{
    saveParameters(path, factorySet(2), false);

    const SaveResult asked = saveParameters(path, tunedSet(3), false);
    EXPECT_EQ(asked.kind, SaveResult::Kind::OtherStation);
    EXPECT_EQ(asked.text.toStdString(),
              "drive.txt holds the parameters of station 2. They would be replaced by those of "
              "station 3.");
    EXPECT_EQ(content(path), toText(factorySet(2)).toStdString());

    const SaveResult agreed = saveParameters(path, tunedSet(3), true);
    EXPECT_EQ(agreed.kind, SaveResult::Kind::Saved);
    EXPECT_EQ(content(path), toText(tunedSet(3)).toStdString());
}

TEST_F(ParameterFilesTest, AFileOfSomethingElseStays)
{
    put(path, "shopping\n");

    const SaveResult result = saveParameters(path, tunedSet(3), true);

    EXPECT_EQ(result.kind, SaveResult::Kind::Failed);
    EXPECT_EQ(content(path), "shopping\n");
}

TEST_F(ParameterFilesTest, ACompleteSetIsNotReplacedByOneThatIsNot)
{
    saveParameters(path, factorySet(3), false);
    ParameterSet part;
    part.station = 3;
    part.values[at(0, 0)] = 5;

    const SaveResult result = saveParameters(path, part, false);

    EXPECT_EQ(result.text.toStdString(),
              "Not saved. drive.txt stays as it was, a complete set; what was read is not "
              "complete.");
    EXPECT_EQ(content(path), toText(factorySet(3)).toStdString());
}

TEST_F(ParameterFilesTest, AFolderShowsItsFoldersAndItsTexts)
{
    put(folder.filePath(QStringLiteral("b.txt")), "");
    put(folder.filePath(QStringLiteral("a.txt")), "");
    put(folder.filePath(QStringLiteral("picture.png")), "");
    QDir(folder.path()).mkdir(QStringLiteral("stick"));
    Background background;
    ParameterFiles files(background.runner(), QStringLiteral("/"));
    std::optional<FolderContent> content;

    files.open(folder.path(), [&](const FolderContent &found) { content = found; });
    EXPECT_FALSE(content);
    ASSERT_TRUE(QTest::qWaitFor([&] { return content.has_value(); }));

    EXPECT_EQ(content->files.join(QLatin1Char(' ')).toStdString(), "a.txt b.txt");
    EXPECT_EQ(content->folders.join(QLatin1Char(' ')).toStdString(), "stick");
    EXPECT_EQ(files.folder().toStdString(), folder.path().toStdString());
}

TEST_F(ParameterFilesTest, AFileThatIsWrongIsNamedWithItsLine)
{
    put(path, "station 3\nF 8.2 = many\n");
    ParameterFiles files([](const Work &work) { work()(); }, folder.path());
    QString error;

    files.load(path, [&](const std::optional<ParameterSet> &, const QString &why) { error = why; });

    EXPECT_EQ(error.toStdString(),
              path.toStdString() + ":2: expected a line such as \"F 8.2 = 5\"");
}

TEST(Background, WorksOnAThreadOfItsOwnAndTellsOnTheOneOfTheWindow)
{
    Background background;
    QThread *worked = nullptr;
    QThread *told = nullptr;

    background.run([&]() -> std::function<void()> {
        worked = QThread::currentThread();
        return [&] { told = QThread::currentThread(); };
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return told != nullptr; }));

    EXPECT_NE(worked, QThread::currentThread());
    EXPECT_EQ(told, QThread::currentThread());
}

TEST(Background, CallsNothingOnceItIsGone)
{
    bool isTold = false;

    {
        Background background;
        background.run([&]() -> std::function<void()> { return [&] { isTold = true; }; });
    }
    QCoreApplication::processEvents();

    EXPECT_FALSE(isTold);
}
