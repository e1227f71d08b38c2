// What the compiler makes of the headers: layout.awk reads it out of this file's debug information, so that no program of
// the target runs in a build for another machine.
#include <kelvarissdk/csdkinterface.h>

// A field of the system's records has this type, whose size differs between data models.
struct DataModel {
    long longInteger;
};
