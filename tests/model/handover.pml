// How calls are handed to the reader thread and come back; README.md beside this file maps the names to the code.
// Between two statements any other thread may run; an atomic block is what a lock, or the reader's ownership of what it
// touches, makes one step.

#define FOLLOWUP CALLERS // the entry that a callback registers
#define ENTRIES (CALLERS + FOLLOWUPS)
#define LAST 2 // the clock's last tick
#define NEVER 3
#define min(a, b) ((a) < (b) -> (a) : (b))

mtype:link = { NONE, OPEN, CLOSING, CLOSED };
mtype:place = { OUTSIDE, PENDING, TABLE };

byte now;
bool eventsMutex;

mtype:place place[ENTRIES] = OUTSIDE;
bool queued[ENTRIES];       // its request stands in `outgoing`
byte due[ENTRIES] = NEVER;  // NEVER: no time-out is armed
bool waits[ENTRIES];        // a synchronous caller waits for it
bool finished[ENTRIES];     // that caller's semaphore
bool unregistered[ENTRIES]; // removeCallback() has returned
byte nextTimeout = NEVER;
bool closingWait;
byte closingWaitEnds = NEVER;

bool signalled, descriptor; // the two halves of Wakeup
bool running = true, waitsForEnd, notified, readerEnded;
byte handingOver; // threads between what they queue and the end of their signal
byte returned;    // callers outside of any call
bool followedUp;  // a callback has registered its entry

mtype:link ws = NONE;
bool asleep; // the reader, until `waitEnds` at the latest
byte waitEnds;
bool asked, report, closeFrame, lost; // on the wire
byte faults = FAULTS;

inline signal() {
    atomic { was = signalled; signalled = true }
    if
    :: atomic { was -> was = false; handingOver-- }
    :: atomic { !was -> descriptor = true; handingOver-- }
#ifdef CANCELLED_WRITE
    :: atomic { !was && isCaller -> handingOver--; goto ended }
#endif
    fi
}

inline clear() {
#ifdef FLAG_FIRST
    signalled = false;
    descriptor = false
#else
    descriptor = false;
    signalled = false
#endif
}

inline getResult(id) {
#ifdef SIGNAL_FIRST
    handingOver++;
    signal();
#endif
    atomic { // outgoingMutex
        if
        :: due[id] = min(now + 1, LAST)
        :: due[id] = LAST
        :: !waits[id] -> due[id] = NEVER
        fi;
        queued[id] = true;
        place[id] = PENDING;
        wake = !closingWait || due[id] < closingWaitEnds;
#ifdef SIGNAL_FIRST
        wake = false;
#endif
        handingOver = handingOver + wake
    }
    if
    :: wake -> wake = false; signal()
    :: !wake
    fi
}

inline erase(id) {
    place[id] = OUTSIDE;
    due[id] = NEVER
}

inline lockEvents() {
    !eventsMutex -> eventsMutex = true
}

inline removeCallback(id) {
#ifndef REMOVE_UNLOCKED
    atomic { lockEvents() }
#endif
    if
    :: atomic { place[id] == TABLE -> erase(id) }
    :: atomic { place[id] != TABLE -> skip }
        atomic { // outgoingMutex
            if
            :: place[id] == PENDING -> erase(id)
            :: else
            fi
        }
    fi;
    atomic {
        unregistered[id] = true;
#ifndef REMOVE_UNLOCKED
        eventsMutex = false
#endif
    }
}

proctype Caller(byte id) {
    bool was, wake, isCaller = true;
    getResult(id);
    if
    :: atomic { waits[id] && finished[id] -> finished[id] = false }
    :: waits[id] -> skip // cancelled at the semaphore
    :: !waits[id] -> removeCallback(id)
    :: !waits[id]
    fi;
ended:
    returned++
}

inline publishClosingWait(closing) {
    if
    :: closing -> closingWait = true; closingWaitEnds = nextTimeout
    :: else
    fi
}

// Takes eventsMutex first.
inline admitPending(beforeClosingWait) {
    atomic {
        lockEvents();
        for (i : 0 .. ENTRIES - 1) { // outgoingMutex
            if
            :: place[i] == PENDING ->
                place[i] = TABLE;
                nextTimeout = min(nextTimeout, due[i])
            :: else
            fi
        }
        i = 0;
#ifndef ENDS_OUTSIDE
        publishClosingWait(beforeClosingWait)
    }
#else
    }
    atomic { publishClosingWait(beforeClosingWait) }
#endif
}

// A synchronous caller's entry is done with its first delivery, another one's when the callback says so. A callback
// may register an entry.
inline callback(id) {
    atomic { assert(!unregistered[id]); due[id] = NEVER }
    if
    :: atomic { waits[id] -> erase(id); finished[id] = true }
    :: !waits[id]
    :: atomic { !waits[id] -> erase(id) }
#if FOLLOWUPS
    :: atomic { !waits[id] && !followedUp -> followedUp = true }
        getResult(FOLLOWUP)
#endif
    fi;
    assert(!unregistered[id])
}

// visitEntries() with the visits of sweepTimeouts() and of handle_message().
#define isVisited(id) (place[id] == TABLE && (!isSweep || due[id] <= time))
inline visitEntries(sweep) {
    atomic {
        isSweep = sweep;
        time = now;
        nextTimeout = (isSweep -> NEVER : nextTimeout)
    }
    do
    :: atomic {
            visited < ENTRIES ->
                do
                :: visited < ENTRIES && !isVisited(visited) ->
                    nextTimeout = (place[visited] == TABLE -> min(nextTimeout, due[visited]) : nextTimeout);
                    visited++
                :: else -> break
                od
        }
        if
        :: visited < ENTRIES -> callback(visited); visited++
        :: else
        fi
    :: atomic { visited == ENTRIES -> visited = 0; time = 0; isSweep = false; break }
    od
}

