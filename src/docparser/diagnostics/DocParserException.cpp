#include <reference/docparser/DocParserException.hpp>

namespace reference::docparser {

DocParserException::~DocParserException() noexcept = default;

const boost::exception_detail::clone_base* DocParserException::clone() const {
    // The copy shares the error-information container (when one is attached) by reference.
    return new DocParserException(*this);
}

void DocParserException::rethrow() const { throw *this; }

const char* DocParserException::what() const noexcept { return "resource::docparser::DocParserException"; }

} // namespace reference::docparser
