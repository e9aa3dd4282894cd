// The library's version, compiled in from the same generated header its callers include.

#include <reference/docparser/Version.hpp>

namespace reference::docparser {

const char* libraryVersion() noexcept { return REFDOC_VERSION_STRING; }

} // namespace reference::docparser
