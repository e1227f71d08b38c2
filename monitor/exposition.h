#pragma once

#include <set>
#include <string>
#include <string_view>

namespace monitor {

// The text formats that Prometheus reads.
enum class Format { text, openMetrics };

// "text/plain; version=0.0.4; charset=utf-8" and so on.
char const* contentType(Format format);

// Which format a request asks for with its header "Accept".
Format formatFor(std::string_view accept);

enum class MetricType { gauge, counter, info };

// Labels of a series. Values are texts of the daemon: they are made printable and escaped.
class Labels {
public:
    Labels() = default;
    Labels(std::string_view name, std::string_view value) {
        add(name, value);
    }
    Labels with(std::string_view name, std::string_view value) const {
        Labels more(*this);
        more.add(name, value);
        return more;
    }
    std::string const& text() const {
        return written;
    }

private:
    void add(std::string_view name, std::string_view value);
    std::string written;
};

// Writes metrics in the chosen format.
class Exposition {
public:
    explicit Exposition(Format ofFormat) : format(ofFormat) {}

    // What add() adds from then on. The name is that of the series: a counter's ends in "_total", an info's in "_info". A
    // metric without a series isn't written.
    void metric(MetricType type, std::string_view name, std::string_view help);
    // A number that is none is left out. Of series with the same labels, which must not be, the first one counts.
    void add(Labels const& labels, double value);

    std::string take();

private:
    void writeHead();

    Format format;
    MetricType type = MetricType::gauge;
    std::string name;
    std::string help;
    bool hasHead = false;
    std::set<std::string> seen;
    std::string text;
};

} // namespace monitor
