#include "ServeRouter.hpp"

#include "Html.hpp"
#include "ServeAssets.hpp"
#include "ServeCoverage.hpp"
#include "ServeViews.hpp"
#include "Text.hpp"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace refdoc::tool::serve {
namespace {

constexpr std::size_t kMaxQueryBytes = 256;
constexpr std::size_t kMaxApiHits = 100;

void jsonError(httplib::Response& response, int status, const std::string& message) {
    response.status = status;
    response.set_content(boost::json::serialize(boost::json::object{{"error", message}}), "application/json");
}

std::string rootError(const std::filesystem::path& root) {
    std::error_code error;
    if (!std::filesystem::is_directory(root / "docCatalog", error)) {
        return "The documentation root " + root.string() +
               " has no docCatalog folder any more: it was moved, deleted or is not readable.";
    }
    return {};
}

bool hasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

void setSecurityHeaders(httplib::Response& response) {
    // Even a text that escaped escaping could not run a script or load anything from elsewhere.
    response.set_header("Content-Security-Policy",
                        "default-src 'none'; style-src 'self'; script-src 'self'; connect-src 'self'; "
                        "img-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "no-referrer");
    response.set_header("Cache-Control", "no-store");
}

} // namespace

void respond(SnapshotCache& cache, const httplib::Request& request, httplib::Response& response) {
    const HostSettings& settings = cache.settings();
    setSecurityHeaders(response);
    if (request.method != "GET" && request.method != "HEAD") {
        response.status = 405;
        response.set_header("Allow", "GET, HEAD");
        response.set_content("405 method not allowed: this server only reads\n", "text/plain; charset=utf-8");
        return;
    }
    const std::string& path = request.path;
    if (path == "/assets/style.css") {
        response.set_content(assets::kStyle, "text/css; charset=utf-8");
        return;
    }
    if (path == "/favicon.ico") {
        response.status = 204; // no icon, and no 404 in the browser's console
        return;
    }
    if (path == "/assets/search.js") {
        response.set_content(assets::kSearchScript, "text/javascript; charset=utf-8");
        return;
    }

    View view;
    std::string language = settings.language;
    // The search box's requests get their errors as JSON, every other one as a page.
    const bool api = path.starts_with("/api/");
    const auto reject = [&](int status, const std::string& title, const std::string& text) {
        if (api) {
            jsonError(response, status, text);
        } else {
            errorView(view, status, title, text);
        }
    };
    if (request.has_param("lang")) {
        language = request.get_param_value("lang");
    }
    const auto& supported = settings.supportedLanguages;
    if (path.size() > 2048 || hasControl(path)) {
        reject(400, "Bad request", "The path holds control characters or is too long.");
        language = settings.language;
    } else if (std::find(supported.begin(), supported.end(), language) == supported.end()) {
        reject(400, "Bad request",
               "\"" + language + "\" is not a supported language (" + joinList(supported, ", ") + ").");
        language = settings.language;
    } else if (const std::string problem = rootError(settings.root); !problem.empty()) {
        reject(503, "Documentation root unavailable", problem);
    } else if (path == "/") {
        indexView(*cache.snapshot(language), settings.root, view);
    } else if (path == "/search") {
        const std::string text = request.has_param("q") ? request.get_param_value("q") : std::string();
        if (text.size() > kMaxQueryBytes || hasControl(text)) {
            reject(400, "Bad request", "The search text is longer than 256 bytes or holds control characters.");
        } else {
            searchView(*cache.snapshot(language), text, view);
        }
    } else if (path == "/api/search") {
        // The hits as JSON for the search box; a request it cannot answer gets an error object.
        const std::string text = request.has_param("q") ? request.get_param_value("q") : std::string();
        const std::string limitText = request.has_param("limit") ? request.get_param_value("limit") : "10";
        std::size_t limit = 0;
        const auto [next, error] = std::from_chars(limitText.data(), limitText.data() + limitText.size(), limit);
        if (text.size() > kMaxQueryBytes || hasControl(text)) {
            reject(400, "Bad request", "The search text is longer than 256 bytes or holds control characters.");
        } else if (error != std::errc() || next != limitText.data() + limitText.size() || limit == 0 ||
                   limit > kMaxApiHits) {
            reject(400, "Bad request", "The limit is a number from 1 to " + std::to_string(kMaxApiHits) + ".");
        } else {
            response.set_content(searchJson(*cache.snapshot(language), text, limit), "application/json");
        }
    } else if (path == "/problems") {
        ProblemsQuery query{language, request.has_param("show") ? request.get_param_value("show") : std::string(), 1};
        const std::string page = request.has_param("page") ? request.get_param_value("page") : "1";
        const auto [next, error] = std::from_chars(page.data(), page.data() + page.size(), query.page);
        if (error != std::errc() || next != page.data() + page.size() || query.show.size() > 256 ||
            hasControl(query.show)) {
            reject(400, "Bad request", "Not a list of the problems view, or not a page number.");
        } else {
            problemsView(*cache.report(), settings.root, query, view);
        }
    } else if (path == "/coverage") {
        coverageView(*cache.coverage(), view);
    } else if (path.starts_with("/product/")) {
        const std::string key = path.substr(9);
        if (key.empty() || key.size() > 512 || key.find('/') != std::string::npos) {
            reject(400, "Bad request", "Not a product key.");
        } else {
            productView(*cache.snapshot(language), key, view);
        }
    } else if (path.starts_with("/ref/")) {
        const std::string href = path.substr(5);
        if (!html::pageHref(href) || href.find('#') != std::string::npos) {
            reject(400, "Bad request", "Not a page reference: a relative path without \"..\", \".\" or empty parts.");
        } else {
            const auto snapshot = cache.snapshot(language);
            const auto english = language == "en" ? nullptr : cache.snapshot("en");
            pageView(*snapshot, english.get(), href, view);
        }
    } else {
        reject(404, "Not found", "There is no such page here. The index lists the products.");
    }
    if (api) {
        return;
    }
    response.status = view.status;
    std::string viewPath = path;
    if (view.status >= 400) {
        viewPath = "/";
    }
    response.set_content(document(supported, language, view, viewPath), "text/html; charset=utf-8");
}

void respondWithError(const SnapshotCache& cache, const std::string& reason, httplib::Response& response) {
    View view;
    errorView(view, 500, "Internal error", reason);
    response.status = 500;
    response.set_content(document(cache.settings().supportedLanguages, cache.settings().language, view, "/"),
                         "text/html; charset=utf-8");
}

} // namespace refdoc::tool::serve
