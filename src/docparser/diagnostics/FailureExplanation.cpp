#include "docparser/diagnostics/FailureExplanation.hpp"

#include <reference/docparser/DocParserException.hpp>

#include <boost/system/system_error.hpp>

#include <exception>
#include <new>

namespace reference::docparser::diagnostics {

void explainException(FileDiagnostic& record, DropReason readerFailure) {
    const std::exception_ptr failure = std::current_exception();
    if (!failure) {
        record.dropReason = DropReason::Other;
        record.message = "unknown failure";
        return;
    }
    try {
        std::rethrow_exception(failure);
    } catch (const boost::system::system_error& e) {
        record.dropReason = DropReason::SyntaxError;
        record.message = e.code().message();
    } catch (const DocParserException&) {
        record.dropReason = DropReason::Other;
        record.message = "a required member is missing or has the wrong kind";
    } catch (const std::bad_alloc&) {
        record.dropReason = DropReason::Other;
        record.message = "out of memory";
    } catch (const std::exception& e) {
        record.dropReason = readerFailure;
        record.message = e.what();
    } catch (...) {
        record.dropReason = DropReason::Other;
        record.message = "unknown failure";
    }
}

void completeDrop(FileDiagnostic& record, bool textWasEmpty, const ExplainEmptyText& explainEmpty) {
    if (record.dropReason == DropReason::SyntaxError && textWasEmpty) {
        // The parser stopped at the start of nothing; the position says nothing about the file.
        record.offset = record.line = record.column = 0;
        DropExplanation explanation = explainEmpty();
        record.dropReason = explanation.reason;
        record.message = std::move(explanation.message);
    } else if (record.dropReason == DropReason::None) {
        explainException(record, DropReason::Other);
    }
    record.documentKeys.clear();
}

} // namespace reference::docparser::diagnostics
