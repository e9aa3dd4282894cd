#include "Html.hpp"

#include <boost/url/url.hpp>

namespace refdoc::tool::html {

std::string escape(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string viewUrl(std::string_view path, std::string_view language, std::string_view fragment) {
    boost::urls::url url;
    if (path == "/") {
        url.set_path_absolute(true); // Boost.URL 1.81 writes set_path("/") as "/./"
    } else {
        url.set_path(path);
    }
    url.params().append({"lang", language});
    if (!fragment.empty()) {
        url.set_fragment(fragment);
    }
    return std::string(url.buffer());
}

std::string viewUrl(std::string_view path, std::string_view language,
                    std::initializer_list<std::pair<std::string_view, std::string_view>> params) {
    boost::urls::url url(viewUrl(path, language));
    for (const auto& [name, value] : params) {
        url.params().append({name, value});
    }
    return std::string(url.buffer());
}

std::string productUrl(std::string_view key, std::string_view language) {
    boost::urls::url url;
    url.set_path("/product");
    url.segments().push_back(key);
    url.params().append({"lang", language});
    return std::string(url.buffer());
}

bool isSafeId(std::string_view id) {
    if (id.empty() || id.size() > 256) {
        return false;
    }
    for (const char c : id) {
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
              c == '.' || c == ':')) {
            return false;
        }
    }
    return true;
}

std::optional<PageRef> pageHref(std::string_view href) {
    if (href.empty() || href.size() > 1024) {
        return std::nullopt;
    }
    PageRef ref;
    const std::size_t hash = href.find('#');
    std::string_view path = href.substr(0, hash);
    if (hash != std::string_view::npos) {
        const std::string_view fragment = href.substr(hash + 1);
        if (!isSafeId(fragment)) {
            return std::nullopt;
        }
        ref.fragment = fragment;
    }
    if (path.empty() || path.front() == '/') {
        return std::nullopt;
    }
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        // ':' would allow a scheme, '?' a query, '\\' a second separator, '%' a hidden one.
        if (byte < 0x20 || byte == 0x7F || c == ':' || c == '?' || c == '\\' || c == '%' || c == '#' || c == ' ') {
            return std::nullopt;
        }
    }
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t slash = path.find('/', start);
        const std::string_view segment =
            path.substr(start, slash == std::string_view::npos ? path.npos : slash - start);
        if (segment.empty() || segment == "." || segment == "..") {
            return std::nullopt;
        }
        if (slash == std::string_view::npos) {
            break;
        }
        start = slash + 1;
    }
    ref.path = path;
    return ref;
}

} // namespace refdoc::tool::html
