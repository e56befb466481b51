// SPDX-License-Identifier: MIT
// Linked into a test program whose sources were compiled with -finstrument-functions: writes down
// which functions each test enters. Used by visits.py.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#define NOT_RECORDED __attribute__((no_instrument_function))

// NOLINTBEGIN(bugprone-reserved-identifier): names of linker and compiler.
extern "C" char __executable_start;
extern "C" NOT_RECORDED void __cyg_profile_func_enter(void *function, void *caller);
extern "C" NOT_RECORDED void __cyg_profile_func_exit(void *function, void *caller);
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr std::size_t placeCount = 1U << 16U;

using Place = std::atomic<std::uint32_t>;
static_assert(sizeof(Place) == sizeof(std::uint32_t), "the file is read as plain numbers");

/// Offsets of functions by their hash. The pages are shared with every process that a test forks or
/// starts from the same program: what runs there was reached by the test as well.
Place *places = nullptr;

NOT_RECORDED Place *openPlaces()
{
    const char *path = std::getenv("KORVANE_VISITS");
    const int file = path
        ? ::open((std::string(path) + ".table").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)
        : -1;
    constexpr std::size_t size = placeCount * sizeof(Place);
    if (file < 0 || ::ftruncate(file, size) != 0)
        return nullptr;
    void *memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<Place *>(memory);
}

class Recorder : public testing::EmptyTestEventListener {
public:
    NOT_RECORDED explicit Recorder(const char *path)
        : m_file(std::fopen(path, "a"))
        , m_owner(::getpid())
    {
    }

private:
    NOT_RECORDED void OnTestStart(const testing::TestInfo &test) override
    {
        // What runs before a test is for all of its suite, and before the first of all for all.
        write(m_isFirst ? "*" : std::string(test.test_suite_name()) + ".*");
        m_isFirst = false;
    }

    NOT_RECORDED void OnTestEnd(const testing::TestInfo &test) override
    {
        write(std::string(test.test_suite_name()) + "." + test.name());
    }

    NOT_RECORDED void OnTestProgramEnd(const testing::UnitTest & /*unit*/) override { write("*"); }

    NOT_RECORDED void write(const std::string &name)
    {
        if (!m_file || !places || ::getpid() != m_owner)
            return;
        std::fprintf(m_file, "%s", name.c_str());
        for (std::size_t place = 0; place < placeCount; ++place) {
            if (const std::uint32_t offset = places[place].exchange(0))
                std::fprintf(m_file, " %x", offset);
        }
        std::fprintf(m_file, "\n");
        std::fflush(m_file);
    }

    std::FILE *m_file;
    pid_t m_owner;
    bool m_isFirst = true;
};

/// Before the constructors of the program's own objects.
[[gnu::constructor(101)]] NOT_RECORDED void begin()
{
    places = openPlaces();
}

/// A program that a test starts anew leaves its visits to the one that started it.
[[gnu::constructor]] NOT_RECORDED void record()
{
    const char *path = std::getenv("KORVANE_VISITS");
    if (path && !std::getenv("KORVANE_VISITS_OWNER")) {
        ::setenv("KORVANE_VISITS_OWNER", "1", 1);
        testing::UnitTest::GetInstance()->listeners().Append(new Recorder(path));
    }
}

} // namespace

void __cyg_profile_func_enter(void *function, void * /*caller*/)
{
    if (!places)
        return;
    const auto offset =
        static_cast<std::uint32_t>(static_cast<char *>(function) - &__executable_start);
    std::size_t place = (offset * 2654435761U) >> 16U;
    for (;; place = (place + 1) % placeCount) {
        std::uint32_t known = places[place].load(std::memory_order_relaxed);
        if (known == offset
            || (known == 0
                && (places[place].compare_exchange_strong(known, offset) || known == offset)))
            return;
    }
}

void __cyg_profile_func_exit(void * /*function*/, void * /*caller*/) { }
