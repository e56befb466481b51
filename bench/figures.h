// SPDX-License-Identifier: MIT
// The figures to reach: what is compared with what, and the bound of each.
#pragma once

#include "samples.h"

#include <optional>
#include <string>
#include <vector>

namespace bench {

/// One comparison of a figure.
struct Ratio {
    std::string against; ///< name of the peer, or "" where the value itself is bounded
    double value;
    double bound;

    bool isReached() const { return value <= bound; }
};

/// One row of the table.
struct Figure {
    std::string what;
    std::string unit;
    std::optional<double> driver;
    std::optional<double> limit;
    std::optional<double> libmodbus;
    std::optional<double> map;
    std::optional<double> other; ///< Qt's client, or the near-empty plug-in
    std::vector<Ratio> ratios;

    bool isReached() const;
};

/// All figures that the samples have the numbers for.
///
/// A ratio is the median over the rounds of driver by peer, both of the same round: what slows the
/// machine for a while slows both.
std::vector<Figure> figuresOf(const Samples &samples);

} // namespace bench
