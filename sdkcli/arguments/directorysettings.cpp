// This is the grammar of the directory settings. A domain or a URI may be any word, an empty one too.

#include "actions.h"
#include "calls.h"
#include "readers.h"

int directoryAction(int argc, char* argv[]) {
    if (argc > 3) {
        return invalid(usage::directory);
    }
    return argc == 3 ? setDirectory(argv[2]) : resetDirectory();
}

int gatewayAction(int argc, char* argv[]) {
    if (argc > 3) {
        return invalid(usage::gateway);
    }
    return argc == 3 ? setGateway(argv[2]) : resetGateway();
}

int esniAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::esni, readOnOff, setEsniEnabled);
}
