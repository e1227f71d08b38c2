#include "command.h"
#include "output.h"
#include "text.h"

namespace monitor {

namespace {

constexpr char header[] =
    "time,link,state,server,adapter_id,name,type,adapter_state,priority,receive_bits_per_second,"
    "send_bits_per_second,latency_seconds,jitter_seconds,loss_receive_ratio,loss_send_ratio,connections,"
    "usage_month_bytes,limit_month_bytes,usage_day_bytes,limit_day_bytes\n";

// One line of the file. A field that isn't known is empty.
class Row {
public:
    Row& text(std::string const& field) {
        std::string const shown = printable(field);
        separate();
        if (shown.find_first_of(",\"") == std::string::npos) {
            line += shown;
            return *this;
        }
        line += '"';
        for (char const each : shown) {
            line += each == '"' ? "\"\"" : std::string(1, each);
        }
        line += '"';
        return *this;
    }
    Row& number(std::optional<double> field) {
        separate();
        line += field ? plain(*field) : "";
        return *this;
    }
    Row& count(std::optional<std::int64_t> field) {
        separate();
        line += field ? std::to_string(*field) : "";
        return *this;
    }
    std::string take() {
        return std::move(line) + "\n";
    }

private:
    void separate() {
        if (!isFirst) {
            line += ',';
        }
        isFirst = false;
    }

    std::string line;
    bool isFirst = true;
};

void addAdapter(Row& row, kelvaris::AdapterData const& adapter, Traffic const* traffic) {
    row.text(adapter.adapterID).text(adapter.name).text(toString(adapter.type));
    row.text(toString(adapter.state)).text(toString(adapter.priority));
    if (traffic == nullptr) {
        row.text("").text("").text("").text("").text("").text("").text("");
    } else {
        row.number(traffic->receiveBitsPerSecond).number(traffic->sendBitsPerSecond);
        row.number(traffic->latencySeconds).number(traffic->jitterSeconds);
        row.number(traffic->lossReceive).number(traffic->lossSend).count(traffic->connected);
    }
    row.count(adapter.dataUsage.usage).count(limitOf(adapter.dataUsage.max));
    row.count(adapter.dataUsage.usageDaily).count(limitOf(adapter.dataUsage.maxDaily));
}

// Writes a line for each adapter at each interval. Where there is none, or nobody who tells, a line says so.
class Record final : public Command {
public:
    explicit Record(Context const& context)
        : loop(context.loop),
          snapshot(context.snapshot),
          options(context.options.record),
          output(context.loop, options.file) {
        if (!options.file.empty()) {
            loop.onSignal(SIGHUP, [this] { reopen(); });
        }
    }

    Topics topics() const override {
        return {Topic::state, Topic::server, Topic::adapters, Topic::connections};
    }
    void opened(Snapshot const&) override {
        begin();
        due = Clock::now();
        record();
    }

private:
    void begin() {
        if (output.isFresh()) {
            output.write(header);
        }
    }
    void reopen() {
        output.reopen();
        begin();
    }

    void record() {
        if (!output.write(rows()) && !std::exchange(isBehind, true)) {
            std::fprintf(stderr, "kelvaris-monitor: lines are dropped, because their reader is behind\n");
        }
        if (options.count && ++recorded >= *options.count) {
            output.whenWritten([this] { loop.end(0); });
            return;
        }
        // The times are those of a fixed grid. What a sleeping machine has missed isn't made up for.
        auto const interval = std::chrono::duration_cast<Clock::duration>(options.interval);
        due += interval * (1 + (Clock::now() - due) / interval);
        loop.setTimerAt(due, [this] { record(); });
    }

    std::string rows() const {
        std::string const time = rfc3339(WallClock::now());
        bool const knowsAdapters =
            snapshot.isUp() && snapshot.adapters.current && !snapshot.adapters->empty();
        if (!knowsAdapters) {
            Row row;
            beginRow(row, time);
            for (int i = 0; i < 16; ++i) {
                row.text("");
            }
            return row.take();
        }
        std::string lines;
        for (kelvaris::AdapterData const& adapter : *snapshot.adapters) {
            Row row;
            beginRow(row, time);
            bool const isCurrent = snapshot.connections.current;
            addAdapter(row, adapter, isCurrent ? snapshot.trafficOf(adapter.adapterID) : nullptr);
            lines += row.take();
        }
        return lines;
    }

    void beginRow(Row& row, std::string const& time) const {
        bool const knowsState = snapshot.isUp() && snapshot.state.current;
        row.text(time).text(snapshot.isUp() ? "up" : "down");
        row.text(knowsState ? toString(*snapshot.state) : "").text(knowsState ? snapshot.serverName() : "");
    }

    Loop& loop;
    Snapshot const& snapshot;
    RecordOptions const options;
    Output output;
    Clock::time_point due;
    std::uint64_t recorded = 0;
    bool isBehind = false;
};

} // namespace

std::unique_ptr<Command> makeRecord(Context const& context) {
    return std::make_unique<Record>(context);
}

} // namespace monitor
