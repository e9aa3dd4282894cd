#pragma once

#include <reference/docparser/Export.hpp>

#include <string>

namespace reference::property {

/// A related page.
class REFDOC_API SeeAlso {
public:
    SeeAlso(std::u16string url, std::u16string name) noexcept;

    SeeAlso(const SeeAlso&) = default;
    SeeAlso(SeeAlso&&) noexcept = default;
    SeeAlso& operator=(const SeeAlso&) = default;
    SeeAlso& operator=(SeeAlso&&) noexcept = default;
    ~SeeAlso() = default;

    const std::u16string& getUrl() const noexcept { return url_; }
    const std::u16string& getName() const noexcept { return name_; }

    bool operator==(const SeeAlso&) const = default;

private:
    std::u16string url_;
    std::u16string name_;
};

} // namespace reference::property
