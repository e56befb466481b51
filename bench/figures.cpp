// SPDX-License-Identifier: MIT
// The figures to reach: what is compared with what, and the bound of each.
#include "figures.h"

#include "poll.h"

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

const std::string limitName = "limit";
const std::string modbusName = "libmodbus";
const std::string mapName = "map";

struct Bound {
    std::string peer;
    double value;
};

class FigureList {
public:
    explicit FigureList(const Samples &samples)
        : m_samples(samples)
    {
    }

    // The driver beside its peers; those without a bound are shown only.
    void addPeers(const std::string &what, const std::string &name,
                  const std::vector<Bound> &bounds)
    {
        Figure figure { what, "ns", medianOf(name + "/driver"), {}, {}, {}, {}, {} };
        if (!figure.driver)
            return;
        figure.limit = medianOf(name + "/" + limitName);
        figure.libmodbus = medianOf(name + "/" + modbusName);
        figure.map = medianOf(name + "/" + mapName);
        for (const std::string other : { "serialbus", "plugin" }) {
            if (const auto value = medianOf(name + "/" + other))
                figure.other = value;
        }
        for (const Bound &bound : bounds)
            addRatio(figure, name + "/driver", name + "/" + bound.peer, bound);
        m_figures.push_back(figure);
    }

    // One measurement of the driver against another one of it.
    void addGrowth(const std::string &what, const std::string &large, const std::string &small,
                   double bound)
    {
        Figure figure { what, "ns", medianOf(large), {}, {}, {}, {}, {} };
        addRatio(figure, large, small, { "smallest", bound });
        if (!figure.ratios.empty())
            m_figures.push_back(figure);
    }

    // Exponent of the growth from `small` to `large` when the size grows by `factor`.
    void addExponent(const std::string &what, const std::string &large, const std::string &small,
                     double factor, double bound)
    {
        const auto ratio = ratioOf(large, small);
        if (!ratio)
            return;
        const double exponent = std::log(*ratio) / std::log(factor);
        m_figures.push_back(
            { what, "exponent", exponent, {}, {}, {}, {}, { { "", exponent, bound } } });
    }

    void addCount(const std::string &what, const std::string &unit, const std::string &name,
                  double bound)
    {
        if (const auto count = medianOf(name))
            m_figures.push_back({ what, unit, count, {}, {}, {}, {}, { { "", *count, bound } } });
    }

    std::vector<Figure> take() { return std::move(m_figures); }

private:
    std::optional<double> medianOf(const std::string &name) const
    {
        const auto found = m_samples.find(name);
        return found == m_samples.end() ? std::nullopt : std::optional(median(found->second));
    }

    std::optional<double> ratioOf(const std::string &upper, const std::string &lower) const
    {
        const auto a = m_samples.find(upper);
        const auto b = m_samples.find(lower);
        if (a == m_samples.end() || b == m_samples.end())
            return std::nullopt;
        std::vector<double> ratios;
        for (std::size_t i = 0; i < std::min(a->second.size(), b->second.size()); ++i)
            ratios.push_back(a->second[i] / b->second[i]);
        return median(ratios);
    }

    void addRatio(Figure &figure, const std::string &upper, const std::string &lower,
                  const Bound &bound)
    {
        if (const auto ratio = ratioOf(upper, lower))
            figure.ratios.push_back({ bound.peer, *ratio, bound.value });
    }

    const Samples &m_samples;
    std::vector<Figure> m_figures;
};

void addCycleFigures(FigureList &list)
{
    for (const int perBlock : { 16, 120 }) {
        const std::string count = std::to_string(perBlock);
        const std::string registers = count + " registers ";
        const std::vector<Bound> bounds = perBlock == 16
            ? std::vector<Bound> { { limitName, 1.25 }, { modbusName, 1.3 }, { mapName, 0.9 } }
            : std::vector<Bound> { { limitName, 1.25 }, { modbusName, 0.75 }, { mapName, 0.38 } };
        const std::string smallest = std::to_string(2 * perBlock);
        for (const std::string &cache :
             { smallest, std::string("1000"), std::string("10000"), std::string("100000") })
            list.addPeers(registers + "unchanged, cache " + cache,
                          "unchanged/" + count + "/" + cache, bounds);
        // Every record and every block comes from memory here, which libmodbus alone has none of.
        for (const Order order : { Order::Descending, Order::Shuffled, Order::Interleaved }) {
            const std::string name = orderName(order);
            list.addPeers(registers + "unchanged, cache 1000 named " + name,
                          "unchanged/" + count + "/1000/" + name, bounds);
        }
        list.addPeers(registers + "unchanged, all of cache 100000 in turn",
                      "through/" + count + "/100000", { { limitName, 1.25 } });
        list.addGrowth(registers + "unchanged, cache 100000 against " + smallest,
                       "unchanged/" + count + "/100000/driver",
                       "unchanged/" + count + "/" + smallest + "/driver", 1.4);
        list.addPeers(registers + "changed, each reported", "changes/" + count + "/1000",
                      { { limitName, 1.25 }, { mapName, perBlock == 16 ? 1.0 : 0.6 } });
    }
}

void addDataFigures(FigureList &list)
{
    list.addCount("heap allocations per unchanged read", "calls", "allocations/read", 0);
    list.addCount("heap allocations per intf_getData", "calls", "allocations/getData", 0);
    list.addPeers("intf_getData, 1 register", "getData/1", { { limitName, 1.25 } });
    list.addPeers("intf_getData, 16 registers", "getData/16",
                  { { limitName, 1.25 }, { mapName, 0.45 } });
    list.addPeers("intf_getData, 120 registers", "getData/120",
                  { { limitName, 1.25 }, { mapName, 0.25 } });
    for (const std::string size : { "1000", "10000", "100000" })
        list.addPeers("creating a register, " + size + " in a row", "create/" + size,
                      { { limitName, 1.6 } });
    list.addExponent("growth of creating a register, 1000 to 100000", "create/100000/driver",
                     "create/1000/driver", 100, 0.1);
    for (const std::string size : { "1000", "10000", "100000" })
        list.addCount("heap per cached register, cache " + size, "bytes", "bytes/" + size, 104);
}

void addMergeFigures(FigureList &list)
{
    for (const std::string way : { "fresh", "again" }) {
        for (const std::string size : { "1000", "10000", "50000" })
            list.addPeers("intf_addrMerge " + way + ", " + size, "merge/" + way + "/" + size,
                          { { limitName, 1.6 } });
        const std::string name = "merge/" + way + "/";
        list.addExponent("growth of intf_addrMerge " + way + ", 1000 to 50000",
                         name + "50000/driver", name + "1000/driver", 50, 1.6);
    }
}

} // namespace

bool Figure::isReached() const
{
    return std::all_of(ratios.begin(), ratios.end(),
                       [](const Ratio &ratio) { return ratio.isReached(); });
}

std::vector<Figure> figuresOf(const Samples &samples)
{
    FigureList list(samples);
    addCycleFigures(list);
    addDataFigures(list);
    addMergeFigures(list);
    list.addPeers("write of one register, queue to echo", "write", { { limitName, 1.35 } });
    list.addPeers("read over a pty, CPU of host and driver", "pty",
                  { { modbusName, 0.95 }, { "serialbus", 0.35 } });
    list.addPeers("load and unload", "load", { { "plugin", 1.5 } });
    return list.take();
}

} // namespace bench