inline waitForEnd() {
    waitsForEnd = running; // runningMutex, which the wait releases
    if
    :: atomic { notified || !waitsForEnd -> waitsForEnd = false }
    :: atomic { waitsForEnd -> waitsForEnd = false } // the 250 ms are over
    fi
}

inline timeToWait(closing) {
    admitPending(closing);
    atomic { waitEnds = (running -> nextTimeout : 0); eventsMutex = false }
}

// What is sent over a lost link vanishes, or shows the loss.
inline sendOutgoing() {
    atomic { // outgoingMutex, as far as it takes the queue
        for (i : 0 .. ENTRIES - 1) {
            sends = sends || queued[i];
            queued[i] = false
        }
        i = 0;
        if
        :: sends && !lost -> asked = true
        :: sends && lost -> linkIs(CLOSED)
        :: sends && lost
        :: !sends
        fi;
        sends = false
    }
}

inline linkIs(state) {
    ws = state;
    asked = false;
    report = false;
    closeFrame = false;
    lost = false
}

#define isDue (now >= waitEnds)

inline pollAndDispatch() {
    atomic { asleep = true }
    atomic { descriptor || isDue || report || closeFrame || lost -> asleep = false; waitEnds = 0 }
    if
    :: atomic { report -> report = false }
        admitPending(false);
        visitEntries(false);
        eventsMutex = false
    :: atomic { !report -> skip }
    fi;
    atomic {
        if
        :: closeFrame -> linkIs(CLOSING)
        :: lost && !closeFrame -> linkIs(CLOSED)
        :: else
        fi
    }
}

inline serveSocket() {
#ifndef CLEAR_LATE
    clear();
#endif
    timeToWait(ws == CLOSING);
    if
    :: ws == CLOSING ->
#ifdef CLEAR_LATE
        clear();
#endif
        asleep = true;
        atomic { descriptor || isDue -> asleep = false; waitEnds = 0 }
    :: else ->
        sendOutgoing();
#ifdef CLEAR_LATE
        clear();
#endif
#ifdef POLL_CLOSED
        asleep = true;
        atomic { ws != CLOSED || descriptor || isDue -> asleep = false }
#endif
        if
        :: ws == OPEN -> pollAndDispatch()
        :: ws != OPEN -> waitEnds = 0
        fi
    fi
}

proctype Reader() {
    bool was, wake, isCaller, goOn = true, sends, isSweep;
    byte i, visited, time;
    do
    :: goOn ->
        atomic { // connect()
            if
            :: ws == NONE -> ws = OPEN
            :: ws == NONE && faults > 0 -> faults--
            :: ws != NONE
            fi
        }
        if
        :: atomic { ws == NONE || ws == CLOSED -> ws = NONE }
            waitForEnd()
        :: ws == OPEN || ws == CLOSING -> serveSocket()
        fi;
        // sweepAndGoOn()
        admitPending(false);
        visitEntries(true);
        atomic { // runningMutex
            goOn = running;
            if
            :: !goOn && ws == OPEN -> sendOutgoing() // drainOnShutdown()
            :: else
            fi;
            eventsMutex = false
        }
    :: else -> break
    od;
    atomic {
        for (i : 0 .. ENTRIES - 1) {
            assert(ws != OPEN || !queued[i])
        }
        readerEnded = true;
        goto stop
    }
ended: // of a caller that is cancelled, which the reader never is
    assert(false);
stop:
    skip
}

proctype Daemon() {
end:
    do
    :: atomic { asked -> asked = false; report = true }
    :: atomic { asked -> asked = false }
    :: atomic { ws == OPEN && faults > 0 && !lost -> faults--; lost = true }
    :: atomic { ws == OPEN && faults > 0 && !closeFrame -> faults--; closeFrame = true }
    od
}

// Time passes while the reader waits: it is the only one that acts on it, and reads the clock right after each wait.
proctype Clock() {
end:
    do
    :: atomic { now < LAST && (asleep || waitsForEnd) -> now++ }
    od
}

// Nothing may be forgotten while the reader sleeps and nobody is about to wake it.
#define sleepsOn (asleep && !descriptor && !isDue && handingOver == 0)
#define unseen(id) ((place[id] != OUTSIDE && due[id] < waitEnds) || (queued[id] && ws == OPEN))

proctype Observer() {
end:
    do
    :: atomic { sleepsOn && unseen(0) -> assert(false) }
#if ENTRIES > 1
    :: atomic { sleepsOn && unseen(1) -> assert(false) }
#endif
#if ENTRIES > 2
    :: atomic { sleepsOn && unseen(2) -> assert(false) }
#endif
    :: atomic { sleepsOn && !running -> assert(false) }
    :: atomic { waitsForEnd && !running && handingOver == 0 && !notified -> assert(false) }
    :: atomic { asleep && ws == CLOSED -> assert(false) }
    od
}

// The owner of the handle: no other thread may be inside a call when it ends.
init {
    bool was, isCaller;
    byte id;
    atomic {
        run Reader();
        for (id : 0 .. CALLERS - 1) {
            if
            :: id == 0 || waits[id - 1] -> waits[id] = true // synchronous; callers are alike, so these come first
            :: skip
            fi;
            run Caller(id)
        }
        run Daemon();
        run Clock();
        run Observer()
    }
    atomic { returned == CALLERS -> running = false; handingOver++ }
    atomic { notified = waitsForEnd }
    signal();
    readerEnded;
ended:
    skip
}
