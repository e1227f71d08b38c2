/* Preloaded into a program whose memory is to run out. It counts the program's allocations from main on, fails the one
   that KELVARIS_FAIL_AT names, with KELVARIS_FAIL_ALL set those behind it too, and gives the program 20 seconds then.
   Without that number nothing fails, and the program's last line on standard error is the count. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#define NEXT(function)                                                                                       \
    static __typeof__(function)* next;                                                                       \
    if (next == NULL) {                                                                                      \
        *(void**)&next = dlsym(RTLD_NEXT, #function);                                                        \
    }

typedef int Main(int, char**, char**);

static Main* programsMain;
static int isCounting;
static long count;
static long failing;

static int fails(void) {
    if (!isCounting) {
        return 0;
    }
    long const number = __atomic_add_fetch(&count, 1, __ATOMIC_RELAXED);
    if (failing == 0 || number < failing || (number > failing && getenv("KELVARIS_FAIL_ALL") == NULL)) {
        return 0;
    }
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) {
    NEXT(malloc)
    return fails() ? NULL : next(size);
}

void* calloc(size_t number, size_t size) {
    NEXT(calloc)
    return fails() ? NULL : next(number, size);
}

void* realloc(void* memory, size_t size) {
    NEXT(realloc)
    return fails() ? NULL : next(memory, size);
}

/* operator new, which the sanitizers define without malloc, and what throws std::bad_alloc. */
extern void throwBadAlloc(void) __asm__("_ZSt17__throw_bad_allocv") __attribute__((weak, noreturn));
void* operatorNew(size_t size) __asm__("_Znwm");
void* operatorNew(size_t size) {
    void* const memory = malloc(size == 0 ? 1 : size);
    if (memory == NULL) {
        throwBadAlloc();
    }
    return memory;
}
void* operatorNewArray(size_t size) __asm__("_Znam");
void* operatorNewArray(size_t size) {
    return operatorNew(size);
}

/* For a program that goes on with memory again. */
void kelvarisFailNothingMore(void) {
    isCounting = 0;
}

static int countedMain(int argc, char** argv, char** environment) {
    struct itimerval const limit = {{0, 0}, {20, 0}};
    char const* const number = getenv("KELVARIS_FAIL_AT");
    failing = number == NULL ? 0 : atol(number);
    if (failing > 0) {
        syscall(SYS_setitimer, ITIMER_REAL, &limit, NULL); /* which no faster clock changes */
    }
    isCounting = 1;
    return programsMain(argc, argv, environment);
}

int __libc_start_main(Main* program, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*end)(void), void* stack);
int __libc_start_main(Main* program, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*end)(void), void* stack) {
    NEXT(__libc_start_main)
    programsMain = program;
    return next(countedMain, argc, argv, init, fini, end, stack);
}

__attribute__((destructor)) static void tell(void) {
    isCounting = 0;
    if (failing == 0) {
        dprintf(STDERR_FILENO, "%ld allocations\n", count);
    }
}
