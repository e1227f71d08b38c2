#pragma once

#include "daemonoptions.h"
#include "link.h"
#include "registry.h"

#include <deque>
#include <map>
#include <memory>
#include <string>

namespace kelvarissim {

// The daemon itself: it accepts links, hands the requests to the families and runs the timers. A request goes
// through received(), the delay of the command line, handle() and its family's handler.
class Server final : public Daemon, public LinkListener {
public:
    Server(Registry const& families, Settings const& commandLine);

    // Returns the port; throws boost::system::system_error when the port isn't free.
    std::uint16_t listen();
    // Serves the links until stop() or a signal ends it.
    void run();

    World& world() override {
        return sharedWorld;
    }
    void send(ClientId client, std::string const& report, Json::Value const& payload) override;
    void broadcast(std::string const& report, Json::Value const& payload) override;
    TimerId after(std::chrono::milliseconds delay, std::function<void()> action) override;
    TimerId every(std::chrono::milliseconds period, std::function<bool()> action) override;
    void cancel(TimerId timer) override {
        timers.erase(timer);
    }
    std::chrono::milliseconds interval() const override;
    int trafficSpeed() const override;
    void log(std::string const& line) override;
    void stop() override {
        io.stop();
    }

private:
    struct Timer {
        boost::asio::steady_timer clock;
        std::chrono::milliseconds period;
        std::function<bool()> action;
    };

    void opened(std::shared_ptr<Link> const& link) override;
    bool received(std::shared_ptr<Link> const& link, Message const& message) override;
    void ended(Link const& link, std::string const& reason) override;
    void refused(std::string const& reason) override;

    void accept();
    void handle(ClientId client, Json::Value const& request);
    void sendText(Link& link, std::shared_ptr<std::string const> const& text);
    void arm(TimerId id);
    void runDelayed();

    Registry const& registry;
    Settings const& settings;
    World sharedWorld;
    boost::asio::io_context io{1};
    boost::asio::signal_set signals{io};
    boost::asio::ip::tcp::acceptor acceptor{io};
    std::map<ClientId, std::shared_ptr<Link>> links; // only those whose upgrade has succeeded
    std::map<TimerId, std::shared_ptr<Timer>> timers;
    std::deque<std::function<void()>> delayed; // in the order of their requests
    ClientId lastClient = 0;
    TimerId lastTimer = 0;
};

} // namespace kelvarissim
