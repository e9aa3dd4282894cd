#pragma once

#include "docparser/diagnostics/DiagnosticHooks.hpp"

#include <reference/docparser/ParseDiagnostics.hpp>

namespace reference::docparser::diagnostics {

// Sets the reason for a drop that no parse event explained from the exception being handled:
// a syntax error, a missing member, memory, or `readerFailure` with the message of any other
// exception (a failure of the file or package reader itself).
void explainException(FileDiagnostic& record, DropReason readerFailure);

// Fills in a drop: a parse event may already have said why; an empty text is explained by the
// loader (`explainEmpty`), anything else by the exception in flight.
void completeDrop(FileDiagnostic& record, bool textWasEmpty, const ExplainEmptyText& explainEmpty);

} // namespace reference::docparser::diagnostics
