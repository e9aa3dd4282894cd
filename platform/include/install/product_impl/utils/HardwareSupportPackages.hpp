#pragma once

#include <refdoc/platform/Export.hpp>

#include <string>
#include <unordered_set>

namespace install::product_impl::utils {

// The names of the installed hardware support packages: the sub-folders of `root`.
// An empty root gives an empty set; a root that does not exist throws
// std::filesystem::filesystem_error.
REFDOC_PLATFORM_API std::unordered_set<std::u16string> getInstalledHardwareSupportPackages(const std::u16string& root);

} // namespace install::product_impl::utils
