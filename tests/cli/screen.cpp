// SPDX-License-Identifier: MIT
// What a terminal shows after the bytes that a program wrote to it.
#include "screen.h"

#include <algorithm>
#include <utility>

namespace {

/// Bytes of a UTF-8 character, by its first one.
std::size_t lengthOf(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xE0)
        return byte >= 0xF0 ? 4 : 3;
    return byte >= 0xC0 ? 2 : 1;
}

bool endsSequence(const std::string &pending)
{
    const char last = pending.back();
    return pending.size() > 2 && ((last >= 'A' && last <= 'Z') || (last >= 'a' && last <= 'z'));
}

} // namespace

Screen::Row &Screen::row()
{
    if (m_row >= m_rows.size())
        m_rows.resize(m_row + 1);
    return m_rows[m_row];
}

void Screen::write(const std::string &bytes)
{
    for (const char byte : bytes) {
        if (byte == '\x1b' || !m_pending.empty()) {
            m_pending += byte;
            const bool isSequence = m_pending.front() == '\x1b';
            if (isSequence && endsSequence(m_pending)) {
                const std::string sequence = std::exchange(m_pending, "");
                escape(sequence.substr(2, sequence.size() - 3), sequence.back());
            } else if (!isSequence && m_pending.size() == lengthOf(m_pending.front())) {
                put(std::exchange(m_pending, ""));
            }
        } else if (byte == '\n') {
            ++m_row;
        } else if (byte == '\r') {
            m_column = 0;
        } else if (byte == '\b') {
            m_column -= m_column > 0 ? 1 : 0;
        } else if (byte == '\a') {
            continue; // the bell shows nothing
        } else if (lengthOf(byte) > 1) {
            m_pending = byte;
        } else {
            put(std::string(1, byte));
        }
    }
}

void Screen::put(const std::string &character)
{
    if (m_column >= static_cast<std::size_t>(m_columns)) {
        m_overflowed = true;
        return;
    }
    Row &cells = row();
    if (m_column >= cells.size())
        cells.resize(m_column + 1);
    cells[m_column++] = { character, m_style };
}

void Screen::escape(const std::string &parameters, char command)
{
    const bool sets = command == 'h';
    if (command == 'A') {
        m_row -= std::min(m_row, static_cast<std::size_t>(std::stoi(parameters)));
    } else if (command == 'K') {
        row().resize(std::min(row().size(), m_column));
    } else if (command == 'J') {
        row().resize(std::min(row().size(), m_column));
        m_rows.resize(m_row + 1);
    } else if (command == 'm') {
        m_style = parameters == "0" ? "" : parameters;
        m_everStyled = m_everStyled || !m_style.empty();
    } else if (parameters == "?25") {
        m_cursorIsShown = sets;
    } else if (parameters == "?7") {
        m_linesWrap = sets;
    }
}

std::string Screen::line(int number) const
{
    std::string text;
    if (static_cast<std::size_t>(number) >= m_rows.size())
        return text;
    for (const Cell &cell : m_rows[static_cast<std::size_t>(number)])
        text += cell.text;
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string Screen::lineWith(const std::string &text) const
{
    for (int i = 0; i < static_cast<int>(m_rows.size()); ++i) {
        if (line(i).find(text) != std::string::npos)
            return line(i);
    }
    return "";
}

std::string Screen::text() const
{
    std::string whole;
    for (int i = 0; i < static_cast<int>(m_rows.size()); ++i)
        whole += line(i) + "\n";
    return whole;
}

std::string Screen::styleOf(const std::string &text) const
{
    for (const Row &cells : m_rows) {
        std::string whole;
        for (const Cell &cell : cells)
            whole += cell.text.size() == 1 ? cell.text : "?";
        const std::size_t at = whole.find(text);
        if (at != std::string::npos)
            return cells[at].style;
    }
    return "";
}
