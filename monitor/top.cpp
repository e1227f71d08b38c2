#include "top.h"
#include "command.h"
#include "output.h"
#include "screen.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace monitor {

namespace {

// The reports of a moment come one by one and are drawn together.
constexpr std::chrono::milliseconds gathered{20};
// Times on the screen grow by themselves; while reports come each second, they see to that.
constexpr std::chrono::seconds tick{1};
constexpr std::chrono::milliseconds tickBesidesReports{1500};
// A terminal that can't move its cursor gets a new picture below the one before.
constexpr std::chrono::seconds betweenPictures{5};

// A daemon that takes longer to answer is looked for on a screen that says so.
constexpr std::chrono::milliseconds longestBlank{40};

constexpr int printedColumns = 100;

int columnsForPrinting() {
    constexpr int most = 1000;
    char const* const wanted = std::getenv("COLUMNS");
    if (int const columns = wanted == nullptr ? 0 : std::atoi(wanted); columns > 0) {
        return std::min(columns, most);
    }
    winsize size{};
    bool const isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? std::min<int>(size.ws_col, most) : printedColumns;
}

bool isColoured(Colour wanted, bool isScreen) {
    char const* const without = std::getenv("NO_COLOR");
    bool const isUnwanted = without != nullptr && *without != '\0';
    return wanted == Colour::always || (wanted == Colour::automatic && isScreen && !isUnwanted);
}

// Ends the process's turn until it is continued, as the signal would if nobody had taken it.
void suspend() {
    struct sigaction standard {};
    struct sigaction before {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &standard, &before);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, SIGTSTP);
    raise(SIGTSTP);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr); // here it stops
    pthread_sigmask(SIG_BLOCK, &only, nullptr);
    sigaction(SIGTSTP, &before, nullptr);
}

// What has in common what draws on a screen and what prints.
class View : public Command {
public:
    explicit View(Context const& context) : loop(context.loop), snapshot(context.snapshot) {
        view.daemon = context.options.address + ":" + std::to_string(context.options.port);
        view.unit = context.options.top.bytes ? Unit::bytes : Unit::bits;
    }

    Topics topics() const override {
        return Topics::all();
    }

protected:
    Grid picture(Snapshot const& of, Size size) {
        if (!view.pausedSince) {
            view.now = Clock::now();
            view.wallNow = WallClock::now();
        }
        return drawView(of, view, size);
    }

    Loop& loop;
    Snapshot const& snapshot;
    ViewState view;
};

// Prints once and ends, or, on a terminal that can't move its cursor, prints now and then.
class PrintedTop final : public View {
public:
    PrintedTop(Context const& context, bool doesEnd)
        : View(context),
          output(context.loop),
          ends(doesEnd),
          coloured(isColoured(context.options.top.colour, false)) {
        view.isPrinted = true;
        adaptTo(view, context.options.top.graph, !doesEnd);
    }

    void opened(Snapshot const&) override {
        print();
    }

private:
    void print() {
        Grid const grid = picture(snapshot, {0, columnsForPrinting()});
        output.write(grid.lines(coloured));
        if (ends) {
            output.whenWritten([this] { loop.end(0); });
        } else {
            output.write("\n");
            loop.setTimer(betweenPictures, [this] { print(); });
        }
    }

    Output output;
    bool const ends;
    bool const coloured;
};

// Draws on the terminal, and obeys its keys.
class ScreenTop final : public View {
public:
    explicit ScreenTop(Context const& context)
        : View(context), screen(isColoured(context.options.top.colour, true)) {
        adaptTo(view, context.options.top.graph, false);
        loop.setTimer(longestBlank, [this] {
            if (!isOpen) {
                opened(snapshot);
            }
        });
        if (isatty(STDIN_FILENO)) {
            keyboard = loop.addDescriptor(STDIN_FILENO, POLLIN, [this](short events) { readKeys(events); });
        }
        loop.onSignal(SIGWINCH, [this] {
            screen.resize();
            draw();
        });
        loop.onSignalUnlessIgnored(SIGTSTP, [this] {
            screen.leave();
            suspend();
            comeBack();
        });
        loop.onSignal(SIGCONT, [this] { comeBack(); });
        // Others that would end the process leave the terminal as it is now.
        for (int const signal : {SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
            loop.onSignalUnlessIgnored(signal, [this] { loop.end(0); });
        }
        // A terminal that has gone takes no pictures; one that isn't the session's sends no signal then.
        loop.addDescriptor(STDOUT_FILENO, 0, [this](short) { loop.end(0); });
    }

    void opened(Snapshot const&) override {
        isOpen = true;
        draw();
    }
    void settled(Snapshot const&) override {
        if (isOpen && !view.pausedSince) {
            drawAfter(gathered);
        }
    }

private:
    void draw() {
        loop.removeTimer(std::exchange(timer, 0));
        screen.show(picture(frozen ? *frozen : snapshot, screen.size()));
        bool const isQuiet = view.pausedSince || !snapshot.isUp() || !snapshot.connections ||
                             Clock::now() - snapshot.connections.time > tickBesidesReports;
        drawAfter(isQuiet ? Clock::duration(tick) : tickBesidesReports);
    }
    // At the latest; what is to be drawn sooner stays.
    void drawAfter(Clock::duration delay) {
        auto const due = Clock::now() + delay;
        if (timer != 0 && timerDue <= due) {
            return;
        }
        loop.removeTimer(timer);
        timerDue = due;
        timer = loop.setTimerAt(due, [this] {
            timer = 0;
            draw();
        });
    }

    void comeBack() {
        screen.enter();
        draw();
    }

    // A terminal that is gone is readable and has nothing to read.
    void readKeys(short events) {
        bool isFirst = true;
        for (int key = screen.nextKey(); key != static_cast<int>(Key::none); key = screen.nextKey()) {
            isFirst = false;
            obey(key);
        }
        int waiting = 0;
        bool const isEmpty = ioctl(STDIN_FILENO, FIONREAD, &waiting) != 0 || waiting == 0;
        if ((events & (POLLHUP | POLLERR | POLLNVAL)) != 0 ||
            (isFirst && isEmpty && (events & POLLIN) != 0)) {
            loop.removeDescriptor(keyboard);
            loop.end(0);
        }
    }

    void obey(int key) {
        switch (applyKey(view, key, frozen ? *frozen : snapshot)) {
        case Effect::nothing:
            return;
        case Effect::quit:
            return loop.end(0);
        case Effect::redraw:
            screen.redraw();
            break;
        case Effect::pause:
            pause();
            break;
        case Effect::changed:
            break;
        }
        draw();
    }

    void pause() {
        if (frozen) {
            frozen.reset();
            view.pausedSince.reset();
        } else {
            frozen = snapshot;
            view.pausedSince = Clock::now();
        }
    }

    Screen screen;
    Loop::Id keyboard = 0;
    Loop::Id timer = 0;
    Clock::time_point timerDue;
    bool isOpen = false;
    std::optional<Snapshot> frozen; // what is shown while it is paused
};

} // namespace

// Numbers keep their decimal point, whatever the locale: only its characters count.
std::unique_ptr<Command> makeTop(Context const& context) {
    std::setlocale(LC_CTYPE, "");
    if (context.options.top.once || !isatty(STDOUT_FILENO)) {
        return std::make_unique<PrintedTop>(context, true);
    }
    if (!Screen::canDraw()) {
        return std::make_unique<PrintedTop>(context, false);
    }
    return std::make_unique<ScreenTop>(context);
}

} // namespace monitor
