#pragma once

#include "docparser/diagnostics/DiagnosticHooks.hpp"

#include <reference/docparser/ProductData.hpp>

#include <string>

namespace reference::docparser {

// Why a reader gave no text, which the readers do not say themselves: they return "" alike for a
// missing, unreadable, oversized and empty file. Asked only for the drops a diagnostics scope
// records. A missing page file is absent (`missingIsAbsent`); a missing lookup file, listed a
// moment ago, is unreadable.
diagnostics::DropExplanation explainEmptyRead(const std::u16string& path, bool missingIsAbsent);
diagnostics::DropExplanation explainEmptyRead(const ProductPathData& file);
// A package entry is read again, the only way to learn the reason of its reader.
diagnostics::DropExplanation explainEmptyRead(const ProductZipData& file);

} // namespace reference::docparser
