// SPDX-License-Identifier: MIT
// What a terminal shows after the bytes that a program wrote to it.
#pragma once

#include <string>
#include <vector>

/// A terminal as far as the tool uses one: lines that are drawn over, styles, cursor and wrap.
class Screen {
public:
    explicit Screen(int columns)
        : m_columns(columns)
    {
    }

    void write(const std::string &bytes);

    /// Line of the screen without its trailing blanks, from 0.
    std::string line(int number) const;

    /// First line that holds the text; "" when none does.
    std::string lineWith(const std::string &text) const;

    /// All lines.
    std::string text() const;

    /// Style of the first character of a text, the numbers of its SGR such as "1;32"; "" is plain.
    std::string styleOf(const std::string &text) const;

    /// Whether a character was ever written behind the last column.
    bool overflowed() const { return m_overflowed; }
    bool everStyled() const { return m_everStyled; }
    bool cursorIsShown() const { return m_cursorIsShown; }
    bool linesWrap() const { return m_linesWrap; }

private:
    struct Cell {
        std::string text = " ";
        std::string style;
    };
    using Row = std::vector<Cell>;

    void put(const std::string &character);
    void escape(const std::string &parameters, char command);
    Row &row();

    int m_columns;
    std::vector<Row> m_rows;
    std::size_t m_row = 0;
    std::size_t m_column = 0;
    std::string m_style;
    std::string m_pending; // an escape sequence or a character that is not whole yet
    bool m_overflowed = false;
    bool m_everStyled = false;
    bool m_cursorIsShown = true;
    bool m_linesWrap = true;
};
