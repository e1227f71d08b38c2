#include <kelvarissdk/csdkinterface.h>
#include <stdio.h>

int main(void) {
    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    KelvarisSDK_Handle* sdk = KelvarisSDK_CreateWithSettings(settings);
    KelvarisSDK_StateResult result = KelvarisSDK_GetState(sdk, NULL, NULL);
    if (result.base.error)
        fprintf(stderr, "%.200s\n", result.base.errorMessage);
    else
        puts(KelvarisSDK_State_toString(result.state));
    KelvarisSDK_Destroy(sdk);
    return result.base.error;
}
