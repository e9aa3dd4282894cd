#pragma once

// Generated documentation text in the corpus languages. The words are a small technical
// vocabulary; what matters for the benchmark is that lengths, scripts and the mix of ASCII and
// non-ASCII bytes look like real reference pages, not that the sentences make sense.

#include "Random.hpp"

#include <string>
#include <string_view>

namespace refdoc::bench {

enum class Language { English, Japanese, Korean };

// "en", "ja", "ko".
std::string_view languageCode(Language language) noexcept;

// The fixed headings of a page in one language.
struct Headings {
    std::string_view syntax;
    std::string_view createObject;
    std::string_view inputArguments;
    std::string_view nameValueArguments;
    std::string_view outputArguments;
    std::string_view properties;
    std::string_view readOnlyProperties;
    std::string_view inputPort;
};
const Headings& headings(Language language) noexcept;

class TextSource {
public:
    explicit TextSource(Language language) noexcept : language_(language) {}

    Language language() const noexcept { return language_; }

    // A one-line purpose such as "Compute discrete spectrum of input signal".
    std::string purpose(Random& random) const;
    // The purpose of an argument: "Input signal, specified as a numeric vector."
    std::string argumentPurpose(Random& random, std::string_view argumentName) const;
    // A few HTML paragraphs that mention `codeName` in <code> markup; roughly `targetChars`
    // characters long.
    std::string description(Random& random, std::string_view codeName, std::size_t targetChars) const;
    // A short title such as "Estimate Spectrum of Noisy Signal".
    std::string title(Random& random) const;
    // A one- or two-word label such as "Window length", for block parameters and ports.
    std::string label(Random& random) const;

private:
    Language language_;
};

// ASCII identifiers in the styles reference pages use.
std::string functionName(Random& random);    // computeSpectrum, specfilt
std::string className(Random& random);       // SpectrumEstimator
std::string methodName(Random& random);      // reset, addPoint (often shared by classes)
std::string propertyName(Random& random);    // SampleRate
std::string argumentName(Random& random);    // x, windowLength
std::string blockName(Random& random);       // Moving Average Filter
std::string capitalizedWord(Random& random); // Signal

} // namespace refdoc::bench
