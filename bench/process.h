// Children of the driver: timed runs, and daemons that serve them.

#pragma once

#include <cstdint>
#include <sched.h>
#include <string>
#include <sys/types.h>
#include <vector>

struct Run {
    double wall = 0; // seconds, from before the start to after the end
    double cpu = 0;  // seconds, user and system
    std::string output;
};

// Runs a program to its end. Throws with its standard error unless its status is the expected one.
Run run(std::vector<std::string> const& argv, int expectedStatus = 0);

// Children that start in its lifetime share one processor.
class Pinned {
public:
    Pinned();
    ~Pinned();
    Pinned(Pinned const&) = delete;
    Pinned& operator=(Pinned const&) = delete;

private:
    cpu_set_t before;
};

// Runs a daemon that prints "... listening on ADDRESS:PORT", and kills it at the end of the object.
class Daemon {
public:
    explicit Daemon(std::vector<std::string> const& argv);
    ~Daemon();
    Daemon(Daemon const&) = delete;
    Daemon& operator=(Daemon const&) = delete;

    std::string port() const {
        return portText;
    }

private:
    pid_t child = -1;
    std::string portText;
};

// Holds a port of the loopback interface that refuses connections for the lifetime of the object.
class ClosedPort {
public:
    ClosedPort();
    ~ClosedPort();
    ClosedPort(ClosedPort const&) = delete;
    ClosedPort& operator=(ClosedPort const&) = delete;

    std::string port() const {
        return portText;
    }

private:
    int descriptor;
    std::string portText;
};
