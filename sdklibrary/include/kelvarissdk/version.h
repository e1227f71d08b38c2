/*
 * The version of the headers that a program is compiled with.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header and all families.
 */
#ifndef KELVARISSDK_VERSION_H
#define KELVARISSDK_VERSION_H

/** The major version, which is also the number in the library's file name: a program needs a library of the
 * same one. */
#define KELVARISSDK_VERSION_MAJOR 12
/** The minor version. */
#define KELVARISSDK_VERSION_MINOR 1
/** The third part of the version. */
#define KELVARISSDK_VERSION_PATCH 1

/** All three as text. */
#define KELVARISSDK_VERSION_STRING "12.1.1"

/** All three as one number, for the preprocessor to compare: 12002000 is version 12.2.0. */
#define KELVARISSDK_VERSION                                                                                  \
    (KELVARISSDK_VERSION_MAJOR * 1000000 + KELVARISSDK_VERSION_MINOR * 1000 + KELVARISSDK_VERSION_PATCH)

#endif
