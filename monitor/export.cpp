#include "command.h"
#include "http.h"
#include "metrics.h"
#include "output.h"
#include "textfile.h"

#include <system_error>

namespace monitor {

namespace {

constexpr char metricsPath[] = "/metrics";

// Hands the snapshot as metrics to Prometheus: when it asks for them, in a file, or once on the standard output.
class Export final : public Command {
public:
    explicit Export(Context const& context)
        : loop(context.loop), snapshot(context.snapshot), options(context.options.exporting) {
        if (!options.textFile.empty()) {
            file.emplace(options.textFile);
        }
        if (options.listen) {
            server.emplace(loop, *options.listen,
                           [this](HttpRequest const& request) { return answer(request); });
            std::printf("kelvaris-monitor: listening on %s%s\n", server->url().c_str(), metricsPath);
            std::fflush(stdout);
        }
    }

    Topics topics() const override {
        return metricsTopics;
    }

    // Who asks before that waits: the daemon isn't away because nobody has reached it yet.
    void opened(Snapshot const&) override {
        isOpen = true;
        if (options.once) {
            printOnce();
            return;
        }
        if (file) {
            file->replace(
                metricsOf(snapshot, Format::text)); // an error ends the program, as does a port in use
            written = Clock::now();
        }
        if (server) {
            server->begin();
        }
    }

    void changed(Snapshot const&, Change const& change) override {
        isUrgent = isUrgent || change.topic == Topic::link || change.topic == Topic::state;
    }
    void settled(Snapshot const&) override {
        if (isOpen && file && !options.once) {
            keepFile();
        }
    }

    // Nobody shall take old numbers for new ones.
    int interrupted(int) override {
        if (isOpen && file && !options.once) {
            file->remove();
        }
        return 0;
    }

private:
    HttpReply answer(HttpRequest const& request) const {
        if (request.path == metricsPath) {
            Format const format = formatFor(request.accept);
            return {MHD_HTTP_OK, contentType(format), metricsOf(snapshot, format)};
        }
        if (request.path == "/") {
            return {MHD_HTTP_OK, plainText, std::string("The metrics are at ") + metricsPath + "\n"};
        }
        return {MHD_HTTP_NOT_FOUND, plainText, "There is nothing here.\n"};
    }

    void printOnce() {
        std::string const metrics = metricsOf(snapshot, Format::text);
        if (file) {
            file->replace(metrics);
            loop.end(0);
            return;
        }
        output.emplace(loop);
        output->write(metrics);
        output->whenWritten([this] { loop.end(0); });
    }

    // What the link and the state are is written at once, all else at intervals.
    void keepFile() {
        auto const due = written + std::chrono::duration_cast<Clock::duration>(options.interval);
        if (std::exchange(isUrgent, false) || Clock::now() >= due) {
            writeFile();
        } else if (timer == 0) {
            timer = loop.setTimerAt(due, [this] { writeFile(); });
        }
    }

    // A disk that is full for a while doesn't end what Prometheus asks for. The failure is told once.
    void writeFile() {
        loop.removeTimer(std::exchange(timer, 0));
        written = Clock::now();
        try {
            file->replace(metricsOf(snapshot, Format::text));
            hasFailed = false;
        } catch (std::system_error const& error) {
            if (!std::exchange(hasFailed, true)) {
                std::fprintf(stderr, "kelvaris-monitor: %s\n", error.what());
            }
        }
    }

    Loop& loop;
    Snapshot const& snapshot;
    ExportOptions const options;
    std::optional<HttpServer> server;
    std::optional<TextFile> file;
    std::optional<Output> output;
    Clock::time_point written;
    Loop::Id timer = 0;
    bool isOpen = false;
    bool isUrgent = false;
    bool hasFailed = false;
};

} // namespace

std::unique_ptr<Command> makeExport(Context const& context) {
    return std::make_unique<Export>(context);
}

} // namespace monitor
