// SPDX-License-Identifier: MIT
// Changes that wait until the output takes lines again.
#pragma once

#include <functional>
#include <set>
#include <vector>

namespace dx4::cli {

/// Which rows of a view have news that were not said. While output does not flow a row is held
/// once, however often it changes: what is said in the end is its newest state, and the changes
/// before that are counted. So what is held is bounded by the number of rows.
class HeldChanges {
public:
    /// A row is in another state than before.
    void add(int row);

    /// Says the held rows, the lowest first, as long as output flows.
    ///
    /// @param say  prints a row; false where its state is the one that was said last
    void say(const std::function<bool(int)> &say);

    /// Changes that nobody was or will be shown, since the last call; 0 while rows are held.
    int takeUnshown();

    /// Gives up what is held: it counts as not shown.
    void drop();

private:
    std::vector<int> m_changes; // by row, since it was last said
    std::set<int> m_rows; // held
    int m_unshown = 0;
};

} // namespace dx4::cli
