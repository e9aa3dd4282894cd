#pragma once

// The one include a caller needs: the loading operations, their settings, the records and
// the exception.

#include <reference/docparser/DocParserException.hpp>
#include <reference/docparser/DocResource.hpp>
#include <reference/docparser/Export.hpp>
#include <reference/docparser/ProductData.hpp>
#include <reference/docparser/Version.hpp>
#include <reference/property/DeprecationStatus.hpp>
#include <reference/property/FunctionType.hpp>
#include <reference/property/HeaderInfo.hpp>
#include <reference/property/RefEntityType.hpp>
#include <reference/property/RefItem.hpp>
#include <reference/property/RefItemLookup.hpp>
#include <reference/property/SyntaxType.hpp>

#include <boost/json/fwd.hpp>

#include <concepts>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace doc_products_shared {
class TopLevelDocProduct;
}

namespace reference::docparser {

namespace detail {
struct LoadContext; ///< inside the library
}

/// The pipeline and the merge are compiled into the library for the lookup resources only; these
/// constraints turn any other type into a compile-time error here instead of a link error.
template <class T>
concept PipelineResourceMap = std::same_as<T, std::map<std::u16string, DocResource<property::RefItemLookup>>>;
template <class D>
concept PipelineFileRecord = std::same_as<D, ProductPathData> || std::same_as<D, ProductZipData>;
template <class T>
concept MergeableResource = std::same_as<T, DocResource<property::RefItemLookup>>;
/// The enumerations of reference::property that JSON fields are read into.
template <class T>
concept PropertyEnumeration = std::same_as<T, property::RefEntityType> || std::same_as<T, property::FunctionType> ||
    std::same_as<T, property::SyntaxType> || std::same_as<T, property::DeprecationStatus>;

/// What one run of the multi-product pipeline needs: the caller's parser and installed-product
/// test (used by reference, so they must outlive the run), the supported locale suffixes
/// ("_ja", ...), the current locale's suffix and the call's context.
template <PipelineResourceMap T>
struct ParsingInfo {
    using JsonParsingFcn = std::function<T(const std::string&)>;
    using IsInstalledFcn = std::function<bool(const std::u16string&)>;

    const JsonParsingFcn& jsonParsingFcn;
    const IsInstalledFcn& isInstalledFcn;
    std::vector<std::u16string> supportedLocales;
    std::u16string localeSuffix;
    /// The loading call's own state (memory reused from file to file, the diagnostics scope that
    /// records the call), made by parseMultipleProductFiles; null: each step uses its own.
    detail::LoadContext* context = nullptr;
};

/// The library's operations, all static: settings, products, file access, field access and the
/// two loading operations, getResourceLookupFiles and getResourceFile.
class REFDOC_API DocResourceParser {
public:
    DocResourceParser() = delete;

    /// The documentation root and the two data folders below it. Never modified once made;
    /// always shared as a pointer to const, so a snapshot stays consistent.
    struct REFDOC_API ReferenceRoots {
        /// Folders from the host's documentation root service.
        ReferenceRoots();
        /// Folders by plain concatenation: root + "/" + "docCatalog/referenceapi_lookup" etc.
        explicit ReferenceRoots(std::u16string root);

        std::u16string docRoot;
        std::u16string lookupFolder;
        std::u16string referenceFolder;
    };

    /// Resources of installed products, and of the others.
    template <class T>
    struct ParsingResults {
        T installedResources;
        T uninstalledResources;

        bool operator==(const ParsingResults&) const = default;
    };

    using LookupResourceMap = std::map<std::u16string, DocResource<property::RefItemLookup>>;
    using RefItemFileMap = std::map<std::u16string, DocResource<property::RefItem>>;

    using TopLevelProductList =
        std::shared_ptr<const std::vector<std::shared_ptr<const doc_products_shared::TopLevelDocProduct>>>;
    using TopLevelProductsProvider = std::function<TopLevelProductList()>;
    using SupportPackageSet = std::shared_ptr<const std::unordered_set<std::u16string>>;

    class REFDOC_API ParsingTools {
    public:
        ParsingTools() = delete;

        /// How the bytes of a JSON string become UTF-16. Any value other than Ascii acts as Utf8.
        enum StringParsingType : int {
            Ascii = 0, ///< 7-bit text, widened byte by byte
            Utf8 = 1,  ///< scanned; decoded as UTF-8 if it holds a byte outside 0x01..0x7E
        };

        static const std::u16string kEnglishLocale; ///< "en"
        static constexpr char16_t kLocaleSeparator = u'_';
        static const std::u16string kJsonExt;    ///< "json"
        static const std::u16string kZipExt;     ///< "zip"
        static const std::u16string kDotJsonExt; ///< ".json"
        static const std::u16string kDotZipExt;  ///< ".zip"

