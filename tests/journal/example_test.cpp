// SPDX-License-Identifier: MIT
// The example of the journal over a simulated inverter.
#include "child_process.h"
#include "journal/journal_reader.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

using namespace dx4::journal;

TEST(JournalExample, KeepsWhatALineTellsUntilItIsEnded)
{
    int argc = 1;
    char name[] = "test";
    char *argv[] = { name, nullptr };
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("journal.sqlite"));
    ChildProcess inverter({ SIMULATOR_FILE, "--pty", "--json", "--speed", "0" });
    const std::string opened = inverter.readLine();
    const std::size_t begin = opened.find("/dev/");
    const std::string device = opened.substr(begin, opened.find('"', begin) - begin);
    ChildProcess logger({ LOGGER_FILE, device, DRIVER_FILE, path.toStdString() });

    EXPECT_EQ(logger.readLineWith("line opened").substr(0, 11), "line opened");
    logger.signal(SIGTERM);
    EXPECT_EQ(logger.wait(), 0);

    Trouble trouble;
    const auto reader = JournalReader::open(path, &trouble);
    ASSERT_TRUE(reader) << trouble.text.toStdString();
    EXPECT_EQ(reader->events({})->constLast().text, QStringLiteral("line opened"));
    EXPECT_TRUE(reader->starts()->constFirst().isEnded);
}
