#pragma once

#include "Corpus.hpp"

#include <filesystem>
#include <string>

namespace refdoc::bench {

// Points the host's stand-in services at a corpus: its documentation root, its installed
// products and support packages, English plus the corpus languages as supported languages, and
// `language` as the current one. The library's settings are reset so that they follow.
void configureHost(const std::filesystem::path& root, const Manifest& manifest, const std::string& language);

// Only the current documentation language; everything else stays as configureHost left it.
void setCurrentLanguage(const std::string& language);

} // namespace refdoc::bench
