#pragma once

#include <reference/docparser/Export.hpp>

#include <string>

namespace reference::property {

/// An example that a page links to, with the command that opens it.
class REFDOC_API Example {
public:
    Example(std::u16string url, std::u16string openCommand, std::u16string title) noexcept;

    Example(const Example&) = default;
    Example(Example&&) noexcept = default;
    Example& operator=(const Example&) = default;
    Example& operator=(Example&&) noexcept = default;
    ~Example() = default;

    const std::u16string& getUrl() const noexcept { return url_; }
    const std::u16string& getOpenCommand() const noexcept { return openCommand_; }
    const std::u16string& getTitle() const noexcept { return title_; }

    bool operator==(const Example&) const = default;

private:
    std::u16string url_;
    std::u16string openCommand_;
    std::u16string title_;
};

} // namespace reference::property
