// SPDX-License-Identifier: MIT
// A pair of terminals in place of a serial adapter.
#pragma once

#include <QByteArray>
#include <QString>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

/// The far end of a line, held by the test; the near end is opened by its path.
class PseudoTerminal {
public:
    PseudoTerminal()
        : m_far(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        char name[128] = {};
        const bool made = m_far >= 0 && grantpt(m_far) == 0 && unlockpt(m_far) == 0
            && ptsname_r(m_far, name, sizeof name) == 0;
        EXPECT_TRUE(made) << "no pseudo-terminal";
        m_path = QString::fromLatin1(name);
        termios raw {};
        tcgetattr(m_far, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_far, TCSANOW, &raw);
    }
    ~PseudoTerminal() { unplug(); }
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    const QString &path() const { return m_path; }

    void write(const QByteArray &bytes)
    {
        EXPECT_EQ(::write(m_far, bytes.constData(), static_cast<size_t>(bytes.size())),
                  bytes.size());
    }

    /// Waits for so many bytes; gives fewer where the near end was closed.
    QByteArray read(int count) const
    {
        QByteArray bytes(count, '\0');
        int length = 0;
        while (length < count) {
            const ssize_t more =
                ::read(m_far, bytes.data() + length, static_cast<size_t>(count - length));
            if (more <= 0)
                break;
            length += static_cast<int>(more);
        }
        return bytes.left(length);
    }

    /// The descriptor, for what a signal handler may do.
    int farEnd() const { return m_far; }

    /// What the near end has set; a pseudo-terminal knows no parity.
    termios settings() const
    {
        termios current {};
        EXPECT_EQ(tcgetattr(m_far, &current), 0);
        return current;
    }

    /// Takes the adapter away; the near end hangs up.
    void unplug()
    {
        if (m_far >= 0)
            close(m_far);
        m_far = -1;
    }

private:
    int m_far;
    QString m_path;
};