        /// Field access. Required strings throw DocParserException when missing; every accessor
        /// throws DocParserException when a member has the wrong JSON kind.
        static std::u16string getFluString(const boost::json::value& value, StringParsingType type);
        static std::u16string getFluString(const boost::json::object& object, const std::string& key,
                                           StringParsingType type);
        static std::u16string getFluStringWithFallback(const boost::json::object& object, const std::string& key,
                                                       StringParsingType type);
        static const boost::json::array& getJsonArray(const boost::json::value& value);
        static const boost::json::array& getJsonArray(const boost::json::value& value, const std::string& key);
        /// T is one of the enumerations of reference::property. Missing key or unknown text: default.
        template <PropertyEnumeration T>
        static typename T::Value getEnumFromJson(const boost::json::object& object, const std::string& key);
        static property::HeaderInfo getHeaderInfo(const boost::json::value& value);

        /// The host's current documentation language, as it gives it.
        static std::u16string getCurrentLocale();
        static std::vector<std::u16string> getSupportedDocLocales();

        /// The multi-product pipeline over one data folder.
        template <PipelineResourceMap T>
        static ParsingResults<T>
        parseMultipleProductFiles(const std::u16string& folder,
                                  const typename ParsingInfo<T>::JsonParsingFcn& jsonParsingFcn,
                                  const typename ParsingInfo<T>::IsInstalledFcn& isInstalledFcn);
        template <PipelineResourceMap T>
        static ParsingResults<T> readZipFiles(const std::vector<ProductPathData>& zipPackages,
                                              const ParsingInfo<T>& info);
        template <PipelineResourceMap T, PipelineFileRecord D>
        static void readJsonFiles(const std::vector<D>& files, const ParsingInfo<T>& info, ParsingResults<T>& results);

        /// Combines two resources delivered under the same key; `source` is left unspecified.
        template <MergeableResource T>
        static void mergeResourceFiles(T& target, T&& source, bool sourceTakesPrecedence);
    };

    // Settings. Each is taken by a call when it starts (or first needs it) and kept for the
    // rest of that call.

    /// The roots in use: those set by setReferenceRoot, or else the ones made from the host's
    /// documentation root on first use (kept until restoreDefaultSettings).
    static std::shared_ptr<const ReferenceRoots> getReferenceRoots();
    /// Uses `root` as the documentation root instead of the host's, for calls that start afterwards.
    static void setReferenceRoot(std::u16string root);
    /// Back to the host's services: the roots are made afresh on next use, the products come
    /// from the host's catalogue, and the support-package cache is cleared.
    static void restoreDefaultSettings();
    /// Fixed installed products and support packages instead of the host's, until
    /// restoreDefaultSettings.
    static void setTestProducts(const std::vector<std::u16string>& productNames,
                                const std::vector<std::u16string>& supportPackageNames);
    /// Forgets the installed support packages; the next call that needs them asks the host again.
    static void clearSupportPackageCache();

    // Products and support packages.

    /// The installed products: the host's catalogue, asked on every call (or the test products).
    static TopLevelProductList getTopLevelProducts();
    /// The installed support packages, asked of the host once and cached until cleared.
    static SupportPackageSet getHardwareSupportPackages();
    /// Whether `name` is an installed product's short name or an installed support package.
    /// Lets an exception of the host's catalogue or support-package service through.
    static bool isProductInstalled(const std::u16string& name);

    // Listing of a data folder.
    static bool isValidFilename(const std::filesystem::path& path);
    static std::pair<std::vector<ProductPathData>, std::vector<ProductPathData>>
    getAllProducts(const std::u16string& folder, const std::vector<std::u16string>& localeSuffixes,
                   const std::u16string& currentLocaleSuffix);

    /// The whole file, or "" when it cannot be read.
    static std::string openAndReadFile(const std::u16string& path);
    static std::string openAndReadFile(const ProductPathData& file);
    static std::string openAndReadFile(const ProductZipData& file);

    /// Every product's lookup index below the documentation root, English merged with the
    /// current language's variants, split into installed and uninstalled products. Files that
    /// cannot be read or parsed are left out; throws nothing for them.
    static ParsingResults<LookupResourceMap> getResourceLookupFiles();
    /// One product's reference pages: `name` is the base name of its page file, without folder,
    /// locale suffix or extension ("signal" for signal.json and signal_ja.json). A name holding
    /// '/', '\\' or a NUL, or the name "..", names no page file: the result is empty, as for a
    /// product without pages.
    static RefItemFileMap getResourceFile(const std::u16string& name);
};

} // namespace reference::docparser
