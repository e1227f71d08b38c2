#pragma once

#include "loop.h"

#include <functional>
#include <string>
#include <string_view>

namespace monitor {

// Writes lines to a descriptor without ever waiting for who reads it: what it doesn't take is kept, up to a limit, and
// leaves as soon as it can. Signals and time-outs are served meanwhile.
class Output {
public:
    // Standard output; with a name that file, which is added to.
    explicit Output(Loop& loop, std::string file = "");
    ~Output(); // tries once to write what is left
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    // Takes whole lines. False: they are dropped, because too much waits already. Throws std::system_error when nothing
    // can be written; a reader that has gone ends the loop with status 0.
    bool write(std::string_view lines);
    // Opens the file anew, which may have been moved. For the standard output it does nothing.
    void reopen();
    // Whether the file or the stream began without anything in it, and nothing has been added.
    bool isFresh() const {
        return fresh;
    }
    // Calls once all is written; at once if that is so now.
    void whenWritten(std::function<void()> action);

private:
    void open();
    void close();
    void flush();
    [[noreturn]] void fail(int error);

    Loop& loop;
    std::string const file;
    int descriptor = -1;
    bool fresh = true;
    Loop::Id watched = 0;
    std::string waiting;
    std::size_t unfinished = 0; // bytes of the last line that are written, when its end isn't
    std::function<void()> written;
};

} // namespace monitor
