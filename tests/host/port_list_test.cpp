// SPDX-License-Identifier: MIT
// Ports of the machine: lasting names and holders.
#include "host/line/port_list.h"

#include "pseudo_terminal.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace dx4::host;

TEST(PortList, ANameOfTheFolderLeadsToItsDevice)
{
    const QTemporaryDir folder;
    const PseudoTerminal adapter;
    QFile::link(adapter.path(), folder.filePath(QStringLiteral("usb-adapter")));

    const QString device = portDevice(QStringLiteral("usb-adapter"), folder.path());

    EXPECT_EQ(device, adapter.path());
}

TEST(PortList, ADeviceHasTheNameThatLeadsToIt)
{
    const QTemporaryDir folder;
    const PseudoTerminal adapter;
    const PseudoTerminal other;
    const QString name = folder.filePath(QStringLiteral("usb-b"));
    QFile::link(other.path(), folder.filePath(QStringLiteral("usb-a")));
    QFile::link(adapter.path(), name);

    EXPECT_EQ(lastingName(adapter.path(), folder.path()), name);
    EXPECT_EQ(lastingName(QStringLiteral("/dev/null"), folder.path()), QString());
    EXPECT_EQ(lastingName(adapter.path(), QStringLiteral("/no/such/folder")), QString());
}

TEST(PortList, ANameThatLeadsNowhereIsADevice)
{
    const QTemporaryDir folder;

    EXPECT_EQ(portDevice(QStringLiteral("ttyNone9"), folder.path()),
              QStringLiteral("/dev/ttyNone9"));
    EXPECT_EQ(portDevice(QStringLiteral("/dev/ttyNone9"), folder.path()),
              QStringLiteral("/dev/ttyNone9"));
}

TEST(PortList, ANameWithASlashIsAPathFromTheWorkingFolderOn)
{
    const QTemporaryDir folder;
    const PseudoTerminal adapter;
    QFile::link(adapter.path(), folder.filePath(QStringLiteral("drive")));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));

    const QString here = portDevice(QStringLiteral("./drive"));
    const QString above =
        portDevice(QStringLiteral("../%1/drive").arg(QDir(folder.path()).dirName()));
    const QString nowhere = portDevice(QStringLiteral("./none"));
    QDir::setCurrent(before);

    EXPECT_EQ(here, adapter.path());
    EXPECT_EQ(above, adapter.path());
    EXPECT_EQ(nowhere, QStringLiteral("./none"));
}

TEST(PortList, FarEndOfAPseudoTerminalIsNoStranger)
{
    const PseudoTerminal adapter;
    const int near = open(adapter.path().toLatin1().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);

    const QVector<PortHolder> holders = holdersOf(adapter.path());
    const QVector<PortHolder> strangers = strangersOn(adapter.path());
    close(near);

    ASSERT_EQ(holders.size(), 1);
    EXPECT_TRUE(holders.at(0).isFarEnd);
    EXPECT_TRUE(strangers.isEmpty());
}

TEST(PortList, AHolderIsNamedOnce)
{
    const PseudoTerminal adapter;
    const QByteArray path = adapter.path().toLatin1();
    const int first = open(path.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const int second = open(path.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);

    const QVector<PortHolder> holders = holdersOf(adapter.path());
    close(first);
    close(second);
    const QVector<PortHolder> afterwards = holdersOf(adapter.path());

    ASSERT_EQ(holders.size(), 1);
    EXPECT_EQ(holders.at(0).process, getpid());
    EXPECT_EQ(holders.at(0).program, QStringLiteral("korvane_host_test"));
    EXPECT_TRUE(afterwards.isEmpty());
}

TEST(PortList, TheGroupThatHasThePermissionIsNamed)
{
    QTemporaryFile device;
    ASSERT_TRUE(device.open());
    ASSERT_EQ(fchmod(device.handle(), 0660), 0);
    const std::string name = getgrgid(getgid())->gr_name;
    ASSERT_EQ(fchown(device.handle(), getuid(), getgid()), 0);

    const QString group = permissionText(device.fileName());

    EXPECT_EQ(group.toStdString(),
              "no permission; group " + name + " has it: \"sudo usermod -aG " + name
                  + " $USER\" joins it, from the next login on");
}

TEST(PortList, WhatItsGroupMayNotReadAndWriteIsItsOwnersAlone)
{
    QTemporaryFile device;
    ASSERT_TRUE(device.open());
    for (mode_t mode : { 0600U, 0640U, 0620U, 0606U }) {
        ASSERT_EQ(fchmod(device.handle(), mode), 0);

        EXPECT_EQ(permissionText(device.fileName()),
                  QStringLiteral("no permission; its owner alone may open it"))
            << std::oct << mode;
    }
}

TEST(PortList, AGroupWithoutANameIsNotOneToJoin)
{
    QTemporaryFile device;
    ASSERT_TRUE(device.open());
    ASSERT_EQ(fchmod(device.handle(), 0660), 0);
    if (fchown(device.handle(), getuid(), 54321) != 0)
        GTEST_SKIP() << "only root gives files to other groups";

    EXPECT_EQ(permissionText(device.fileName()),
              QStringLiteral("no permission; its owner alone may open it"));
}

TEST(PortList, OfADeviceThatIsGoneNobodyKnowsWhoMayOpenIt)
{
    EXPECT_EQ(permissionText(QStringLiteral("/dev/ttyNone9")), QStringLiteral("no permission"));
}

TEST(PortList, WhatIsNoDeviceHasNoHolder)
{
    EXPECT_TRUE(holdersOf(QStringLiteral("/proc/self/exe")).isEmpty());
    EXPECT_TRUE(holdersOf(QStringLiteral("/dev/ttyNone9")).isEmpty());
}

TEST(PortList, HoldersAreTold)
{
    EXPECT_EQ(holderText({ { 812, QStringLiteral("dx4") }, { 901, QStringLiteral("minicom") } }),
              QStringLiteral("dx4 (process 812), minicom (process 901)"));
    EXPECT_EQ(holderText({}), QStringLiteral("a program of another user"));
}

TEST(PortList, EveryPortOfTheMachineHasADevice)
{
    const QVector<PortInfo> ports = listPorts();

    for (const PortInfo &port : ports)
        EXPECT_TRUE(port.device.startsWith(QStringLiteral("/dev/"))) << port.device.toStdString();
}
