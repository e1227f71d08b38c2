/*
 * The floor: what a run of "sdkcli state" exchanges with the daemon, by bare sockets. Received bytes stand in
 * one buffer and are consumed by an offset; requests are ready-made texts and reports aren't parsed.
 *
 *   minimal PORT run                  one exchange
 *   minimal PORT loop COUNT PAUSE     COUNT round trips, PAUSE microseconds before each; prints round trips
 *                                     a second or, with a pause, the median of a round trip in microseconds
 *   minimal PORT receive COUNT SIZE   asks the load daemon for COUNT reports with SIZE bytes of padding;
 *                                     prints the seconds from the request to the last report
 */
#define _POSIX_C_SOURCE 200809L

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

enum { capacity = 4 << 20, readSize = 16 << 10 };

static uint8_t buffer[capacity];
static size_t begin, end;
static int descriptor;

static void fail(char const* what) {
    fprintf(stderr, "minimal: %s\n", what);
    exit(1);
}

static double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

static void sendAll(void const* bytes, size_t size) {
    char const* rest = bytes;
    while (size > 0) {
        ssize_t const sent = send(descriptor, rest, size, MSG_NOSIGNAL);
        if (sent <= 0) {
            fail("can't send");
        }
        rest += sent;
        size -= (size_t)sent;
    }
}

/* Reads until at least `count` bytes stand in the buffer; hardly more than that where `count` is large. */
static void need(size_t count) {
    if (begin == end) {
        begin = end = 0;
    }
    if (count > capacity - begin) {
        memmove(buffer, buffer + begin, end - begin);
        end -= begin;
        begin = 0;
    }
    while (end - begin < count) {
        size_t const missing = count - (end - begin);
        size_t const wanted = missing > readSize ? missing : readSize;
        size_t const free = capacity - end;
        ssize_t const got = recv(descriptor, buffer + end, wanted < free ? wanted : free, 0);
        if (got <= 0) {
            fail("the daemon has ended the connection");
        }
        end += (size_t)got;
    }
}

static void upgrade(int port) {
    char request[512];
    int const size = snprintf(request, sizeof request,
                              "GET / HTTP/1.1\r\nHost: 127.0.0.1:%d\r\nUpgrade: websocket\r\n"
                              "Connection: Upgrade\r\nOrigin: easywsclient://\r\n"
                              "Sec-WebSocket-Key: QpV7dKz2RmYt4LsHn8XwBg==\r\nSec-WebSocket-Version: 13\r\n"
                              "Sec-WebSocket-Protocol: event-protocol\r\n\r\n",
                              port);
    sendAll(request, (size_t)size);
    do {
        need(end - begin + 1);
    } while (end < 4 || memcmp(buffer + end - 4, "\r\n\r\n", 4) != 0);
    begin = end;
}

static void openLink(int port) {
    struct sockaddr_in address = {0};
    address.sin_family = AF_INET;
    address.sin_port = htons((uint16_t)port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    descriptor = socket(AF_INET, SOCK_STREAM, 0);
    if (descriptor < 0 || connect(descriptor, (struct sockaddr*)&address, sizeof address) != 0) {
        fail("can't connect");
    }
    upgrade(port);
    int const on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/* Both requests are shorter than 126 bytes. */
static size_t frame(uint8_t* out, char const* text) {
    static uint8_t const key[4] = {0xA7, 0x1C, 0x5E, 0x39};
    size_t const size = strlen(text);
    out[0] = 0x81;
    out[1] = (uint8_t)(0x80 | size);
    memcpy(out + 2, key, 4);
    for (size_t i = 0; i < size; ++i) {
        out[6 + i] = (uint8_t)text[i] ^ key[i & 3];
    }
    return 6 + size;
}

static char const requestState[] = "[\n\t\"request_current_state\",\n\tnull,\n\t\"kelvaris_sdk\"\n]\n";

static void introduce(char const* name) {
    char text[120];
    uint8_t frames[256];
    snprintf(text, sizeof text,
             "[\n\t\"set_app_name\",\n\t{\n\t\t\"name\" : \"%s\"\n\t},\n\t\"kelvaris_sdk\"\n]\n", name);
    size_t size = frame(frames, text);
    size += frame(frames + size, requestState);
    sendAll(frames, size);
}

static void ask(void) {
    uint8_t frames[128];
    sendAll(frames, frame(frames, requestState));
}

/* Takes one message out of the buffer. The daemon sends whole text frames without a mask. */
static uint8_t const* receive(size_t* size) {
    need(2);
    size_t const shortLength = buffer[begin + 1];
    size_t const extended = shortLength < 126 ? 0 : shortLength == 126 ? 2 : 8;
    need(2 + extended);
    *size = extended == 0 ? shortLength : 0;
    for (size_t i = 0; i < extended; ++i) {
        *size = *size << 8 | buffer[begin + 2 + i];
    }
    if (buffer[begin] != 0x81 || shortLength > 127 || *size > capacity - 16) {
        fail("not a text frame");
    }
    need(2 + extended + *size);
    uint8_t const* const message = buffer + begin + 2 + extended;
    begin += 2 + extended + *size;
    return message;
}

static void receiveState(void) {
    size_t size = 0;
    uint8_t const* const message = receive(&size);
    static char const start[] = "[\"report_current_state\"";
    if (size < sizeof start || memcmp(message, start, sizeof start - 1) != 0) {
        fail("not the report");
    }
}

static int ascending(void const* left, void const* right) {
    double const difference = *(double const*)left - *(double const*)right;
    return (difference > 0) - (difference < 0);
}

static void loop(int count, long pauseMicroseconds) {
    double* const times = calloc((size_t)count, sizeof *times);
    struct timespec const pause = {0, pauseMicroseconds * 1000};
    double const start = now();
    for (int i = 0; i < count; ++i) {
        if (pauseMicroseconds > 0) {
            nanosleep(&pause, NULL);
        }
        double const asked = now();
        ask();
        receiveState();
        times[i] = now() - asked;
    }
    double const total = now() - start;
    qsort(times, (size_t)count, sizeof *times, ascending);
    printf("%.2f\n", pauseMicroseconds > 0 ? times[count / 2] * 1e6 : count / total);
    free(times);
}

static void receiveLoad(int count) {
    double const start = now();
    ask();
    for (int i = 0; i < count; ++i) {
        receiveState();
    }
    printf("%.9f\n", now() - start);
}

int main(int argc, char* argv[]) {
    if (argc < 3) {
        fail("see the first lines of its source");
    }
    char load[32] = "Kelvaris";
    int const count = argc > 3 ? atoi(argv[3]) : 1;
    int const last = argc > 4 ? atoi(argv[4]) : 0;
    openLink(atoi(argv[1]));
    if (strcmp(argv[2], "receive") == 0) {
        snprintf(load, sizeof load, "load %d %d", count, last);
    }
    introduce(load);
    if (strcmp(argv[2], "receive") == 0) {
        for (int i = 0; i < count; ++i) {
            receiveState();
        }
        receiveLoad(count);
    } else {
        receiveState();
    }
    if (strcmp(argv[2], "loop") == 0) {
        loop(count, last);
    }
    return 0;
}
