#include "Coverage.hpp"

#include "PageView.hpp"
#include "Text.hpp"

#include <doclanguage/DocLanguage.hpp>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>

namespace refdoc::tool {
namespace {

using reference::docparser::DocResource;
using reference::docparser::DocResourceParser;

constexpr const char* kEnglish = "en";

template <class Resource>
using ByKey = std::map<std::u16string, const Resource*>;

// Installed and uninstalled products together: a key is one product whichever list it is in.
ByKey<DocResource<reference::property::RefItemLookup>> byKey(const CoverageBuilder::LookupResults& results) {
    ByKey<DocResource<reference::property::RefItemLookup>> out;
    for (const auto* map : {&results.installedResources, &results.uninstalledResources}) {
        for (const auto& [key, resource] : *map) {
            out.emplace(key, &resource);
        }
    }
    return out;
}

ByKey<DocResource<reference::property::RefItem>> byKey(const CoverageBuilder::PageFiles& files) {
    ByKey<DocResource<reference::property::RefItem>> out;
    for (const auto& [key, resource] : files) {
        out.emplace(key, &resource);
    }
    return out;
}

ProductCoverage& productOf(std::map<std::string, ProductCoverage>& products, const std::u16string& key,
                           const std::u16string& productName) {
    ProductCoverage& product = products[toUtf8(key)];
    if (product.key.empty()) {
        product.key = toUtf8(key);
    }
    if (product.productName.empty()) {
        product.productName = toUtf8(productName);
    }
    return product;
}

// Counts one product's items (grouped by name or link) of English against the same product as
// the language's load gives it; `onLocalized` sees each group the language has of its own.
template <class Items, class OnLocalized>
void compareItems(const Items& english, const Items* translated, CoverageCounts& counts, OnLocalized&& onLocalized) {
    for (const auto& [name, list] : english) {
        ++counts.total;
        if (translated != nullptr) {
            const auto found = translated->find(name);
            if (found != translated->end() && found->second != list) {
                ++counts.localized;
                onLocalized(name, list, found->second);
                continue;
            }
        }
        ++counts.fallback;
    }
    if (translated != nullptr) {
        for (const auto& entry : *translated) {
            counts.onlyTranslated += english.count(entry.first) == 0 ? 1 : 0;
        }
    }
}

// Compares the products of English and of one language, whatever their kind of item.
template <class Resource, class OnLocalized>
void compareProducts(const ByKey<Resource>& english, const ByKey<Resource>& translated,
                     std::map<std::string, ProductCoverage>& products, CoverageCounts ProductCoverage::*counts,
                     OnLocalized&& onLocalized) {
    for (const auto& [key, resource] : english) {
        ProductCoverage& product = productOf(products, key, resource->getHeader().getProductName());
        const auto found = translated.find(key);
        compareItems(resource->getItems(), found == translated.end() ? nullptr : &found->second->getItems(),
                     product.*counts, [&](const auto& name, const auto& englishList, const auto& translatedList) {
                         onLocalized(product, name, englishList, translatedList);
                     });
    }
    for (const auto& [key, resource] : translated) {
        if (english.count(key) == 0) {
            ProductCoverage& product = productOf(products, key, resource->getHeader().getProductName());
            (product.*counts).onlyTranslated += resource->getItems().size();
        }
    }
}

} // namespace

void CoverageCounts::add(const CoverageCounts& other) {
    total += other.total;
    localized += other.localized;
    fallback += other.fallback;
    onlyTranslated += other.onlyTranslated;
}

LoadObserver CoverageBuilder::observer() {
    return {[this](const std::string& language, std::shared_ptr<const LookupResults> results) {
                addLookup(language, std::move(results));
            },
            [this](const std::string& language, const std::string& name, std::shared_ptr<const PageFiles> files) {
                addPages(language, name, std::move(files));
            }};
}

void CoverageBuilder::addLookup(const std::string& language, std::shared_ptr<const LookupResults> results) {
    if (language == kEnglish) {
        englishLookup_ = std::move(results);
    } else if (englishLookup_) {
        // Each language is loaded whole before the next one: English is complete.
        compareLookup(language, *results);
    } else {
        pending_.push_back({language, "", std::move(results), {}});
    }
}

void CoverageBuilder::addPages(const std::string& language, const std::string& name,
                               std::shared_ptr<const PageFiles> files) {
    if (language == kEnglish) {
        englishPages_[name] = std::move(files);
    } else if (englishLookup_) {
        const auto english = englishPages_.find(name);
        comparePages(language, english == englishPages_.end() ? PageFiles{} : *english->second, *files);
    } else {
        pending_.push_back({language, name, {}, std::move(files)});
    }
}

void CoverageBuilder::compareLookup(const std::string& language, const LookupResults& results) {
    compareProducts(byKey(*englishLookup_), byKey(results), byLanguage_[language], &ProductCoverage::entries,
                    [](auto&&...) {});
}

void CoverageBuilder::comparePages(const std::string& language, const PageFiles& english, const PageFiles& translated) {
    compareProducts(byKey(english), byKey(translated), byLanguage_[language], &ProductCoverage::pages,
                    [](ProductCoverage& product, const std::u16string& href,
                       const std::vector<reference::property::RefItem>& englishPages,
                       const std::vector<reference::property::RefItem>& translatedPages) {
                        if (englishPages.empty() || translatedPages.empty()) {
                            return;
                        }
                        SectionGap gap{toUtf8(href), {}, {}};
                        for (const auto& section : lackingSections(englishPages.front(), translatedPages.front())) {
                            gap.sectionIds.emplace_back(section.id);
                            gap.sectionTitles.emplace_back(section.title);
                        }
                        if (!gap.sectionIds.empty()) {
                            product.lacking.push_back(std::move(gap));
                        }
                    });
}

Coverage CoverageBuilder::finish(const std::vector<std::string>& languages) {
    if (!englishLookup_) {
        englishLookup_ = std::make_shared<const LookupResults>();
    }
    for (const auto& load : pending_) {
        if (load.name.empty()) {
            compareLookup(load.language, *load.lookup);
        } else {
            const auto english = englishPages_.find(load.name);
            comparePages(load.language, english == englishPages_.end() ? PageFiles{} : *english->second, *load.pages);
        }
    }
    pending_.clear();

    Coverage coverage;
    for (const auto& language : languages) {
        if (language == kEnglish ||
            std::any_of(coverage.languages.begin(), coverage.languages.end(),
                        [&](const LanguageCoverage& done) { return done.language == language; })) {
            continue;
        }
        LanguageCoverage out{language, {}, {}, {}, 0};
        for (auto& [key, product] : byLanguage_[language]) {
            std::sort(product.lacking.begin(), product.lacking.end(),
                      [](const SectionGap& a, const SectionGap& b) { return a.href < b.href; });
            out.entries.add(product.entries);
            out.pages.add(product.pages);
            out.lackingPages += product.lacking.size();
            out.products.push_back(std::move(product));
        }
        coverage.languages.push_back(std::move(out));
    }
    return coverage;
}

std::pair<Report, Coverage> buildReportWithCoverage(const HostSettings& settings, const LanguageRunner& runIn) {
    CoverageBuilder builder;
    const LoadObserver observer = builder.observer();
    Report report = buildReport(settings, runIn, &observer);
    if (!builder.hasEnglish()) {
        // English is not a supported language, so the check never read it alone.
        runIn(kEnglish, [&] {
            builder.addLookup(kEnglish, std::make_shared<const CoverageBuilder::LookupResults>(
                                            DocResourceParser::getResourceLookupFiles()));
            const auto roots = DocResourceParser::getReferenceRoots();
            for (const auto& name : pageFileRoles(toUtf8(roots->referenceFolder)).names) {
                builder.addPages(kEnglish, name,
                                 std::make_shared<const CoverageBuilder::PageFiles>(
                                     DocResourceParser::getResourceFile(toUtf16(name))));
            }
        });
    }
    Coverage coverage = builder.finish(report.languages);
    return {std::move(report), std::move(coverage)};
}

std::pair<Report, Coverage> buildReportWithCoverage(const HostSettings& settings) {
    auto& languageService = doclanguage::DocLanguage::getInstance();
    auto result =
        buildReportWithCoverage(settings, [&](const std::string& language, const std::function<void()>& load) {
            languageService.setDocLanguage(toUtf16(language));
            load();
        });
    languageService.setDocLanguage(toUtf16(settings.language));
    return result;
}

// ---- output -------------------------------------------------------------------------------------

namespace {

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string countsLine(const CoverageCounts& counts, const char* what) {
    return std::string(what) + " " + std::to_string(counts.localized) + " of " + std::to_string(counts.total) +
           " localized, " + std::to_string(counts.fallback) + " in English";
}

std::string padLeft(const std::string& text, std::size_t width) {
    return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

boost::json::object countsJson(const CoverageCounts& counts) {
    return {{"total", counts.total},
            {"localized", counts.localized},
            {"fallback", counts.fallback},
            {"onlyTranslated", counts.onlyTranslated}};
}

} // namespace

void writeCoverageText(std::ostream& out, const Coverage& coverage) {
    out << "\nTranslation coverage (entries and pages a language lacks are read in English)\n";
    if (coverage.languages.empty()) {
        out << "  no supported language other than English\n";
    }
    for (const auto& language : coverage.languages) {
        out << '\n'
            << language.language << ": " << countsLine(language.entries, "lookup entries") << "; "
            << countsLine(language.pages, "pages") << '\n';
        std::size_t keyWidth = std::string_view("product").size();
        for (const auto& product : language.products) {
            keyWidth = std::max(keyWidth, displayWidth(product.key));
        }
        const std::vector<std::string> headings{"entries", "localized", "English", "pages", "localized", "English"};
        out << "  " << padRight("product", keyWidth);
        for (const auto& heading : headings) {
            out << "  " << heading;
        }
        out << '\n';
        for (const auto& product : language.products) {
            const std::size_t cells[] = {product.entries.total, product.entries.localized, product.entries.fallback,
                                         product.pages.total,   product.pages.localized,   product.pages.fallback};
            out << "  " << padRight(product.key, keyWidth);
            for (std::size_t i = 0; i < headings.size(); ++i) {
                out << "  " << padLeft(std::to_string(cells[i]), headings[i].size());
            }
            out << '\n';
        }
        for (const auto& product : language.products) {
            if (product.entries.onlyTranslated + product.pages.onlyTranslated != 0) {
                out << "  only in " << language.language << ", not in English: " << product.key << ": "
                    << counted(product.entries.onlyTranslated, "entry", "entries") << ", "
                    << counted(product.pages.onlyTranslated, "page", "pages") << '\n';
            }
        }
        if (language.lackingPages == 0) {
            out << "  No localized page lacks a section of its English page.\n";
            continue;
        }
        out << "  Localized pages lacking sections of their English page: " << language.lackingPages << '\n';
        for (const auto& product : language.products) {
            for (const auto& gap : product.lacking) {
                out << "    " << gap.href << ": " << joinList(gap.sectionTitles, ", ") << '\n';
            }
        }
    }
}

boost::json::value coverageJson(const Coverage& coverage) {
    boost::json::array languages;
    for (const auto& language : coverage.languages) {
        boost::json::array products;
        for (const auto& product : language.products) {
            boost::json::array lacking;
            for (const auto& gap : product.lacking) {
                boost::json::array sections;
                for (const auto& id : gap.sectionIds) {
                    sections.push_back(boost::json::value(id));
                }
                lacking.push_back(boost::json::object{{"href", gap.href}, {"sections", std::move(sections)}});
            }
            products.push_back(boost::json::object{{"key", product.key},
                                                   {"productName", product.productName},
                                                   {"entries", countsJson(product.entries)},
                                                   {"pages", countsJson(product.pages)},
                                                   {"lackingSections", std::move(lacking)}});
        }
        languages.push_back(boost::json::object{{"language", language.language},
                                                {"entries", countsJson(language.entries)},
                                                {"pages", countsJson(language.pages)},
                                                {"lackingPages", language.lackingPages},
                                                {"products", std::move(products)}});
    }
    return languages;
}

} // namespace refdoc::tool
