#pragma once

// The stand-ins are built with hidden symbols; what a caller may use is marked with this macro.
#define REFDOC_PLATFORM_API __attribute__((visibility("default")))
