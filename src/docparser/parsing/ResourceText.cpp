#include "docparser/parsing/ResourceText.hpp"

#include "docparser/diagnostics/DiagnosticHooks.hpp"

#include <boost/json/parser.hpp>
#include <boost/system/system_error.hpp>

namespace reference::docparser {

boost::json::value parseResourceText(std::string_view text, boost::json::storage_ptr storage) {
    // What boost::json::parse does, keeping the number of bytes the parser took.
    unsigned char buffer[BOOST_JSON_STACK_BUFFER_SIZE];
    boost::json::parser parser(boost::json::storage_ptr(), boost::json::parse_options(), buffer);
    parser.reset(std::move(storage));
    boost::json::error_code error;
    const std::size_t consumed = parser.write(text.data(), text.size(), error);
    if (error) [[unlikely]] {
        diagnostics::syntaxError(text, consumed, error);
        throw boost::system::system_error(error);
    }
    return parser.release();
}

} // namespace reference::docparser
