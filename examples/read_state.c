/*
 * Reads the session's state and the adapters, each with a call that waits for its answer. The daemon's port
 * may be given.
 *
 *     cc -std=c99 read_state.c -lkelvarissdk -o read_state
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kelvarissdk/csdkinterface.h>

/* Texts in records have no terminator when they fill their field. "%.*s" stops at the field's end. */
#define TEXT(field) (int)sizeof(field), field

/* Says why a call failed, if it did: the code, the text of the code, and the message of this failure. */
static bool failed(char const* what, KelvarisSDK_BaseResult const* result) {
    if (result->error) {
        KelvarisSDK_ErrorType type = (KelvarisSDK_ErrorType)result->errorCode;
        fprintf(stderr, "%s: error %d, %s: %.*s\n", what, (int)result->errorCode,
                KelvarisSDK_ErrorType_toString(type), TEXT(result->errorMessage));
    }
    return result->error;
}

static bool showState(KelvarisSDK_Handle* sdk) {
    KelvarisSDK_StateResult result = KelvarisSDK_GetState(sdk, NULL, NULL);
    if (failed("state", &result.base)) {
        return false;
    }
    printf("%s\n", KelvarisSDK_State_toString(result.state));
    return true;
}

static bool showAdapters(KelvarisSDK_Handle* sdk) {
    KelvarisSDK_AdaptersResult result = KelvarisSDK_GetAdapters(sdk, NULL, NULL);
    if (failed("adapters", &result.base)) {
        return false;
    }
    for (unsigned i = 0; i < result.adapterCount; ++i) {
        KelvarisSDK_AdapterData const* adapter = &result.adapters[i];
        printf("%-12.*s %-12s %-12s %s\n", TEXT(adapter->adapterID),
               KelvarisSDK_NetworkType_toString(adapter->type),
               KelvarisSDK_ConnectionState_toString(adapter->state),
               KelvarisSDK_ConnectionPriority_toString(adapter->priority));
    }
    return true;
}

int main(int argc, char* argv[]) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    strncpy(settings.appName, "read_state", sizeof(settings.appName));
    if (argc > 1) {
        settings.port = (uint16_t)atoi(argv[1]);
    }

    KelvarisSDK_Handle* sdk = KelvarisSDK_CreateWithSettings(settings);
    bool ok = showState(sdk) && showAdapters(sdk);
    KelvarisSDK_Destroy(sdk);
    return ok ? 0 : 1;
}
