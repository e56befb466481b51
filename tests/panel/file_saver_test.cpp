// SPDX-License-Identifier: MIT
// A file is there as a whole or as it was.
#include "panel/trend/file_saver.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

using namespace dx4::panel;

namespace {

constexpr int patience = 20'000; // ms, for a busy machine

/// What is written by programs may be no longer than so many bytes.
class ShortFiles {
public:
    explicit ShortFiles(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~ShortFiles() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before {};
};

} // namespace

TEST(FileSaver, ADiskThatTakesNoMoreLeavesTheOldFileWhole)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trend.csv"));
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    FileSaver saver;
    QSignalSpy failed(&saver, &FileSaver::failed);

    {
        const ShortFiles shortFiles(1'000);
        saver.save(path, FileSaver::Replace::Yes, [](QIODevice &to, QString *error) {
            const bool isWritten = to.write(QByteArray(100'000, 'x')) == 100'000;
            if (!isWritten)
                *error = to.errorString();
            return isWritten;
        });
        ASSERT_TRUE(failed.wait(patience));
    }

    EXPECT_FALSE(failed.first().first().toString().isEmpty());
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll().toStdString(), "old");
}
