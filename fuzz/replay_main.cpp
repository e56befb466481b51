// SPDX-License-Identifier: MIT
// Plays every file of the directories given once: a regression run that needs no fuzzer.
#include "fuzz_target.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::vector<char> contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return { std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>() };
}

// The name stands in the output before the input runs, so that a crash has a name.
void playFile(const std::filesystem::path &file)
{
    std::printf("%s\n", file.string().c_str());
    std::fflush(stdout);
    const std::vector<char> content = contentOf(file);
    const std::vector<std::uint8_t> bytes(content.begin(), content.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

int playDirectory(const char *directory)
{
    int played = 0;
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        if (!entry.is_regular_file())
            continue;
        playFile(entry.path());
        ++played;
    }
    return played;
}

} // namespace

int main(int argc, char **argv)
{
    int played = 0;
    for (int i = 1; i < argc; ++i)
        played += playDirectory(argv[i]);
    std::printf("%d inputs\n", played);
    return played > 0 ? 0 : 1;
}
