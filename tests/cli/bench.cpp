// SPDX-License-Identifier: MIT
// The tool on a bench: a simulated inverter, a folder of its own, and shell commands.
#include "bench.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

std::string contentOf(const std::string &path)
{
    std::ifstream stream(path);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

Bench::Bench()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "dx4-bench-XXXXXX").string();
    m_folder = mkdtemp(pattern.data());
}

Bench::~Bench()
{
    std::filesystem::remove_all(m_folder);
}

void Bench::serve(const std::string &stations)
{
    m_simulator = std::make_unique<ChildProcess>(std::vector<std::string> {
        SIMULATOR_FILE, "--pty", "--speed", "0", "--turnaround", "0", "--stations", stations });
    const std::string first = m_simulator->readLine();
    m_device = first.substr(first.find(' ') + 1);
}

void Bench::fake(const std::vector<std::string> &answers, int breakAfter)
{
    m_fake = std::make_unique<FakeStation>();
    for (const std::string &answer : answers)
        m_fake->answer(answer);
    m_fake->breakAfter(breakAfter);
    m_device = m_fake->device();
    m_fake->start();
}

std::string Bench::tell(const std::string &command)
{
    m_simulator->writeLine(command);
    return m_simulator->readLine();
}

std::vector<std::string> Bench::shell(const std::string &command, const std::string &settings) const
{
    const std::string path = std::filesystem::path(TOOL_FILE).parent_path().string();
    const std::string setting = "cd '" + m_folder + "' && export PATH='" + path
        + "':$PATH DX4_CONFIG= " + settings + " KORVANE_DRIVER='" DRIVER_FILE "' DX4_PORT='"
        + m_device + "' && ";
    return { "/bin/sh", "-c", setting + command };
}

Printed Bench::run(const std::string &command)
{
    const std::string errors = m_folder + ".err";
    ChildProcess child(shell("{ " + command + "\n} 2>'" + errors + "'"));
    child.closeInput();
    Printed printed;
    printed.out = child.readAll();
    printed.code = child.wait();
    printed.err = contentOf(errors);
    std::filesystem::remove(errors);
    return printed;
}

std::string Bench::complete(const std::string &typed)
{
    const std::string script = m_folder + ".complete";
    const Printed printed =
        run("cat >'" + script + "' <<'END'\n. " COMPLETION_FOLDER "/dx4.bash\nCOMP_WORDS=(" + typed
            + ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_dx4\n"
              "printf '%s\\n' \"${COMPREPLY[@]}\"\nEND\nbash '"
            + script + "'; rm '" + script + "'");
    return printed.out;
}

bool Bench::awaitRequests(int function, int count) const
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (m_fake->heard(function) < count && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return m_fake->heard(function) >= count;
}

bool Bench::awaitFreePort()
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    bool isFree = false;
    while (!isFree && std::chrono::steady_clock::now() < end)
        isFree = run("dx4 line $DX4_PORT").out.find("by nobody seen") != std::string::npos;
    return isFree;
}
