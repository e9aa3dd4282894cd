#pragma once

// The application's own header of a common name: the library's headers must not find this one,
// nor hide it from the application.
#define CONSUMER_PLATFORM_EXPORT 1
