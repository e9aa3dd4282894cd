#pragma once

#include <refdoc/platform/Export.hpp>

#include <mutex>
#include <string>
#include <vector>

namespace doclanguage {

// The host's documentation language setting. Defaults: current "en", supported {"en"}.
class REFDOC_PLATFORM_API DocLanguage {
public:
    static DocLanguage& getInstance();

    std::u16string getDocLanguage() const;
    std::vector<std::u16string> getSupportedDocLanguages() const;

    void setDocLanguage(std::u16string language);
    void setSupportedDocLanguages(std::vector<std::u16string> languages);

    DocLanguage(const DocLanguage&) = delete;
    DocLanguage& operator=(const DocLanguage&) = delete;

private:
    DocLanguage();

    mutable std::mutex mutex_;
    std::u16string language_;
    std::vector<std::u16string> supported_;
};

} // namespace doclanguage
