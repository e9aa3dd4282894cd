#pragma once

#include <foundation/core/except/IException.hpp>
#include <refdoc/platform/Export.hpp>

namespace foundation::core::except {

// Marks exceptions that report internal failures. Adds no state and no operations.
class REFDOC_PLATFORM_API IInternalException : public IException {
public:
    ~IInternalException() noexcept override;

protected:
    IInternalException() = default;
    IInternalException(const IInternalException&) = default;
    IInternalException& operator=(const IInternalException&) = default;
};

} // namespace foundation::core::except
