#pragma once

// HTML output of `refdoc serve`. Every text from the documentation data is untrusted: it goes
// through escape() wherever it lands (element text or attribute value), and a link is made from
// a data text only when pageHref() accepts it.

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace refdoc::tool::html {

// Escapes &, <, >, " and ' so the text is inert in element content and in quoted attributes.
std::string escape(std::string_view text);

// A URL of this server: `path` ('/'-separated, each segment percent-encoded as a path needs),
// the query "lang=LANGUAGE" and, when given, "#FRAGMENT".
std::string viewUrl(std::string_view path, std::string_view language, std::string_view fragment = {});

// The same with more query parameters after "lang", in their order.
std::string viewUrl(std::string_view path, std::string_view language,
                    std::initializer_list<std::pair<std::string_view, std::string_view>> params);

// The URL of one product's view: "/product/KEY?lang=LANGUAGE", with any '/' of the key encoded.
std::string productUrl(std::string_view key, std::string_view language);

// A reference to a page of the documentation root, as data gives it ("signal/ref/f.html" or
// "signal/ref/f.html#input_b"), split into its path and fragment.
struct PageRef {
    std::string path;
    std::string fragment;
};

// The reference when `href` is a plain relative path to a page: no scheme, no authority, no
// query, no leading '/', no empty, "." or ".." segment, no backslash or control character, at
// most 1024 bytes. Anything else (javascript:, //host, ../x, ...) gives nothing: it is text.
std::optional<PageRef> pageHref(std::string_view href);

// True for a fragment usable as an element id and in "#...": letters, digits, '-', '_', '.', ':'.
bool isSafeId(std::string_view id);

} // namespace refdoc::tool::html
