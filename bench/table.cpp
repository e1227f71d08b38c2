#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

std::string number(double value) {
    char text[32];
    int const decimals = value >= 100 ? 0 : value >= 10 ? 1 : 2;
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string inUnit(double value, Unit unit) {
    switch (unit) {
    case Unit::seconds:
        return value >= 1      ? number(value) + " s"
               : value >= 1e-3 ? number(value * 1e3) + " ms"
               : value >= 1e-6 ? number(value * 1e6) + " us"
                               : number(value * 1e9) + " ns";
    case Unit::bytes:
        return value >= 1 << 20 ? number(value / (1 << 20)) + " MiB" : number(value / 1024) + " KiB";
    case Unit::bytesPerSecond:
        return number(value / 1e6) + " MB/s";
    case Unit::perSecond:
        return number(value) + " /s";
    case Unit::count:
        return number(value);
    }
    return {};
}

bool holds(Limit const& limit, double value) {
    return value >= limit.min && value <= limit.max;
}

template <class Format> std::string textOf(Limit const& limit, Format format) {
    if (std::isfinite(limit.min) && std::isfinite(limit.max)) {
        return format(limit.min) + " to " + format(limit.max);
    }
    return std::isfinite(limit.max)   ? "at most " + format(limit.max)
           : std::isfinite(limit.min) ? "at least " + format(limit.min)
                                      : "";
}

void join(std::string& list, std::string const& item) {
    if (!item.empty()) {
        list += list.empty() ? item : ", " + item;
    }
}

double pairedRatio(Samples const& samples, Samples const& yardstick) {
    Samples ratios;
    for (std::size_t i = 0; i < std::min(samples.size(), yardstick.size()); ++i) {
        ratios.push_back(samples[i] / yardstick[i]);
    }
    return median(ratios);
}

} // namespace

double median(Samples values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Table::add(std::string what, Unit unit, Samples const& samples, std::vector<Yardstick> const& yardsticks,
                Limit limit) {
    double const figure = median(samples);
    bool kept = holds(limit, figure);
    bool limited = std::isfinite(limit.min) || std::isfinite(limit.max);
    std::string ratios;
    std::string limits = textOf(limit, [unit](double value) { return inUnit(value, unit); });
    for (Yardstick const& yardstick : yardsticks) {
        double const ratio = pairedRatio(samples, yardstick.samples);
        join(ratios,
             number(ratio) + " x " + yardstick.name + " (" + inUnit(median(yardstick.samples), unit) + ")");
        std::string const ratioLimit = textOf(yardstick.ratio, number);
        join(limits, ratioLimit.empty() ? "" : ratioLimit + " x " + yardstick.name);
        kept = kept && holds(yardstick.ratio, ratio);
        limited = limited || !ratioLimit.empty();
    }
    good = good && kept;
    rows.push_back(
        {std::move(what), inUnit(figure, unit), ratios, limits, limited ? (kept ? "ok" : "OVER") : ""});
}

void Table::addFailure(std::string what, std::string const& why) {
    good = false;
    rows.push_back({std::move(what), "failed", why.substr(0, why.find('\n')), "", "FAILED"});
}

bool Table::print() const {
    std::vector<std::size_t> widths(rows[0].size());
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    for (auto const& row : rows) {
        std::string line = "|";
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += ' ' + row[i] + std::string(widths[i] - row[i].size(), ' ') + " |";
        }
        std::puts(line.c_str());
    }
    return good;
}
