// SPDX-License-Identifier: MIT
// Files of a test.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>

inline std::string contentOf(const std::string &path)
{
    std::ifstream stream(path);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// Whether a file gets to hold the text, within half a minute.
inline bool comesToHold(const std::string &path, const std::string &text)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (contentOf(path).find(text) == std::string::npos) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline std::string fileWith(const std::string &name, const std::string &content)
{
    const std::string path = ::testing::TempDir() + std::to_string(getpid()) + name;
    std::ofstream(path) << content;
    return path;
}
