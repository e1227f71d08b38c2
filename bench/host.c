/*
 * A program that loads the library at run time and measures what it leaves behind.
 *
 *   host LIBRARY reload PORT COUNT   loads it, makes and destroys a handle, unloads it, COUNT times after some to
 *                                    warm up; prints by how many bytes resident memory has grown
 *   host LIBRARY stack PORT          makes the synchronous call with the largest record on a thread whose stack was
 *                                    painted; prints the bytes that were used, without the record and without what
 *                                    a thread that does nothing uses
 */
#define _GNU_SOURCE

#include <dlfcn.h>
#include <kelvarissdk/csdkinterface.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

enum { stackSize = 1 << 20, paint = 0xA5, warmUps = 5 };

static void fail(char const* what) {
    fprintf(stderr, "host: %s\n", what);
    exit(1);
}

static void* load(char const* path) {
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fail(dlerror());
    }
    return library;
}

/* Copies a function's address to where `function` points, because C converts no pointer to data into one to a function. */
static void find(void* library, char const* name, void* function) {
    void* const address = dlsym(library, name);
    if (address == NULL) {
        fail(dlerror());
    }
    memcpy(function, &address, sizeof address);
}

#define FIND(library, function) find(library, "KelvarisSDK_" #function, &function)

static KelvarisSDK_Handle* create(void* library, int port) {
    __typeof__(&KelvarisSDK_InitializeCreateSettings) InitializeCreateSettings;
    __typeof__(&KelvarisSDK_CreateWithSettings) CreateWithSettings;
    FIND(library, InitializeCreateSettings);
    FIND(library, CreateWithSettings);
    KelvarisSDK_CreateSettings settings;
    InitializeCreateSettings(&settings);
    settings.port = (uint16_t)port;
    return CreateWithSettings(settings);
}

static void destroy(void* library, KelvarisSDK_Handle* sdk) {
    __typeof__(&KelvarisSDK_Destroy) Destroy;
    FIND(library, Destroy);
    Destroy(sdk);
}

static long residentBytes(void) {
    FILE* const file = fopen("/proc/self/statm", "r");
    long pages = 0;
    if (file == NULL || fscanf(file, "%*d %ld", &pages) != 1) {
        fail("no account of memory");
    }
    fclose(file);
    return pages * sysconf(_SC_PAGESIZE);
}

static void reload(char const* path, int port, int count) {
    long before = 0;
    for (int i = -warmUps; i < count; ++i) {
        if (i == 0) {
            before = residentBytes();
        }
        void* const library = load(path);
        destroy(library, create(library, port));
        dlclose(library);
    }
    if (dlopen(path, RTLD_NOW | RTLD_NOLOAD) != NULL) {
        fail("the library is still loaded");
    }
    printf("%ld\n", residentBytes() - before);
}

static __typeof__(&KelvarisSDK_GetLocalProxySettings) GetLocalProxySettings;
static KelvarisSDK_Handle* handle;

static void* doNothing(void* nothing) {
    return nothing;
}

static void* callOnce(void* failed) {
    *(bool*)failed = GetLocalProxySettings(handle, NULL, NULL).base.error;
    return NULL;
}

static long usedStack(void* (*body)(void*), void* argument) {
    uint8_t* const stack =
        mmap(NULL, stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (stack == MAP_FAILED) {
        fail("no stack");
    }
    memset(stack, paint, stackSize);
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    if (pthread_attr_setstack(&attributes, stack, stackSize) != 0 ||
        pthread_create(&thread, &attributes, body, argument) != 0) {
        fail("no thread");
    }
    pthread_join(thread, NULL);
    pthread_attr_destroy(&attributes);
    long untouched = 0;
    while (untouched < stackSize && stack[untouched] == paint) {
        ++untouched;
    }
    munmap(stack, stackSize);
    return stackSize - untouched;
}

static void measureStack(char const* path, int port) {
    void* const library = load(path);
    FIND(library, GetLocalProxySettings);
    handle = create(library, port);
    bool failed = true;
    long const used = usedStack(callOnce, &failed);
    destroy(library, handle);
    if (failed) {
        fail("the call failed");
    }
    printf("%ld\n", used - usedStack(doNothing, NULL) - (long)sizeof(KelvarisSDK_LocalProxySettingsResult));
}

int main(int argc, char* argv[]) {
    if (argc == 5 && strcmp(argv[2], "reload") == 0) {
        reload(argv[1], atoi(argv[3]), atoi(argv[4]));
    } else if (argc == 4 && strcmp(argv[2], "stack") == 0) {
        measureStack(argv[1], atoi(argv[3]));
    } else {
        fail("see the first lines of its source");
    }
    return 0;
}
