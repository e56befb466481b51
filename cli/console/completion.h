// SPDX-License-Identifier: MIT
// What a shell offers for the last word of a command line.
#pragma once

#include <QStringList>

namespace CLI {
class App;
}

namespace dx4::cli {

// Values of an option or a bare word: words between blanks, or one of these.
inline constexpr char anyFile[] = ":files *";
inline constexpr char tomlFile[] = ":files *.toml";
inline constexpr char anyPort[] = ":ports";
inline constexpr char anyStation[] = ":stations"; ///< of the configuration that the line names
inline constexpr char anyCommand[] = ":commands";

/// What the last of the words may become, a candidate a line, its meaning behind a tab. Where that
/// is a file it is anyFile or tomlFile itself: shells know best what files are there.
QStringList completionsOf(CLI::App &app, QStringList words);

} // namespace dx4::cli
