/**
 * @file
 * The SDK version that the application is compiled with. ConsentSDK::sdkVersion() returns that of the installed SDK.
 */
#ifndef QUILLON_VERSION_H
#define QUILLON_VERSION_H

#define QUILLON_VERSION_MAJOR 0
#define QUILLON_VERSION_MINOR 1
#define QUILLON_VERSION_PATCH 0
/** As text, such as "1.2.0". */
#define QUILLON_VERSION "0.1.0"

#endif
