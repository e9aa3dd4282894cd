#pragma once

#include <refdoc/platform/Export.hpp>

#include <string>

// Tells where the host keeps its installed hardware support packages.
class REFDOC_PLATFORM_API SupportPackageRootReader {
public:
    // The configured root, without creating the folder. Default "". Throws std::runtime_error
    // while a failure is set.
    std::u16string getSupportPackageRootNoCreate() const;

    static void setSupportPackageRoot(std::u16string root);
    // Makes the root unreadable (a non-empty message) or readable again (an empty one).
    static void setFailure(std::string message);
};
