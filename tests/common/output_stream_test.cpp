// SPDX-License-Identifier: MIT
// A stream whose reader does as it likes.
#include "common/output_stream.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <future>

using namespace dx4::common;

namespace {

constexpr auto patience = std::chrono::seconds(30);

/// A pipe of one page.
class SmallPipe {
public:
    SmallPipe()
    {
        if (pipe2(m_ends, O_CLOEXEC) == 0)
            fcntl(m_ends[0], F_SETPIPE_SZ, 4096);
    }
    ~SmallPipe()
    {
        closeReader();
        // The other end stays: the stream's thread lives on.
    }
    SmallPipe(const SmallPipe &) = delete;
    SmallPipe &operator=(const SmallPipe &) = delete;

    int writer() const { return m_ends[1]; }

    /// Leaves no room.
    void fill() const
    {
        const std::string page(4096, '.');
        EXPECT_EQ(write(m_ends[1], page.data(), page.size()), 4096);
    }

    void closeReader()
    {
        if (m_ends[0] >= 0)
            close(m_ends[0]);
        m_ends[0] = -1;
    }

    /// Reads up to the end of a text.
    std::string readUntil(const std::string &text)
    {
        std::string whole;
        char part[4096];
        while (whole.find(text) == std::string::npos) {
            const ssize_t count = read(m_ends[0], part, sizeof part);
            if (count <= 0)
                return whole;
            whole.append(part, static_cast<std::size_t>(count));
        }
        return whole;
    }

private:
    int m_ends[2] = { -1, -1 };
};

/// Lives until the program ends, as it has to.
OutputStream &streamTo(int descriptor, int most)
{
    return *new OutputStream(descriptor, most);
}

std::string lineOf(char letter)
{
    return std::string(999, letter) + '\n';
}

} // namespace

TEST(OutputStream, PassesOverWhatHasNoRoomAndTellsItInItsPlace)
{
    SmallPipe pipe;
    OutputStream &stream = streamTo(pipe.writer(), 5000);
    stream.tellGapsAs([](int count) { return std::to_string(count) + " passed over\n"; });
    int taken = 0;

    while (stream.putOrCount(lineOf('a')))
        ++taken;
    stream.putOrCount(lineOf('b'));
    const std::string text = pipe.readUntil("passed over\n");
    stream.putOrCount("behind\n");

    EXPECT_EQ(stream.passedOver(), 2);
    EXPECT_EQ(text.size(), static_cast<std::size_t>(taken) * 1000 + 14);
    EXPECT_EQ(text.substr(text.size() - 14), "2 passed over\n");
    EXPECT_EQ(text.find('b'), std::string::npos);
    EXPECT_EQ(pipe.readUntil("\n"), "behind\n");
}

TEST(OutputStream, RefusesWhatHasNoRoom)
{
    SmallPipe pipe;
    pipe.fill();
    OutputStream &stream = streamTo(pipe.writer(), 5000);

    while (stream.put(lineOf('a'))) { }

    EXPECT_EQ(stream.waiting(), 5000);
    EXPECT_EQ(stream.untold(), 0);
}

TEST(OutputStream, TakesAPieceOfAnySizeWhenNothingWaits)
{
    SmallPipe pipe;
    OutputStream &stream = streamTo(pipe.writer(), 10);

    EXPECT_TRUE(stream.put(lineOf('a')));

    EXPECT_EQ(pipe.readUntil("\n"), lineOf('a'));
}

TEST(OutputStream, TellsAFailureOnceAndTakesEverythingAfterwards)
{
    SmallPipe pipe;
    pipe.closeReader();
    std::signal(SIGPIPE, SIG_IGN);
    OutputStream &stream = streamTo(pipe.writer(), 5000);
    auto &heard = *new std::promise<OutputStream::Failure>;
    stream.onFailure([&heard](const OutputStream::Failure &failure) { heard.set_value(failure); });

    stream.put("lost\n");
    std::future<OutputStream::Failure> failure = heard.get_future();
    ASSERT_EQ(failure.wait_for(patience), std::future_status::ready);
    EXPECT_TRUE(stream.drain(0, patience));

    EXPECT_EQ(failure.get().error, EPIPE);
    EXPECT_EQ(stream.error(), EPIPE);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(stream.putOrCount(lineOf('a')));
    EXPECT_EQ(stream.waiting(), 0);
}
